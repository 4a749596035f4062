// Fills with a constant byte or a constant three-byte pixel.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

IppStatus SetPixels_8u_C1(Byte value, Byte* dst, int dstStep, IppiSize size) {
  if (const IppStatus status = CheckImages(dst, dst, size.width, size.height); status != StatusOk)
    return status;
  for (int y = 0; y < size.height; ++y)
    memset(RowAt(dst, dstStep, y), value, static_cast<size_t>(size.width));
  return StatusOk;
}

IppStatus SetPixels_8u_C3(const Byte* value, Byte* dst, int dstStep, IppiSize size) {
  if (const IppStatus status = CheckImages(value, dst, size.width, size.height);
      status != StatusOk)
    return status;
  const Byte pixel[3] = {value[0], value[1], value[2]};
  for (int y = 0; y < size.height; ++y) {
    Byte* row = RowAt(dst, dstStep, y);
    for (ptrdiff_t k = 0; k < size.width; ++k)
      for (int c = 0; c < 3; ++c) row[3 * k + c] = pixel[c];
  }
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
