// Planar 4:2:0 to B, G, R.
#include "kernels/color/Color.h"
#include "kernels/color/ColorSums.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// BT.601 studio range in 16.16 fixed point, rounded half up: 1187776 is 16 * 76284 - 32768.
QV_INLINE void StorePixel(int y, int u, int v, Byte* dst) {
  dst[0] = ToByte((76284 * y + 132186 * u - 1187776) >> 16);
  dst[1] = ToByte((76284 * y - 25690 * u - 53281 * v - 1187776) >> 16);
  dst[2] = ToByte((76284 * y + 104595 * v - 1187776) >> 16);
}

// Two rows of pixels, above each other, and the chroma row that they share; `width` is even.
[[maybe_unused]] void RowPairPlain(const Byte* const luma[2], const Byte* cb, const Byte* cr,
                                   Byte* const dst[2], ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; ++x)
    for (int row = 0; row < 2; ++row)
      StorePixel(luma[row][x], cb[x / 2] - 128, cr[x / 2] - 128, dst[row] + 3 * x);
}

#if !QV_HAS_VECTORS

QV_INLINE void RowPair(const Byte* const luma[2], const Byte* cb, const Byte* cr,
                       Byte* const dst[2], ptrdiff_t width, bool) {
  RowPairPlain(luma, cb, cr, dst, width);
}

#else

// The chroma coefficients' sums, from u and v to Cb and Cr.
constexpr Offsets kOffsets = {-1187776 - 128 * 132186, -1187776 + 128 * (25690 + 53281),
                              -1187776 - 128 * 104595};

template <class Store>
void RowPairBy(Store inner, const Byte* const luma[2], const Byte* cb, const Byte* cr,
               Byte* const dst[2], ptrdiff_t width, ptrdiff_t second) {
  const auto block = [=](ptrdiff_t x, auto store) {
    Vec first, second;
    LoadChroma(cb + x / 2, cr + x / 2, first, second);
    const ChromaTerms low = MakeChromaTerms(first, kOffsets);
    const ChromaTerms high = MakeChromaTerms(second, kOffsets);
    for (int row = 0; row < 2; ++row) {
      LoadLuma(luma[row] + x, first, second);
      StoreBGR(dst[row] + 3 * x, AddLuma(ShiftLeft16<2>(first), low),
               AddLuma(ShiftLeft16<2>(second), high), store);
    }
  };
  if (!CoverWithBlocksBy<kBlockPixels>(inner, width, block, second))
    RowPairPlain(luma, cb, cr, dst, width);
}

QV_INLINE void RowPair(const Byte* const luma[2], const Byte* cb, const Byte* cr,
                       Byte* const dst[2], ptrdiff_t width, bool stream) {
  const ptrdiff_t second = EvenPixelsToAlign3(dst[0]);
  const bool aligns = second > 0 && second == EvenPixelsToAlign3(dst[1]);
  if (stream && aligns)
    RowPairBy(StorePastCaches(), luma, cb, cr, dst, width, second);
  else
    RowPairBy(StoreInCaches(), luma, cb, cr, dst, width, aligns ? second : kBlockPixels);
}

#endif

}  // namespace

IppStatus YCbCr420ToBGR_8u_P3C3(const Byte* const src[3], const int srcStep[3], Byte* dst,
                                int dstStep, IppiSize size) {
  if (!src || !srcStep || !dst) return StatusNullPtrErr;
  if (size.width < 1 || size.height < 1) return StatusSizeErr;
  if (!src[0] || !src[1] || !src[2]) return StatusNullPtrErr;
  const bool stream = PassesCaches(size.width, size.height, 3);
  for (int k = 0; k < size.height / 2; ++k) {
    const Byte* const luma[2] = {RowAt(src[0], srcStep[0], 2 * static_cast<ptrdiff_t>(k)),
                                 RowAt(src[0], srcStep[0], 2 * static_cast<ptrdiff_t>(k) + 1)};
    Byte* const rows[2] = {RowAt(dst, dstStep, 2 * static_cast<ptrdiff_t>(k)),
                           RowAt(dst, dstStep, 2 * static_cast<ptrdiff_t>(k) + 1)};
    RowPair(luma, RowAt(src[1], srcStep[1], k), RowAt(src[2], srcStep[2], k), rows,
            size.width & ~1, stream);
  }
  if (stream) StreamFence();
  return (size.width | size.height) & 1 ? StatusOddSizeWarning : StatusOk;
}

}  // namespace qv::QV_LEVEL
