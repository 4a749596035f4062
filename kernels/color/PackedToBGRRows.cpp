// Packed 4:2:2 to B, G, R.
#include "kernels/color/Color.h"
#include "kernels/color/ColorSums.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// BT.601 studio range in 16.16 fixed point. The offsets are a few units below
// 16 * 76284 + 128 * (chroma coefficients): that is how this conversion rounds.
QV_INLINE void StorePixel(int y, int cb, int cr, Byte* dst) {
  dst[0] = ToByte((76284 * y + 132186 * cb - 18140365) >> 16);
  dst[1] = ToByte((76284 * y - 53281 * cr - 25690 * cb + 8887730) >> 16);
  dst[2] = ToByte((76284 * y + 104595 * cr - 14608761) >> 16);
}

// `width` is even.
[[maybe_unused]] void RowPlain(const Byte* src, Byte* dst, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; x += 2, src += 4, dst += 6) {
    StorePixel(src[0], src[1], src[3], dst);
    StorePixel(src[2], src[1], src[3], dst + 3);
  }
}

#if !QV_HAS_VECTORS

QV_INLINE void Row(const Byte* src, Byte* dst, ptrdiff_t width, bool) {
  RowPlain(src, dst, width);
}

#else

QV_INLINE ColorSums ConvertHalf(Vec groups) {
  const ChromaTerms chroma =
      MakeChromaTerms(ShiftRight16<8>(groups), {-18140365, 8887730, -14608761});
  return AddLuma(FourTimesEvenBytes(groups), chroma);
}

QV_INLINE void Row(const Byte* src, Byte* dst, ptrdiff_t width, bool stream) {
  const auto block = [=](ptrdiff_t x, auto store) {
    Vec first, second;
    LoadPacked(src + 2 * x, first, second);
    StoreBGR(dst + 3 * x, ConvertHalf(first), ConvertHalf(second), store);
  };
  const ptrdiff_t toAlign = EvenPixelsToAlign3(dst);
  const bool done = CoverWithBlocks<kBlockPixels>(width, stream && toAlign > 0, block,
                                                  toAlign > 0 ? toAlign : kBlockPixels);
  if (!done) RowPlain(src, dst, width);
}

#endif

}  // namespace

IppStatus YCbCr422ToBGR_8u_C2C3(const Byte* src, int srcStep, Byte* dst, int dstStep,
                                IppiSize size) {
  if (!src || !dst) return StatusNullPtrErr;
  if (size.width < 2 || size.height < 1) return StatusSizeErr;
  const ptrdiff_t even = size.width & ~1;
  const bool stream = PassesCaches(size.width, size.height, 3);
  for (int y = 0; y < size.height; ++y) {
    const Byte* from = RowAt(src, srcStep, y);
    Byte* to = RowAt(dst, dstStep, y);
    Row(from, to, even, stream);
    // The last group of an odd row has no Cr: that of the group before it serves.
    if (even != size.width) {
      const Byte* last = from + 2 * even;
      StorePixel(last[0], last[1], last[-1], to + 3 * even);
    }
  }
  if (stream) StreamFence();
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
