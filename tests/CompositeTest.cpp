// qvAlphaCompC: the twelve formulas for all bytes at all levels.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/Bytes.h"
#include "support/Levels.h"

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

// Every A beside every B, with alphas that spread; A alone (code 7) is scaled by all there are.
TEST(AlphaCompC, IsTheFormulaForAllBytesAtAllLevels) {
  constexpr int kCount = 65536;
  Bytes a(kCount), b(kCount), expected(kCount), got(kCount);
  for (int i = 0; i < kCount; ++i) {
    a[i] = static_cast<unsigned char>(i);
    b[i] = static_cast<unsigned char>(i >> 8);
  }
  for (int code = 0; code < 12; ++code) {
    std::vector<std::pair<int, int>> alphas = {{255, 255}, {0, 0}, {0, 255}, {255, 0}, {128, 255}};
    for (int i = 0; i < 256; i += code == 7 ? 1 : 5) alphas.push_back({i, (i * 7 + 3) % 256});
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
}

}  // namespace
}  // namespace qv::test
