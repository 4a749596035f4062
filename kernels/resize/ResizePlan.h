// From checked arguments to rows: what whole images, bands and packed 4:2:2 have in common.
#ifndef QV_KERNELS_RESIZE_RESIZEPLAN_H
#define QV_KERNELS_RESIZE_RESIZEPLAN_H

#include <stddef.h>

#include "kernels/resize/Positions.h"
#include "kernels/resize/Resize.h"

namespace qv {

// The first sample of a rectangle of an image with `pixelBytes` bytes a pixel. Addresses are wide:
// a row number times a step may pass 2 GiB.
inline const unsigned char* PixelAt(const unsigned char* base, int step, ptrdiff_t x, ptrdiff_t y,
                                    int pixelBytes) {
  return base + y * step + x * pixelBytes;
}

// StatusSizeErr for an empty image or region or a region origin below 0, else StatusOk.
inline IppStatus CheckSource(IppiSize size, IppiRect roi) {
  const bool bad = size.width < 1 || size.height < 1 || roi.x < 0 || roi.y < 0 ||
                   roi.width < 1 || roi.height < 1;
  return bad ? StatusSizeErr : StatusOk;
}

// False as well for a factor that is not a number.
inline bool AreFactorsPositive(double xFactor, double yFactor) {
  return xFactor > 0 && yFactor > 0;
}

// A code other than area averaging, which goes its own ways.
inline bool IsInterpolation(int code) {
  return code == InterpolateNearest || code == InterpolateLinear || code == InterpolateCubic ||
         code == InterpolateLanczos;
}

inline bool StartsOutside(IppiSize size, IppiRect roi) {
  return roi.x >= size.width || roi.y >= size.height;
}

}  // namespace qv

#endif
