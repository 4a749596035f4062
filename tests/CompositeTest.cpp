// qvAlphaCompC: the twelve formulas for all bytes at all levels, statuses, bands and guards.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Bytes.h"
#include "tests/support/Guarded.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

IppiAlphaType Code(int value) { return static_cast<IppiAlphaType>(value); }

unsigned Div255(unsigned x) { return (x + 1 + (x >> 8)) >> 8; }

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

// Every A beside every B, in rows that are no multiple of a vector.
struct AllPairs {
  static constexpr int kWidth = 257, kHeight = 256;
  Bytes a = Bytes(kWidth * kHeight), b = a;
  AllPairs() {
    for (int i = 0; i < kWidth * kHeight; ++i) {
      a[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i);
      b[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i >> 8);
    }
  }
};

TEST(AlphaCompC, IsTheFormulaForAllBytesAtAllLevels) {
  const AllPairs pairs;
  constexpr IppiSize kOneRow = {AllPairs::kWidth * AllPairs::kHeight / 3, 1};
  Bytes expected(pairs.a.size()), got(pairs.a.size());
  std::vector<std::pair<int, int>> alphas = {{255, 255}, {0, 0}, {0, 255}, {255, 0}, {128, 255},
                                             {1, 254},   {254, 1}, {17, 15}};
  for (int i = 0; i < 256; i += 5) alphas.push_back({i, (i * 7 + 3) % 256});
  for (int code = 0; code < 12; ++code)
    for (const auto& [a1, a2] : alphas) {
      for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] = static_cast<unsigned char>(
            Composed(code, pairs.a[i], static_cast<unsigned>(a1), pairs.b[i],
                     static_cast<unsigned>(a2)));
      for (const Level& level : AvailableLevels()) {
        const UseLevel use(level);
        // One byte a pixel, and for some alphas all bytes as one row of pixels of three.
        for (const auto& [type, size] :
             {std::pair(2, IppiSize{AllPairs::kWidth, AllPairs::kHeight}), {4, kOneRow}}) {
          if (type == 4 && a1 % 3 != 0) continue;
          std::fill(got.begin(), got.end(), static_cast<unsigned char>(0));
          ASSERT_EQ(Lib::qvAlphaCompC(Type(type), pairs.a.data(), AllPairs::kWidth,
                                      static_cast<unsigned char>(a1), pairs.b.data(),
                                      AllPairs::kWidth, static_cast<unsigned char>(a2), got.data(),
                                      AllPairs::kWidth, size, Code(code)),
                    StatusOk);
          const auto end = expected.begin() + (type == 2 ? expected.size() : 3 * kOneRow.width);
          ASSERT_TRUE(std::equal(expected.begin(), end, got.begin()))
              << "code " << code << ", alphas " << a1 << ' ' << a2 << ", " << level.name;
        }
      }
    }
}

// The scaling of a byte by every alpha: all products there are.
TEST(AlphaCompC, ScalesByEveryAlpha) {
  Bytes a(256), b(256), got(256);
  for (int i = 0; i < 256; ++i) a[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i);
  for (const Level& level : AvailableLevels()) {
    const UseLevel use(level);
    for (int alpha = 0; alpha < 256; ++alpha) {
      Lib::qvAlphaCompC(Type(2), a.data(), 256, 0, b.data(), 256,
                        static_cast<unsigned char>(alpha), got.data(), 256, {256, 1}, Code(7));
      for (int i = 0; i < 256; ++i)
        ASSERT_EQ(got[static_cast<std::size_t>(i)], i * alpha / 255) << alpha << ' ' << level.name;
    }
  }
}

TEST(AlphaCompC, BandsMoveEveryImageByItsOwnStep) {
  const IppiSize size = {21, 200};
  Bytes a(22 * 200), b(27 * 200);
  Random(5).Fill(a.data(), a.size());
  Random(6).Fill(b.data(), b.size());
  const auto compose = [&](int budget) {
    const UseBudget use(budget);
    Bytes dst(25 * 200);
    EXPECT_EQ(Lib::qvAlphaCompC(Type(2), a.data(), 22, 200, b.data(), 27, 90, dst.data(), 25, size,
                                AlphaPlus),
              StatusOk);
    return dst;
  };
  EXPECT_TRUE(compose(1) == compose(3));
}

TEST(AlphaCompC, BandsAndThreeChannelsWriteTheSame) {
  const AllPairs pairs;
  const int step = AllPairs::kWidth, pixels = AllPairs::kWidth / 3;
  for (int code = 0; code < 12; ++code) {
    Bytes whole(pairs.a.size(), 9);
    for (const int budget : {1, 2, 3, 7})
      for (const int direction : {1, -1}) {
        const UseBudget use(budget);
        const int first = direction < 0 ? step * (AllPairs::kHeight - 1) : 0;
        Bytes got(pairs.a.size(), 9);
        ASSERT_EQ(Lib::qvAlphaCompC(Type(4), pairs.a.data() + first, direction * step, 77,
                                    pairs.b.data() + first, direction * step, 201,
                                    got.data() + first, direction * step,
                                    {pixels, AllPairs::kHeight}, Code(code)),
                  StatusOk);
        if (budget == 1 && direction == 1) {
          whole = got;
          for (int x = 0; x < step; ++x)
            ASSERT_EQ(got[static_cast<std::size_t>(x)],
                      x < 3 * pixels ? Composed(code, pairs.a[static_cast<std::size_t>(x)], 77,
                                                pairs.b[static_cast<std::size_t>(x)], 201)
                                     : 9);
        }
        ASSERT_TRUE(got == whole) << code << ' ' << budget << ' ' << direction;
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

TEST(AlphaCompC, ChecksInTheDocumentedOrder) {
  Bytes image(200, 5);
  const Bytes before = image;
  unsigned char* const p = image.data();
  unsigned char* const null = nullptr;
  struct {
    int type;
    unsigned char *src1, *src2, *dst;
    IppiSize size;
    int code;
    IppStatus expected;
  } const cases[] = {
      {3, null, null, null, {0, 0}, 12, StatusDataTypeErr},
      {3, p, p, p, {1, 140}, 0, StatusDataTypeErr},
      {2, null, p, p, {0, 0}, 12, StatusNullPtrErr},
      {4, p, null, p, {0, 140}, 1, StatusNullPtrErr},
      {4, p, p, null, {0, 140}, 12, StatusNullPtrErr},
      {2, p, p, p, {0, 140}, 12, StatusSizeErr},
      {2, p, p, p, {1, 0}, -1, StatusSizeErr},
      {2, p, p, p, {1, -140}, 0, StatusSizeErr},
      {2, p, p, p, {1, 140}, 12, StatusAlphaTypeErr},
      {4, p, p, p, {1, 1}, -1, StatusAlphaTypeErr},
  };
  for (const Level& level : AvailableLevels())
    for (const int budget : {1, 2}) {
      const UseLevel use(level);
      const UseBudget useBudget(budget);
      for (const auto& c : cases)
        EXPECT_EQ(Lib::qvAlphaCompC(Type(c.type), c.src1, 1, 9, c.src2, 1, 9, c.dst, 1, c.size,
                                    Code(c.code)),
                  c.expected)
            << c.type << ' ' << c.code << ' ' << level.name;
    }
  EXPECT_TRUE(image == before);
}

}  // namespace
}  // namespace qv::test
