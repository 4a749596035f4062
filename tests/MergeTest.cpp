// qvMergeAlphaOver and qvMergeAlphaPlus: their formulas for all alphas, both paths, bands, aliases
// and the host's floating-point environment.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/Settings.h"
#include "tests/support/Bytes.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

// Selects the path of the over merge for a scope.
class UsePath {
 public:
  explicit UsePath(bool accelerated) : old_(HostProcessorInfo) { HostProcessorInfo = accelerated; }
  ~UsePath() { HostProcessorInfo = old_; }

 private:
  unsigned old_;
};

// The formulas, a pixel at a time.
unsigned PlainAlpha(unsigned fa, unsigned ba) { return fa + (((255 - fa) * ba) >> 8); }

unsigned PlainColour(unsigned f, unsigned fa, unsigned b, unsigned ba) {
  return (f * fa + ((b * (255 - fa) * ba) >> 8)) / (PlainAlpha(fa, ba) + 1);
}

unsigned FloatColour(unsigned f, unsigned fa, unsigned b, unsigned ba, unsigned a) {
  // volatile: every operation is rounded to single precision whatever the unit that does it.
  const auto r = [](float x) {
    volatile float rounded = x;
    return rounded;
  };
  const float fw = r(float(fa) / 255.0f);
  const float bw = r(r(1.0f - fw) * r(float(ba) / 255.0f));
  const float sum = r(r(float(f) * fw) + r(bw * float(b)));
  const float q = r(sum / r(float(a + 1) / 255.0f));
  const float whole = std::floor(q), rest = q - whole;
  unsigned n = static_cast<unsigned>(whole);
  if (rest > 0.5f || (rest == 0.5f && n % 2)) ++n;
  return n > 255 ? 255 : n;
}

unsigned Mixed(unsigned a, unsigned s, unsigned d) {
  const unsigned p = a * s, q = (255 - a) * d;
  return std::min(255u, ((p + 1 + (p >> 8)) >> 8) + ((q + 1) >> 8));
}

// Every pair of a foreground and a background alpha as 65536 pixels of 256 rows, with colours.
struct Planes {
  static constexpr int kSide = 256;
  Bytes fg, fgAlpha, bg, bgAlpha, dstAlpha;

  explicit Planes(std::uint64_t seed)
      : fg(3 * kSide * kSide), fgAlpha(kSide * kSide), bg(fg), bgAlpha(fgAlpha), dstAlpha() {
    Random(seed).Fill(fg.data(), fg.size());
    Random(seed + 1).Fill(bg.data(), bg.size());
    for (int i = 0; i < kSide * kSide; ++i) {
      fgAlpha[i] = static_cast<unsigned char>(i);
      bgAlpha[i] = static_cast<unsigned char>(i >> 8);
    }
    dstAlpha = fgAlpha;
  }

  IppStatus Merge(int rowBytes = 3 * kSide, int width = kSide, int height = kSide) {
    return Lib::qvMergeAlphaOver(Type(12345), fg.data(), 3 * kSide, fgAlpha.data(), kSide,
                                 bg.data(), 3 * kSide, bgAlpha.data(), kSide, dstAlpha.data(),
                                 rowBytes, width, height);
  }
};

// Colours that make ties and extremes likely, by seed.
Planes ExtremePlanes(int seed) {
  Planes p(static_cast<std::uint64_t>(seed));
  const unsigned char values[][2] = {{255, 255}, {255, 0}, {0, 255},
                                     {128, 128}, {1, 254}, {127, 1}};
  if (seed < 6) {
    std::fill(p.fg.begin(), p.fg.end(), values[seed][0]);
    std::fill(p.bg.begin(), p.bg.end(), values[seed][1]);
  }
  return p;
}

TEST(MergeAlphaOver, PlainPathIsTheFormulaForAllAlphas) {
  const UsePath path(false);
  for (int seed = 0; seed < 20; ++seed) {
    const Planes before = ExtremePlanes(seed);
    Planes p = before;
    std::fill(p.dstAlpha.begin(), p.dstAlpha.end(), static_cast<unsigned char>(9));  // only written
    ASSERT_EQ(p.Merge(), StatusOk);
    for (std::size_t i = 0; i < p.fgAlpha.size(); ++i) {
      ASSERT_EQ(p.dstAlpha[i], PlainAlpha(p.fgAlpha[i], p.bgAlpha[i]));
      for (std::size_t k = 3 * i; k < 3 * i + 3; ++k)
        ASSERT_EQ(p.fg[k], PlainColour(before.fg[k], p.fgAlpha[i], p.bg[k], p.bgAlpha[i]))
            << int(before.fg[k]) << ' ' << int(p.fgAlpha[i]) << ' ' << int(p.bg[k]) << ' '
            << int(p.bgAlpha[i]);
    }
  }
  EXPECT_EQ(PlainColour(255, 255, 0, 0), 254u);
  EXPECT_EQ(PlainColour(10, 0, 200, 0), 0u);
  EXPECT_EQ(PlainAlpha(0, 255), 254u);
}

// With the merged alpha of a copy and of unrelated values (quotients beyond 255).
TEST(MergeAlphaOver, SinglePrecisionPathIsTheFormulaForAllAlphasAtAllLevels) {
  const UsePath path(true);
  for (int seed = 0; seed < 32; ++seed) {
    Planes before = ExtremePlanes(seed % 16);
    if (seed >= 16) Random(77).Fill(before.dstAlpha.data(), before.dstAlpha.size());
    Planes expected = before;
    for (std::size_t i = 0; i < before.fgAlpha.size(); ++i) {
      const unsigned d = before.dstAlpha[i], fa = before.fgAlpha[i], ba = before.bgAlpha[i];
      const unsigned a = std::min(255u, d + (((d ^ 255) * ba) >> 8));
      expected.dstAlpha[i] = static_cast<unsigned char>(a);
      for (std::size_t k = 3 * i; k < 3 * i + 3; ++k)
        expected.fg[k] =
            static_cast<unsigned char>(FloatColour(before.fg[k], fa, before.bg[k], ba, a));
    }
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      Planes p = before;
      ASSERT_EQ(p.Merge(), StatusOk);
      ASSERT_TRUE(p.dstAlpha == expected.dstAlpha) << seed << ' ' << level.name;
      ASSERT_TRUE(p.fg == expected.fg) << seed << ' ' << level.name;
      ASSERT_TRUE(p.fgAlpha == before.fgAlpha && p.bg == before.bg && p.bgAlpha == before.bgAlpha);
    }
  }
}

// The merged alpha may be the foreground's plane (the colours then see the merged alpha) or the
// background's.
TEST(MergeAlphaOver, ReadsAliasedAlphaPlanesAfterTheAlphaPass) {
  const UsePath path(true);
  for (const Level& level : AvailableLevels())
    for (const bool intoForeground : {true, false}) {
      const UseLevel use(level);
      const Planes before(3);
      Planes p = before;
      Bytes& plane = intoForeground ? p.fgAlpha : p.bgAlpha;
      const int side = Planes::kSide;
      Lib::qvMergeAlphaOver(Type(4), p.fg.data(), 3 * side, p.fgAlpha.data(), side, p.bg.data(),
                            3 * side, p.bgAlpha.data(), side, plane.data(), 3 * side, side, side);
      for (std::size_t i = 0; i < plane.size(); ++i) {
        const unsigned d = intoForeground ? before.fgAlpha[i] : before.bgAlpha[i];
        const unsigned a = std::min(255u, d + (((255 - d) * before.bgAlpha[i]) >> 8));
        ASSERT_EQ(plane[i], a);
        ASSERT_EQ(p.fg[3 * i], FloatColour(before.fg[3 * i], p.fgAlpha[i], before.bg[3 * i],
                                           p.bgAlpha[i], a));
      }
    }
}

// A step of 0 lays all rows of the alpha planes over each other: the alpha pass goes over the one
// row again and again before any colour is merged.
TEST(MergeAlphaOver, MergesAllAlphaRowsBeforeTheColours) {
  const UsePath path(true);
  const int width = 300, height = 5;
  for (const Level& level : AvailableLevels()) {
    const UseLevel use(level);
    Bytes fg(3 * width * height), bg(fg), fa(width), ba(width), d;
    for (Bytes* plane : {&fg, &bg, &fa, &ba})
      Random(plane->size()).Fill(plane->data(), plane->size());
    d = fa;
    const Bytes before = fg;
    Lib::qvMergeAlphaOver(Type(4), fg.data(), 3 * width, fa.data(), 0, bg.data(), 3 * width,
                          ba.data(), 0, d.data(), 3 * width, width, height);
    for (int x = 0; x < width; ++x) {
      unsigned a = fa[x];
      for (int y = 0; y < height; ++y) a = std::min(255u, a + (((255 - a) * ba[x]) >> 8));
      ASSERT_EQ(d[x], a);
      for (int y = 0; y < height; ++y) {
        const int k = 3 * (y * width + x);
        ASSERT_EQ(fg[k], FloatColour(before[k], fa[x], bg[k], ba[x], a)) << x << ' ' << level.name;
      }
    }
  }
}

TEST(MergeAlphaOver, ConvertsRowBytesOfColourWhateverTheWidth) {
  const UsePath path(true);
  for (const Level& level : AvailableLevels())
    for (const int rowBytes : {-3, 0, 1, 2, 4, 47, 49, 190, 767}) {
      const UseLevel use(level);
      const Planes before(4);
      Planes whole = before, p = before;
      whole.Merge();
      ASSERT_EQ(p.Merge(rowBytes), StatusOk);
      ASSERT_TRUE(p.dstAlpha == whole.dstAlpha);
      for (std::size_t k = 0; k < p.fg.size(); ++k)
        ASSERT_EQ(p.fg[k], int(k % 768) < rowBytes ? whole.fg[k] : before.fg[k])
            << rowBytes << ' ' << k << ' ' << level.name;
    }
}

// Rounding, flush to zero and precision belong to the host: results do not depend on them, and the
// host finds them as it left them.
TEST(MergeAlphaOver, IgnoresTheHostsFloatingPointEnvironment) {
  const UsePath path(true);
  for (const Level& level : AvailableLevels()) {
    const UseLevel use(level);
    Planes expected(8);
    expected.Merge();
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
      Planes p(8);
      std::fesetround(mode);
#if defined(__SSE__)
      const unsigned host = _mm_getcsr() | 0x8040;  // flush to zero, denormals are zero
      _mm_setcsr(host);
      p.Merge();
      const unsigned after = _mm_getcsr();
      _mm_setcsr(host & ~0x8040u);
      EXPECT_EQ(after, host);
#else
      p.Merge();
#endif
      EXPECT_EQ(std::fegetround(), mode);
      std::fesetround(FE_TONEAREST);
      EXPECT_TRUE(p.fg == expected.fg) << mode << ' ' << level.name;
    }
  }
}

// All alphas beside all bytes of a first channel; further channels are other bytes.
TEST(MergeAlphaPlus, IsTheFormulaForAllAlphasAtAllLevels) {
  const int side = 256;
  Bytes alpha(side * side);
  for (int i = 0; i < side * side; ++i) alpha[i] = static_cast<unsigned char>(i);
  for (const int channels : {1, 3}) {
    Bytes src(channels * side * side), expected(src);
    for (int i = 0; i < channels * side * side; ++i)
      src[i] = static_cast<unsigned char>((i / channels >> 8) + i % channels * 85);
    for (int d = 0; d < 256; d += d == 127 ? 1 : 3) {
      Bytes before(src.size());
      for (std::size_t i = 0; i < before.size(); ++i) {
        before[i] = static_cast<unsigned char>(d + static_cast<int>(i) % channels * 101);
        expected[i] = static_cast<unsigned char>(Mixed(alpha[i / channels], src[i], before[i]));
      }
      for (const Level& level : AvailableLevels()) {
        const UseLevel use(level);
        Bytes image = before;
        ASSERT_EQ(Lib::qvMergeAlphaPlus(Type(channels == 1 ? 2 : 4), image.data(), channels * side,
                                        src.data(), channels * side, alpha.data(), side, side,
                                        side),
                  StatusOk);
        ASSERT_TRUE(image == expected) << channels << ' ' << d << ' ' << level.name;
      }
    }
  }
  EXPECT_EQ(Mixed(255, 255, 0), 255u);
  EXPECT_EQ(Mixed(0, 0, 255), 254u);
}

// Three bytes share an alpha; bands, padded and negative steps change nothing.
TEST(MergeAlphas, BandsWriteWhatOneCallWrites) {
  const int width = 85, height = 301, step = 260, alphaStep = 90;
  Bytes fg(step * height), bg(fg), fa(alphaStep * height), ba(fa);
  for (Bytes* plane : {&fg, &bg}) Random(plane == &fg).Fill(plane->data(), plane->size());
  for (Bytes* plane : {&fa, &ba}) Random(plane == &fa).Fill(plane->data(), plane->size());
  for (const int direction : {1, -1}) {
    const int first = direction < 0 ? step * (height - 1) : 0, s = direction * step;
    const int firstAlpha = direction < 0 ? alphaStep * (height - 1) : 0, as = direction * alphaStep;
    const auto over = [&](Bytes& colour, Bytes& merged) {
      return Lib::qvMergeAlphaOver(Type(4), colour.data() + first, s, fa.data() + firstAlpha, as,
                                   bg.data() + first, s, ba.data() + firstAlpha, as,
                                   merged.data() + firstAlpha, 3 * width, width, height);
    };
    const auto plus = [&](Bytes& colour, Bytes&) {
      return Lib::qvMergeAlphaPlus(Type(4), colour.data() + first, s, bg.data() + first, s,
                                   fa.data() + firstAlpha, as, width, height);
    };
    for (const auto& [name, accelerated, call] :
         {std::tuple<std::string, bool, std::function<IppStatus(Bytes&, Bytes&)>>{"plain", false,
                                                                                  over},
          {"single", true, over},
          {"plus", true, plus}}) {
      const UsePath path(accelerated);
      Bytes whole = fg, wholeAlpha = fa;
      ASSERT_EQ(call(whole, wholeAlpha), StatusOk);
      for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
          const int k = y * step + 3 * x + 2, p = y * alphaStep + x;
          const unsigned expected =
              name == "plus" ? Mixed(fa[p], bg[k], fg[k])
              : accelerated ? FloatColour(fg[k], fa[p], bg[k], ba[p], wholeAlpha[p])
                            : PlainColour(fg[k], fa[p], bg[k], ba[p]);
          ASSERT_EQ(whole[k], expected) << name << ' ' << x << ' ' << y;
        }
      for (const int budget : {2, 3, 7}) {
        const UseBudget use(budget);
        Bytes banded = fg, bandedAlpha = fa;
        ASSERT_EQ(call(banded, bandedAlpha), StatusOk);
        ASSERT_TRUE(banded == whole && bandedAlpha == wholeAlpha) << name << ' ' << budget;
      }
    }
  }
}

// Steps may all differ, but for dstAlpha, which has fgAlpha's.
TEST(MergeAlphas, BandsMoveEveryPlaneByItsOwnStep) {
  const int width = 21, height = 200, fgStep = 63, fgAlphaStep = 25, bgStep = 70, bgAlphaStep = 33;
  Bytes fg(fgStep * height), fa(fgAlphaStep * height), bg(bgStep * height), ba(bgAlphaStep * height);
  int seed = 0;
  for (Bytes* plane : {&fg, &fa, &bg, &ba}) Random(++seed).Fill(plane->data(), plane->size());
  for (const bool accelerated : {false, true}) {
    const UsePath path(accelerated);
    const auto merge = [&](int budget) {
      const UseBudget use(budget);
      Bytes over = fg, plus = fg, merged = fa;
      Lib::qvMergeAlphaOver(Type(4), over.data(), fgStep, fa.data(), fgAlphaStep, bg.data(), bgStep,
                            ba.data(), bgAlphaStep, merged.data(), 3 * width, width, height);
      Lib::qvMergeAlphaPlus(Type(4), plus.data(), fgStep, bg.data(), bgStep, ba.data(), bgAlphaStep,
                            width, height);
      return std::tuple(over, plus, merged);
    };
    EXPECT_TRUE(merge(1) == merge(3)) << accelerated;
  }
}

TEST(MergeAlphas, DoNothingForNegativeSizesAndRefuseOtherTypes) {
  const Planes before(1);
  for (const Level& level : AvailableLevels())
    for (const bool accelerated : {false, true}) {
      const UseLevel use(level);
      const UsePath path(accelerated);
      Planes p = before;
      unsigned char* const fg = p.fg.data();
      EXPECT_EQ(p.Merge(768, 256, 0), StatusOk);
      EXPECT_EQ(p.Merge(768, 256, -5), StatusOk);
      EXPECT_EQ(p.Merge(768, -5, 256), StatusOk);
      for (const int height : {-200, 0, 200}) {
        const auto plus = [&](int type, int width) {
          return Lib::qvMergeAlphaPlus(Type(type), fg, 768, p.bg.data(), 768, p.fgAlpha.data(),
                                       256, width, height);
        };
        EXPECT_EQ(plus(3, 10), StatusDataTypeErr);
        EXPECT_EQ(plus(13, 10), StatusDataTypeErr);
        EXPECT_EQ(plus(2, -1), StatusOk);
        if (height <= 0) {
          EXPECT_EQ(plus(4, 10), StatusOk);
        }
      }
      EXPECT_TRUE(p.fg == before.fg && p.dstAlpha == before.dstAlpha);
    }
}

}  // namespace
}  // namespace qv::test
