// qvAlphaCompC: the twelve formulas for all bytes at all levels, what is not read, statuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/Bytes.h"
#include "tests/support/Guarded.h"
#include "tests/support/Statuses.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

IppiAlphaType Code(int value) { return static_cast<IppiAlphaType>(value); }

unsigned Div255(unsigned x) { return x / 255; }

// The formulas one by one, the sums of codes 0, 3 and 4 modulo 256.
unsigned Composed(int code, unsigned a, unsigned a1, unsigned b, unsigned a2) {
  const unsigned n1 = 255 - a1, n2 = 255 - a2;
  switch (code) {
    case 0: return (Div255(a * a1) + Div255(Div255(b * a2) * n1)) & 255;
    case 1: return Div255(Div255(a * a1) * a2);
    case 2: return Div255(Div255(a * a1) * n2);
    case 3: return (Div255(Div255(a * a1) * a2) + Div255(Div255(b * a2) * n1)) & 255;
    case 4: return (Div255(Div255(a * a1) * n2) + Div255(Div255(b * a2) * n1)) & 255;
    case 5: return std::min(255u, Div255(a * a1) + Div255(b * a2));
    case 6: return std::min(255u, a + Div255(b * n1));
    case 7: return Div255(a * a2);
    case 8: return Div255(a * n2);
    case 9: return std::min(255u, Div255(a * a2) + Div255(b * n1));
    case 10: return std::min(255u, Div255(a * n2) + Div255(b * n1));
    default: return std::min(255u, a + b);
  }
}

// Every A beside every B, with every alpha of the first one and others that spread.
TEST(AlphaCompC, IsTheFormulaForAllBytesAtAllLevels) {
  constexpr int kCount = 65536;
  Bytes a(kCount), b(kCount), expected(kCount), got(kCount);
  for (int i = 0; i < kCount; ++i) {
    a[i] = static_cast<unsigned char>(i);
    b[i] = static_cast<unsigned char>(i >> 8);
  }
  std::vector<std::pair<int, int>> alphas = {{255, 255}, {0, 0}, {0, 255}, {255, 0}, {128, 255}};
  for (int i = 0; i < 256; i += 5) alphas.push_back({i, (i * 7 + 3) % 256});
  for (int code = 0; code < 12; ++code)
    for (const auto& [a1, a2] : alphas) {
      for (int i = 0; i < kCount; ++i)
        expected[i] = static_cast<unsigned char>(Composed(code, a[i], a1, b[i], a2));
      for (const Level& level : AvailableLevels()) {
        const UseLevel use(level);
        ASSERT_EQ(Lib::qvAlphaCompC(Type(2), a.data(), 0, static_cast<unsigned char>(a1), b.data(),
                                    0, static_cast<unsigned char>(a2), got.data(), 0, {kCount, 1},
                                    Code(code)),
                  StatusOk);
        ASSERT_TRUE(got == expected)
            << "code " << code << ", alphas " << a1 << ' ' << a2 << ", " << level.name;
      }
    }
}

// The scaling of a byte by every alpha: all products there are.
TEST(AlphaCompC, ScalesByEveryAlpha) {
  Bytes a(256), got(256);
  for (int i = 0; i < 256; ++i) a[i] = static_cast<unsigned char>(i);
  for (const Level& level : AvailableLevels()) {
    const UseLevel use(level);
    for (int alpha = 0; alpha < 256; ++alpha) {
      Lib::qvAlphaCompC(Type(2), a.data(), 256, 0, a.data(), 256, static_cast<unsigned char>(alpha),
                        got.data(), 256, {256, 1}, Code(7));
      for (int i = 0; i < 256; ++i) ASSERT_EQ(got[i], i * alpha / 255) << alpha << level.name;
    }
  }
}

// In and out, weighted or premultiplied, never look at the second image.
TEST(AlphaCompC, LeavesTheSecondImageAloneWhereItHasNoPart) {
  const GuardedMemory unreadable(1);
  const Bytes a(1000, 200);
  for (const Level& level : AvailableLevels()) {
    const UseLevel use(level);
    for (const int code : {1, 2, 7, 8})
      for (const int width : {1, 15, 64, 100, 1000}) {
        Bytes got(1000, 1);
        ASSERT_EQ(Lib::qvAlphaCompC(Type(2), a.data(), 1000, 100, unreadable.end(), 1000, 50,
                                    got.data(), 1000, {width, 1}, Code(code)),
                  StatusOk);
        EXPECT_EQ(got[0], Composed(code, 200, 100, 0, 50));
      }
  }
}

TEST_F(Refusals, OfCompositions) {
  const std::function compose = [](int type, Byte* a, Byte* b, Byte* dst, IppiSize size, int code) {
    return Lib::qvAlphaCompC(Type(type), a, 1, 9, b, 1, 9, dst, 1, size, Code(code));
  };
  ExpectStatuses(compose, {{StatusDataTypeErr, {3, null, null, null, {0, 0}, 12}},
                           {StatusDataTypeErr, {3, p, p, p, {1, 140}, 0}},
                           {StatusNullPtrErr, {2, null, p, p, {0, 0}, 12}},
                           {StatusNullPtrErr, {4, p, null, p, {0, 140}, 1}},
                           {StatusNullPtrErr, {4, p, p, null, {0, 140}, 12}},
                           {StatusSizeErr, {2, p, p, p, {0, 140}, 12}},
                           {StatusSizeErr, {2, p, p, p, {1, 0}, -1}},
                           {StatusSizeErr, {2, p, p, p, {1, -140}, 0}},
                           {StatusAlphaTypeErr, {2, p, p, p, {1, 140}, 12}},
                           {StatusAlphaTypeErr, {4, p, p, p, {1, 1}, -1}}});
}

}  // namespace
}  // namespace qv::test
