// Entry points of rotation and perspective warping.
//
// Images are given by their pixel (0, 0); regions are in pixels of the whole image. The checks, in
// this order, of all but the quarter turns (which see below):
//   StatusNullPtrErr         a null image
//   StatusSizeErr            a source size, region width or height below 1, a negative region
//                            origin
//   StatusStepErr            a step below 1
//   StatusInterpolationErr   an interpolation, bit 31 aside, other than 1, 2, 4
//   StatusNullPtrErr         a null plane of a planar layout
//   StatusCoeffErr           an upper-left 2 x 2 block that is singular or nearly so; then a source
//                            region whose corners come out degenerate or not convex (perspective),
//                            or a shift that is infinite or not a number (affine)
//   StatusRectErr            a source region with no pixel inside the source image (perspective)
//   StatusNoOverlapWarning   the same (affine); a mapped region that misses the destination region;
//                            nothing written
#ifndef QV_KERNELS_GEOMETRY_GEOMETRY_H
#define QV_KERNELS_GEOMETRY_GEOMETRY_H

#include "dispatch/Dispatched.h"
#include "kernels/Layout.h"
#include "kernels/geometry/WarpSource.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Images are grey, of triples, or planar; planar ones are given by arrays of plane pointers in
// place of the image pointers.

// qvWarpPerspective (CqvAccLib.h), and the same with the affine matrix
// [[c00, c01, c02], [c10, c11, c12]].
IppStatus WarpPerspectiveCore(const void* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                              void* dst, int dstStep, IppiRect dstRoi, Layout layout,
                              const double coeffs[3][3], int interpolation);
IppStatus WarpAffineCore(const void* src, IppiSize srcSize, int srcStep, IppiRect srcRoi, void* dst,
                         int dstStep, IppiRect dstRoi, Layout layout, const double coeffs[2][3],
                         int interpolation);

// qvRotate. Quarter turns with whole shifts do not look at the interpolation, check the planes
// before the regions and return StatusNoOverlapWarning for a source region outside the image.
IppStatus RotateCore(const void* src, IppiSize srcSize, int srcStep, IppiRect srcRoi, void* dst,
                     int dstStep, IppiRect dstRoi, Layout layout, double angle, double xShift,
                     double yShift, int interpolation);

IppStatus WarpPerspective_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep,
                                IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRoi,
                                const double coeffs[3][3], int interpolation);
IppStatus WarpPerspective_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep,
                                IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRoi,
                                const double coeffs[3][3], int interpolation);
IppStatus Rotate_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiRect dstRoi, double angle,
                       double xShift, double yShift, int interpolation);
IppStatus Rotate_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiRect dstRoi, double angle,
                       double xShift, double yShift, int interpolation);

// The kernels that they call, at each level.

// Samples columns first .. last of a destination row, at most kWarpColumns of them, whose column 0
// `dst` points at. The segments are ascending, cover these columns and stay within the aligned
// blocks of kWarpBlock that they touch.
using WarpKernel = Dispatched<void(
    const WarpSource* source, const WarpSegment* segments, int count, int first, int last,
    unsigned char* dst)>;
extern QV_HIDDEN const WarpKernel WarpRow_8u_C1, WarpRow_8u_C3;

// dst[r][c] = src[c][r] for a destination of `size`; steps may be negative. Checks nothing.
using TransposeKernel = Dispatched<void(
    const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, IppiSize size)>;
extern QV_HIDDEN const TransposeKernel Transpose_8u_C1, Transpose_8u_C3;

}  // namespace qv

#endif
