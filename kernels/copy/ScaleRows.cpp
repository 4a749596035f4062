// Scaling by a constant.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// floor(x * value / 255) for bytes: with p = x * value, p / 255 = (p + p / 256 + p / 65536 + ...) /
// 256, and the 1 makes up for the terms cut off.
QV_INLINE Byte ScaleByte(unsigned x, unsigned value) {
  const unsigned p = x * value;
  return static_cast<Byte>((p + (p >> 8) + 1) >> 8);
}

}  // namespace

IppStatus MulScale_8u_C1I(const Byte* src, int srcStep, Byte value, Byte* dst, int dstStep,
                          int width, int height) {
  if (!src || !dst) return StatusNullPtrErr;
  if (srcStep < 1 || dstStep < 1) return StatusStepErr;
  if (width < 1 || height < 1) return StatusSizeErr;
  for (int y = 0; y < height; ++y) {
    const Byte* from = RowAt(src, srcStep, y);
    Byte* to = RowAt(dst, dstStep, y);
    for (ptrdiff_t k = 0; k < width; ++k) to[k] = ScaleByte(from[k], value);
  }
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
