// qvMergeAlphaOver and qvMergeAlphaPlus: their formulas for all alphas, both paths, aliases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "qvAcceleratedLib/Settings.h"
#include "support/Bytes.h"
#include "support/Levels.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

// Selects the path of the over merge for a scope.
class UsePath {
 public:
  explicit UsePath(bool accelerated) : old_(std::exchange(HostProcessorInfo, accelerated)) {}
  ~UsePath() { HostProcessorInfo = old_; }

 private:
  unsigned old_;
};

// The formulas, a pixel at a time.
constexpr unsigned PlainAlpha(unsigned fa, unsigned ba) { return fa + (((255 - fa) * ba) >> 8); }

constexpr unsigned PlainColour(unsigned f, unsigned fa, unsigned b, unsigned ba) {
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

constexpr unsigned Mixed(unsigned a, unsigned s, unsigned d) {
  const unsigned p = a * s, q = (255 - a) * d;
  return std::min(255u, ((p + 1 + (p >> 8)) >> 8) + ((q + 1) >> 8));
}

static_assert(PlainColour(255, 255, 0, 0) == 254 && PlainColour(10, 0, 200, 0) == 0);
static_assert(PlainAlpha(0, 255) == 254);
static_assert(Mixed(255, 255, 0) == 255 && Mixed(0, 0, 255) == 254);

// Every pair of a foreground and a background alpha as 65536 pixels of 256 rows, with colours: for
// the first seeds those that make ties and extremes likely.
struct Planes {
  static constexpr int kSide = 256;
  Bytes fg, fgAlpha, bg, bgAlpha, dstAlpha;

  explicit Planes(unsigned seed)
      : fg(3 * kSide * kSide), fgAlpha(kSide * kSide), bg(fg), bgAlpha(fgAlpha), dstAlpha() {
    static constexpr unsigned char kExtremes[][2] = {{255, 255}, {255, 0}, {0, 255},
                                                     {128, 128}, {1, 254}, {127, 1}};
    Random(seed).Fill(fg.data(), fg.size());
    Random(seed + 1).Fill(bg.data(), bg.size());
    if (seed < std::size(kExtremes)) {
      fg.assign(fg.size(), kExtremes[seed][0]);
      bg.assign(bg.size(), kExtremes[seed][1]);
    }
    for (int i = 0; i < kSide * kSide; ++i) {
      fgAlpha[i] = static_cast<unsigned char>(i);
      bgAlpha[i] = static_cast<unsigned char>(i >> 8);
    }
    dstAlpha = fgAlpha;
  }
  bool operator==(const Planes&) const = default;

  // `merged` is dstAlpha or another plane.
  IppStatus Merge(Bytes Planes::*merged, int rowBytes = 3 * kSide, int width = kSide,
                  int height = kSide) {
    return Lib::qvMergeAlphaOver(kAnyType, fg.data(), 3 * kSide, fgAlpha.data(), kSide, bg.data(),
                                 3 * kSide, bgAlpha.data(), kSide, (this->*merged).data(), rowBytes,
                                 width, height);
  }

  void MergeByFormula(Bytes Planes::*merged, bool accelerated) {
    Bytes& alphas = this->*merged;
    for (std::size_t i = 0; i < alphas.size(); ++i) {
      const unsigned d = alphas[i], ba = bgAlpha[i];
      alphas[i] = static_cast<unsigned char>(accelerated ? std::min(255u, d + ((255 - d) * ba >> 8))
                                                         : PlainAlpha(fgAlpha[i], ba));
    }
    for (std::size_t k = 0; k < fg.size(); ++k) {
      const unsigned fa = fgAlpha[k / 3], ba = bgAlpha[k / 3];
      fg[k] = static_cast<unsigned char>(accelerated
                                             ? FloatColour(fg[k], fa, bg[k], ba, alphas[k / 3])
                                             : PlainColour(fg[k], fa, bg[k], ba));
    }
  }
};

// The merged alpha holds a copy, or unrelated values (quotients beyond 255).
TEST(MergeAlphaOver, IsTheFormulaForAllAlphasOnBothPathsAtAllLevels) {
  for (const bool accelerated : {false, true})
    for (unsigned seed = 0; seed < 32; ++seed) {
      const UsePath path(accelerated);
      Planes before(seed % 16);
      if (seed >= 16) Random(77).Fill(before.dstAlpha.data(), before.dstAlpha.size());
      Planes expected = before;
      expected.MergeByFormula(&Planes::dstAlpha, accelerated);
      for (const Level& level : AvailableLevels()) {
        const UseLevel use(level);
        Planes p = before;
        ASSERT_EQ(p.Merge(&Planes::dstAlpha), StatusOk);
        ASSERT_TRUE(p == expected) << accelerated << ' ' << seed << ' ' << level.name;
      }
    }
}

// All alphas are merged before any colour, which tells where planes share rows: all rows of the
// alpha planes are one, or row y of a plane is row y + 1 or y - 1 of another.
TEST(MergeAlphaOver, MergesAllAlphaRowsBeforeTheColours) {
  const UsePath path(true);
  const int width = 1100, height = 5, step = 3 * width, plane = (height + 2) * step;
  static constexpr struct {
    const char* what;
    int alphaStep, fg, fgAlpha, bg, bgAlpha, merged;
  } kLayouts[] = {
      {"apart", step, 0, plane, 2 * plane, 3 * plane, 4 * plane},
      {"one row of alphas", 0, 0, plane, 2 * plane, 3 * plane, 4 * plane},
      {"foreground alphas below merged", step, 0, plane + step, 2 * plane, 3 * plane, plane},
      {"background alphas below merged", step, 0, plane, 2 * plane, 3 * plane + step, 3 * plane},
      {"merged in background colours", step, 0, plane, 2 * plane + step, 3 * plane, 2 * plane},
      {"merged in colours", step, step, plane, 2 * plane, 3 * plane, 0},
      {"background alphas in colours", step, step, plane, 2 * plane, 0, 4 * plane},
  };
  for (const auto& at : kLayouts) {
    const Bytes before = Noise(5 * plane);
    Bytes expected = before;
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) {
        unsigned char& a = expected[at.merged + y * at.alphaStep + x];
        a = static_cast<unsigned char>(
            std::min(255, a + ((255 - a) * expected[at.bgAlpha + y * at.alphaStep + x] >> 8)));
      }
    for (int y = 0; y < height; ++y)
      for (int k = 0; k < 3 * width; ++k) {
        const int x = y * at.alphaStep + k / 3;
        unsigned char& f = expected[at.fg + y * step + k];
        f = static_cast<unsigned char>(FloatColour(f, expected[at.fgAlpha + x],
                                                   expected[at.bg + y * step + k],
                                                   expected[at.bgAlpha + x],
                                                   expected[at.merged + x]));
      }
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      Bytes all = before;
      unsigned char* const p = all.data();
      Lib::qvMergeAlphaOver(kAnyType, p + at.fg, step, p + at.fgAlpha, at.alphaStep, p + at.bg,
                            step, p + at.bgAlpha, at.alphaStep, p + at.merged, 3 * width, width,
                            height);
      ASSERT_TRUE(all == expected) << at.what << ' ' << level.name;
    }
  }
}

TEST(MergeAlphaOver, ConvertsRowBytesOfColourWhateverTheWidth) {
  const UsePath path(true);
  const Planes before(8);
  for (const int width : {256, 100, 0, -5})
    for (const int rowBytes : {-3, 0, 1, 2, 4, 47, 49, 190, 767}) {
      Planes expected = before;
      expected.MergeByFormula(&Planes::dstAlpha, true);
      for (std::size_t k = 0; k < expected.fg.size(); ++k) {
        const std::size_t i = k / 3;
        if (static_cast<int>(i % 256) >= width) {
          expected.dstAlpha[i] = before.dstAlpha[i];
          expected.fg[k] = static_cast<unsigned char>(
              FloatColour(before.fg[k], before.fgAlpha[i], before.bg[k], before.bgAlpha[i],
                          before.dstAlpha[i]));
        }
        if (static_cast<int>(k % 768) >= rowBytes) expected.fg[k] = before.fg[k];
      }
      for (const Level& level : AvailableLevels()) {
        const UseLevel use(level);
        Planes p = before;
        ASSERT_EQ(p.Merge(&Planes::dstAlpha, rowBytes, width), StatusOk);
        ASSERT_TRUE(p == expected) << width << ' ' << rowBytes << ' ' << level.name;
      }
    }
}

// All alphas beside all bytes of a first channel; further channels are other bytes.
TEST(MergeAlphaPlus, IsTheFormulaForAllAlphasAtAllLevels) {
  const int side = 256;
  Bytes alpha(side * side);
  for (int i = 0; i < side * side; ++i) alpha[i] = static_cast<unsigned char>(i);
  for (const int channels : {1, 3})
    for (int d = 0; d < 256; d += d == 127 ? 1 : 3) {
      Bytes src(channels * side * side), before(src), expected(src);
      for (int i = 0; i < channels * side * side; ++i) {
        src[i] = static_cast<unsigned char>((i / channels >> 8) + i % channels * 85);
        before[i] = static_cast<unsigned char>(d + i % channels * 101);
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

}  // namespace
}  // namespace qv::test
