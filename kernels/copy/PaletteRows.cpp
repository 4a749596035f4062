// Palette lookup.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

IppStatus LookupPalette_8u_C1C3(const Byte* src, int srcStep, Byte* dst, int dstStep, int width,
                                int height, const Byte* palette, int bitSize) {
  if (!palette) return StatusNullPtrErr;
  if (const IppStatus status = CheckImages(src, dst, width, height); status != StatusOk)
    return status;
  if (bitSize < 1 || bitSize > 8) return StatusOutOfRangeErr;
  const int mask = (1 << bitSize) - 1;
  for (int y = 0; y < height; ++y) {
    const Byte* from = RowAt(src, srcStep, y);
    Byte* to = RowAt(dst, dstStep, y);
    for (ptrdiff_t k = 0; k < width; ++k)
      for (int c = 0; c < 3; ++c) to[3 * k + c] = palette[3 * (from[k] & mask) + c];
  }
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
