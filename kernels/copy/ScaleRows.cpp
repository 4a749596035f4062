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

// The same quotient in 16-bit lanes: (p + 1) * 257 >> 16. Both are exact for the 65026 values of p.
QV_INLINE Vec ScaleLanes(Vec x, Vec value) {
  return MulHighUnsigned16(Add16(MulLow16(x, value), Splat16(1)), Splat16(257));
}

void ScaleRow(const Byte* src, Byte* dst, ptrdiff_t width, unsigned value) {
  const Vec values = Splat16(static_cast<int>(value));
  const bool done = ApplyInPlace(src, dst, width, [&](Vec x) {
    return PackUnsigned16(ScaleLanes(InterleaveLow8(x, Zero()), values),
                          ScaleLanes(InterleaveHigh8(x, Zero()), values));
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
