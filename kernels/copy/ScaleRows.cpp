// Scaling by a constant.
#include "kernels/copy/Copy.h"
#include "kernels/level/Div255.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

QV_INLINE void ScaleRowPlain(const Byte* src, Byte* dst, ptrdiff_t width, int value) {
  for (ptrdiff_t k = 0; k < width; ++k) dst[k] = static_cast<Byte>(Div255(src[k] * value));
}

#if QV_HAS_VECTORS

void ScaleRow(const Byte* src, Byte* dst, ptrdiff_t width, int value) {
  if (value == 255) {  // every byte stays
    memmove(dst, src, static_cast<size_t>(width));
    return;
  }
  const Vec factor = Fraction255(value);
  const bool done = CoverInPlace<kVecBytes, 4>(
      width, false, BytesToAlign(dst),
      [&](ptrdiff_t k) {
        const Vec x = LoadOnce(src + k);
        return PackUnsigned16(MulHighUnsigned16(InterleaveLow8(x, Zero()), factor),
                              MulHighUnsigned16(InterleaveHigh8(x, Zero()), factor));
      },
      [&](ptrdiff_t k, Vec scaled, auto store) { store(dst + k, scaled); });
  if (!done) ScaleRowPlain(src, dst, width, value);
}

#else

void ScaleRow(const Byte* src, Byte* dst, ptrdiff_t width, int value) {
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
