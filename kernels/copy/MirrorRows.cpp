// Mirror images.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// The last `width` pixels of a row whose first ones have been mirrored: source pixel x, of `src`,
// goes to destination pixel width - 1 - x of `dst`.
template <int kChannels>
QV_INLINE void ReverseRowPlain(const Byte* src, Byte* dst, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; ++x)
    for (int c = 0; c < kChannels; ++c)
      dst[kChannels * (width - 1 - x) + c] = src[kChannels * x + c];
}

#if !QV_HAS_VECTORS

template <int kChannels>
void ReverseRow(const Byte* src, Byte* dst, ptrdiff_t width) {
  ReverseRowPlain<kChannels>(src, dst, width);
}

#else

template <int kChannels>
void ReverseRow(const Byte* src, Byte* dst, ptrdiff_t width);

template <>
void ReverseRow<1>(const Byte* src, Byte* dst, ptrdiff_t width) {
  const bool done = CoverWithBlocks<kVecBytes>(width, [&](ptrdiff_t x) {
    Store(dst + width - kVecBytes - x, ReverseBytes(Load(src + x)));
  });
  if (!done) ReverseRowPlain<1>(src, dst, width);
}

// Pixels go in blocks of one byte less than a vector (or, without shuffles, a word) holds. The spare
// byte is the last one read and the first one written: it lands before the block, on a byte that
// the next block overwrites. Blocks therefore stop where no byte is left on that side.
template <>
void ReverseRow<3>(const Byte* src, Byte* dst, ptrdiff_t width) {
  ptrdiff_t x = 0;
  if constexpr (kHasBytePermute) {
    constexpr int kBlock = 21;
    static constexpr ByteTable table = MakeByteTable(
        [](int j) { return j == 0 ? 63 : 3 * (kBlock - 1 - (j - 1) / 3) + (j - 1) % 3; });
    const Vec index = Load(&table);
    for (; x <= width - kBlock - 1; x += kBlock)
      Store(dst + 3 * (width - kBlock - x) - 1, PermuteBytes(Load(src + 3 * x), index));
    // What is left, 1 to 21 pixels, in the last bytes of a vector whose other bytes are masked off.
    const ptrdiff_t rest = width - x;
    const unsigned long long pixels = (1ull << (3 * rest)) - 1;
    const ptrdiff_t masked = 64 - 3 * rest;
    StorePart(dst - masked, PermuteBytes(LoadPart(src + 3 * x, pixels), index), pixels << masked);
  } else if constexpr (kHasByteShuffle) {
    const Vec16 index = _mm_setr_epi8(15, 12, 13, 14, 9, 10, 11, 6, 7, 8, 3, 4, 5, 0, 1, 2);
    for (; x <= width - 6; x += 5)
      Store16(dst + 3 * (width - 5 - x) - 1, ShuffleBytes16(Load16(src + 3 * x), index));
    ReverseRowPlain<3>(src + 3 * x, dst, width - x);
  } else {
    // A word holds the byte before a pixel, which is the spare one, and the pixel.
    if (width > 0) memcpy(dst + 3 * (width - 1), src, 3);
    for (x = 1; x < width - 1; ++x) memcpy(dst + 3 * (width - 1 - x) - 1, src + 3 * x - 1, 4);
    if (width > 1) memcpy(dst, src + 3 * (width - 1), 3);
  }
}

#endif

template <int kChannels>
QV_INLINE IppStatus Mirror(const Byte* src, int srcStep, Byte* dst, int dstStep, int width,
                           int height, IppiAxis axis) {
  if (const IppStatus status = CheckImages(src, dst, width, height); status != StatusOk)
    return status;
  if (axis != AxisHorizontal && axis != AxisVertical && axis != AxisBoth) return StatusAxisErr;
  const size_t rowBytes = static_cast<size_t>(width) * kChannels;
  for (int y = 0; y < height; ++y) {
    const Byte* from = RowAt(src, srcStep, y);
    Byte* to = RowAt(dst, dstStep, axis == AxisVertical ? y : height - 1 - y);
    if (axis == AxisHorizontal)
      memcpy(to, from, rowBytes);
    else
      ReverseRow<kChannels>(from, to, width);
  }
  return StatusOk;
}

}  // namespace

IppStatus Mirror_8u_C1(const Byte* src, int srcStep, Byte* dst, int dstStep, int width,
                       int height, IppiAxis axis) {
  return Mirror<1>(src, srcStep, dst, dstStep, width, height, axis);
}

IppStatus Mirror_8u_C3(const Byte* src, int srcStep, Byte* dst, int dstStep, int width,
                       int height, IppiAxis axis) {
  return Mirror<3>(src, srcStep, dst, dstStep, width, height, axis);
}

}  // namespace qv::QV_LEVEL
