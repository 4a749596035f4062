// Scaling by a constant.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// floor(x * value / 255) for bytes: with p = x * value, p / 255 = (p + p / 256 + p / 65536 + ...) /
// 256, and the 1 makes up for the terms cut off.
QV_INLINE void ScaleRowPlain(const Byte* src, Byte* dst, ptrdiff_t width, unsigned value) {
  for (ptrdiff_t k = 0; k < width; ++k) {
    const unsigned p = src[k] * value;
    dst[k] = static_cast<Byte>((p + (p >> 8) + 1) >> 8);
  }
}

#if QV_HAS_VECTORS

// The same quotient by one multiplication in 16-bit lanes: x * (257 * value + 1) >> 16, for values
// up to 254. With x * value = 255 k + r, the product is 65535 k + 257 r + x. It is at least 65536
// k, as k <= x, and below 65536 (k + 1), as 257 r + x <= 257 * 254 + 255.
void ScaleRow(const Byte* src, Byte* dst, ptrdiff_t width, unsigned value) {
  if (value == 255) {  // every byte stays
    memmove(dst, src, static_cast<size_t>(width));
    return;
  }
  const Vec factor = Splat16(static_cast<int>(257 * value + 1));
  const bool done = ApplyInPlace(src, dst, width, [&](Vec x) {
    return PackUnsigned16(MulHighUnsigned16(InterleaveLow8(x, Zero()), factor),
                          MulHighUnsigned16(InterleaveHigh8(x, Zero()), factor));
  });
  if (!done) ScaleRowPlain(src, dst, width, value);
}

#else

void ScaleRow(const Byte* src, Byte* dst, ptrdiff_t width, unsigned value) {
  ScaleRowPlain(src, dst, width, value);
}

#endif

}  // namespace

IppStatus MulScale_8u_C1I(const Byte* src, int srcStep, Byte value, Byte* dst, int dstStep,
                          int width, int height) {
  if (!src || !dst) return StatusNullPtrErr;
  if (srcStep < 1 || dstStep < 1) return StatusStepErr;
  if (width < 1 || height < 1) return StatusSizeErr;
  for (int y = 0; y < height; ++y)
    ScaleRow(RowAt(src, srcStep, y), RowAt(dst, dstStep, y), width, value);
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
