// The argument checks that warping and rotation share.
#ifndef QV_KERNELS_GEOMETRY_GEOMETRYCHECKS_H
#define QV_KERNELS_GEOMETRY_GEOMETRYCHECKS_H

#include "kernels/geometry/Geometry.h"
#include "kernels/geometry/Transform.h"

namespace qv {

// Images of one call, whatever the layout: one interleaved image, or several planes.
struct GeometryImages {
  const unsigned char* src[4];
  unsigned char* dst[4];
  int count;
  Layout layout;  // of each
};

// Pointers, sizes, regions and steps, in this order.
inline IppStatus CheckRegions(const void* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                              const void* dst, int dstStep, IppiRect dstRoi) {
  if (!src || !dst) return StatusNullPtrErr;
  if (srcSize.width < 1 || srcSize.height < 1) return StatusSizeErr;
  if (srcRoi.x < 0 || srcRoi.y < 0 || srcRoi.width < 1 || srcRoi.height < 1) return StatusSizeErr;
  if (dstRoi.x < 0 || dstRoi.y < 0 || dstRoi.width < 1 || dstRoi.height < 1) return StatusSizeErr;
  if (srcStep < 1 || dstStep < 1) return StatusStepErr;
  return StatusOk;
}

// The images that the pointers lead to; StatusNullPtrErr if a plane is null.
inline IppStatus FindImages(const void* src, void* dst, Layout layout, GeometryImages& images) {
  images.count = PlaneCount(layout);
  images.layout = layout;
  if (images.count == 1) {
    images.src[0] = static_cast<const unsigned char*>(src);
    images.dst[0] = static_cast<unsigned char*>(dst);
    return StatusOk;
  }
  for (int i = 0; i < images.count; ++i) {
    images.src[i] = static_cast<const unsigned char* const*>(src)[i];
    images.dst[i] = static_cast<unsigned char* const*>(dst)[i];
    if (!images.src[i] || !images.dst[i]) return StatusNullPtrErr;
  }
  return StatusOk;
}

// The part of a region inside an image of this size; the width or height is below 1 if there is
// none.
inline IppiRect ClipToImage(IppiRect roi, IppiSize size) {
  const int width = size.width - roi.x, height = size.height - roi.y;
  return {roi.x, roi.y, roi.width < width ? roi.width : width,
          roi.height < height ? roi.height : height};
}

// The pixels of a region that an int can number: it may reach farther, and no pixel is there.
inline Corners NumberedCorners(IppiRect roi) {
  constexpr double kLast = 0x7FFFFFFF;
  Corners corners = CornersOf(roi);
  if (corners.x1 > kLast) corners.x1 = kLast;
  if (corners.y1 > kLast) corners.y1 = kLast;
  return corners;
}

}  // namespace qv

#endif
