// Placing a colour image with its own alpha plane over another one.
#include "kernels/composite/Composite.h"
#include "kernels/level/Level.h"
#include "kernels/level/PlainFloats.h"

#if QV_HAS_VECTORS
#include "kernels/composite/OverBlock.h"
#include "kernels/composite/SolidRuns.h"
#include "kernels/level/Ahead.h"
#endif

namespace qv::QV_LEVEL {

namespace {

// ---- Integer path -------------------------------------------------------------------------------

void MergePixelPlain(Byte* fg, unsigned fa, const Byte* bg, unsigned ba, Byte* dstAlpha) {
  const unsigned weight = (255 - fa) * ba;
  const unsigned a = fa + (weight >> 8);
  *dstAlpha = static_cast<Byte>(a);
  for (int c = 0; c < 3; ++c)
    fg[c] = static_cast<Byte>((fg[c] * fa + ((bg[c] * weight) >> 8)) / (a + 1));
}

// ---- Single-precision path ----------------------------------------------------------------------

// a = min(255, d + ((255 - d) * ba >> 8)), in place.
void AlphaRowPlain(Byte* dstAlpha, const Byte* bgAlpha, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; ++x) {
    const int d = dstAlpha[x];
    dstAlpha[x] = ToByte(d + (((255 - d) * bgAlpha[x]) >> 8));
  }
}

// To nearest even by moving the binary point to the end of the significand: the sum's last bit is
// worth 1, and the addition rounds. For 0 <= x < 2^22.
QV_INLINE int NearestInt(float x) {
  const float shifted = RoundToFloat(x + 0x1.8p23f);
  int32_t bits;
  memcpy(&bits, &shifted, 4);
  return bits - 0x4B400000;
}

QV_INLINE float Of255(int x) { return RoundToFloat(static_cast<float>(x) / 255.0f); }

// The sum is at most 255 and the divisor at least 1 / 255: no operation comes near overflow or the
// subnormal range.
[[maybe_unused]] void ColourRowPlain(Byte* fg, const Byte* fgAlpha, const Byte* bg,
                                     const Byte* bgAlpha, const Byte* mergedAlpha,
                                     ptrdiff_t bytes) {
  for (ptrdiff_t i = 0; i < bytes; ++i) {
    const ptrdiff_t pixel = i / 3;
    const float fgWeight = Of255(fgAlpha[pixel]);
    const float bgWeight = RoundToFloat(RoundToFloat(1.0f - fgWeight) * Of255(bgAlpha[pixel]));
    const float sum = RoundToFloat(RoundToFloat(static_cast<float>(fg[i]) * fgWeight) +
                                   RoundToFloat(bgWeight * static_cast<float>(bg[i])));
    fg[i] = ToByte(NearestInt(RoundToFloat(sum / Of255(mergedAlpha[pixel] + 1))));
  }
}

#if QV_HAS_VECTORS

// (255 - d) * ba / 256 in 16-bit lanes: the first factor in the high byte, the upper half of the
// product.
void AlphaRow(Byte* dstAlpha, const Byte* bgAlpha, ptrdiff_t width) {
  const bool done = CoverInPlace<kVecBytes>(
      width, false, BytesToAlign(dstAlpha),
      [&](ptrdiff_t x) {
        const Vec d = Load(dstAlpha + x), ba = Load(bgAlpha + x);
        const Vec rest = Sub8(Splat8(-1), d);
        const Vec low = MulHighUnsigned16(InterleaveLow8(Zero(), rest), InterleaveLow8(ba, Zero()));
        const Vec high =
            MulHighUnsigned16(InterleaveHigh8(Zero(), rest), InterleaveHigh8(ba, Zero()));
        return AddSaturated8(d, PackUnsigned16(low, high));
      },
      [&](ptrdiff_t x, Vec a, auto store) { store(dstAlpha + x, a); });
  if (!done) AlphaRowPlain(dstAlpha, bgAlpha, width);
}

// How far it is to where a run is looked for again. That takes pixels of any alphas half a percent
// longer; for every block it took three.
constexpr ptrdiff_t kStretch = 8 * kOverPixels;

template <bool kAhead, bool kByDivision>
void ColourRow(Byte* fg, const Byte* fgAlpha, const Byte* bg, const Byte* bgAlpha,
               const Byte* mergedAlpha, ptrdiff_t bytes) {
  const auto at = [=](ptrdiff_t x) {
    return OverPixels{fg + 3 * x, fgAlpha + x, bg + 3 * x, bgAlpha + x, mergedAlpha + x};
  };
  const ptrdiff_t lastBlock = bytes / 3 - kOverPixels;
  ptrdiff_t x = 0;
  while (x <= lastBlock) {
    if (MayBeginRun(fgAlpha + x)) {
      const ptrdiff_t run = OverRun(at(x), bytes / 3 - x);
      x += run;
      if (run > 0) continue;
    }
    const ptrdiff_t last = lastBlock - x < kStretch ? lastBlock : x + kStretch - kOverPixels;
    do {
      if constexpr (kAhead) {
        Prefetch<3 * kOverPixels>(fg + 3 * x + kPageBytes);
        Prefetch<3 * kOverPixels>(bg + 3 * x + kPageBytes);
        Prefetch<kOverPixels>(fgAlpha + x + kPageBytes / 2);
        Prefetch<kOverPixels>(bgAlpha + x + kPageBytes / 2);
        Prefetch<kOverPixels>(mergedAlpha + x + kPageBytes / 2);
      }
      OverBlock<kByDivision>(at(x));
      x += kOverPixels;
    } while (x <= last);
  }
  for (; 3 * x < bytes; x += kPartPixels) {
    const ptrdiff_t left = bytes - 3 * x;
    OverPart(at(x), left < 3 * kPartPixels ? left : 3 * kPartPixels);
  }
}

auto ColourRowFor(bool ahead) {
  if constexpr (kOverPermuted)
    if (QuickDivision) return ahead ? ColourRow<true, true> : ColourRow<false, true>;
  return ahead ? ColourRow<true, false> : ColourRow<false, false>;
}

#else

constexpr auto AlphaRow = AlphaRowPlain;
auto ColourRowFor(bool) { return ColourRowPlain; }

#endif

// What the alpha planes have in so many pixels stays in the first cache beside the colours.
constexpr ptrdiff_t kPixelsAtATime = 2048;

// All rows of a plane, from the first byte to past the last.
struct Extent {
  uintptr_t first, end;

  Extent(const Byte* top, int step, ptrdiff_t rowBytes, int height)
      : first(reinterpret_cast<uintptr_t>(top)),
        end(reinterpret_cast<uintptr_t>(RowAt(top, step, ptrdiff_t{height} - 1))) {
    if (step < 0) {
      const uintptr_t last = first;
      first = end;
      end = last;
    }
    end += static_cast<uintptr_t>(rowBytes);
  }
  bool IsApartFrom(const Extent& other) const { return end <= other.first || other.end <= first; }
};

}  // namespace

IppStatus MergeAlphaOverPlain_8u(Byte* fg, int fgStep, const Byte* fgAlpha, int fgAlphaStep,
                                 const Byte* bg, int bgStep, const Byte* bgAlpha, int bgAlphaStep,
                                 Byte* dstAlpha, int width, int height) {
  for (int y = 0; y < height; ++y) {
    Byte* const f = RowAt(fg, fgStep, y);
    const Byte* const b = RowAt(bg, bgStep, y);
    const Byte* const fa = RowAt(fgAlpha, fgAlphaStep, y);
    const Byte* const ba = RowAt(bgAlpha, bgAlphaStep, y);
    Byte* const a = RowAt(dstAlpha, fgAlphaStep, y);
    for (ptrdiff_t x = 0; x < width; ++x)
      MergePixelPlain(f + 3 * x, fa[x], b + 3 * x, ba[x], a + x);
  }
  return StatusOk;
}

// The alphas of all rows come before any colours. If no planes share bytes, only the speed tells
// whether it is done for all rows or for a few at a time.
IppStatus MergeAlphaOver_8u(Byte* fg, int fgStep, const Byte* fgAlpha, int fgAlphaStep,
                            const Byte* bg, int bgStep, const Byte* bgAlpha, int bgAlphaStep,
                            Byte* dstAlpha, int rowBytes, int width, int height) {
  if (height < 1) return StatusOk;
  ptrdiff_t pixels = width > 1 ? width : 1;
  if (3 * pixels < rowBytes) pixels = rowBytes / 3 + 1;
  const Extent f(fg, fgStep, rowBytes, height), fa(fgAlpha, fgAlphaStep, pixels, height),
      b(bg, bgStep, rowBytes, height), ba(bgAlpha, bgAlphaStep, pixels, height),
      a(dstAlpha, fgAlphaStep, pixels, height);
  const bool rowsApart = fgAlphaStep >= pixels || fgAlphaStep <= -pixels;
  const bool apart = rowsApart && a.IsApartFrom(f) && a.IsApartFrom(b) && a.IsApartFrom(ba) &&
                     f.IsApartFrom(ba) && (fgAlpha == dstAlpha || a.IsApartFrom(fa));
  const int rows = apart ? 1 + static_cast<int>(kPixelsAtATime / pixels) : height;
  const auto colourRow = ColourRowFor(PassesCaches(width, height, 3));
  for (int top = 0, end; top < height; top = end) {
    end = height - top > rows ? top + rows : height;
    for (int y = top; y < end; ++y)
      AlphaRow(RowAt(dstAlpha, fgAlphaStep, y), RowAt(bgAlpha, bgAlphaStep, y), width);
    for (int y = top; y < end; ++y)
      colourRow(RowAt(fg, fgStep, y), RowAt(fgAlpha, fgAlphaStep, y), RowAt(bg, bgStep, y),
                RowAt(bgAlpha, bgAlphaStep, y), RowAt(dstAlpha, fgAlphaStep, y), rowBytes);
  }
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
