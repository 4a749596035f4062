// Rotation: quarter turns as permutations, everything else as an affine warp.
#include <math.h>
#include <stddef.h>

#include "kernels/copy/Copy.h"
#include "kernels/geometry/GeometryChecks.h"

namespace qv {

namespace {

// Corner pixels, both included.
struct PixelBox {
  long long x0, y0, x1, y1;
};

// Whole numbers so large that no pixel can get there, yet far from overflow in sums.
long long ToWhole(double shift) {
  constexpr double kFar = 0x1p40;
  return static_cast<long long>(shift > kFar ? kFar : shift < -kFar ? -kFar : shift);
}

// The kernels turn by walking along rows or columns from the source pixel of one corner.
void TurnImage(const unsigned char* src, ptrdiff_t srcStep, unsigned char* dst, ptrdiff_t dstStep,
               Layout layout, int quarter, const PixelBox& box, long long dx, long long dy) {
  const IppiSize size = {static_cast<int>(box.x1 - box.x0 + 1),
                         static_cast<int>(box.y1 - box.y0 + 1)};
  const int pixelBytes = PixelBytes(layout);
  const auto source = [=](long long x, long long y) {
    return src + static_cast<ptrdiff_t>(y) * srcStep + static_cast<ptrdiff_t>(x) * pixelBytes;
  };
  const auto target = [=](long long y) {
    return dst + static_cast<ptrdiff_t>(y) * dstStep + static_cast<ptrdiff_t>(box.x0) * pixelBytes;
  };
  const int from = static_cast<int>(srcStep), to = static_cast<int>(dstStep);
  const bool triples = layout == Layout::kTriples;
  const TransposeKernel& transpose = triples ? Transpose_8u_C3 : Transpose_8u_C1;
  if (quarter == 90)  // (x', y') is source (dy - y', x' - dx): columns of the source upwards
    transpose(source(dy - box.y1, box.x0 - dx), from, target(box.y1), -to, size);
  else if (quarter == 270)  // (y' - dy, dx - x'): rows of the source from the last one
    transpose(source(box.y0 - dy, dx - box.x0), -from, target(box.y0), to, size);
  else  // (dx - x', dy - y')
    (triples ? Mirror_8u_C3 : Mirror_8u_C1)(source(dx - box.x1, dy - box.y1), from,
                                            target(box.y0), to, size.width, size.height,
                                            AxisBoth);
}

IppStatus TurnQuarters(const void* src, IppiSize srcSize, int srcStep, IppiRect srcRoi, void* dst,
                       int dstStep, IppiRect dstRoi, Layout layout, int quarter, double xShift,
                       double yShift) {
  const IppStatus status = CheckRegions(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi);
  if (status != StatusOk) return status;
  GeometryImages images;
  if (FindImages(src, dst, layout, images) != StatusOk) return StatusNullPtrErr;
  const IppiRect part = ClipToImage(srcRoi, srcSize);
  if (part.width < 1 || part.height < 1) return StatusNoOverlapWarning;

  const long long dx = ToWhole(xShift), dy = ToWhole(yShift);
  const long long sx0 = part.x, sy0 = part.y;
  const long long sx1 = sx0 + part.width - 1, sy1 = sy0 + part.height - 1;
  PixelBox box;
  if (quarter == 90)
    box = {sy0 + dx, dy - sx1, sy1 + dx, dy - sx0};
  else if (quarter == 180)
    box = {dx - sx1, dy - sy1, dx - sx0, dy - sy0};
  else
    box = {dx - sy1, sx0 + dy, dx - sy0, sx1 + dy};
  const auto x1 = static_cast<long long>(NumberedCorners(dstRoi).x1);
  const auto y1 = static_cast<long long>(NumberedCorners(dstRoi).y1);
  if (box.x0 < dstRoi.x) box.x0 = dstRoi.x;
  if (box.y0 < dstRoi.y) box.y0 = dstRoi.y;
  if (box.x1 > x1) box.x1 = x1;
  if (box.y1 > y1) box.y1 = y1;
  if (box.x1 < box.x0 || box.y1 < box.y0) return StatusNoOverlapWarning;

  for (int i = 0; i < images.count; ++i)
    TurnImage(images.src[i], srcStep, images.dst[i], dstStep, images.layout, quarter, box, dx,
              dy);
  return StatusOk;
}

}  // namespace

IppStatus RotateCore(const void* src, IppiSize srcSize, int srcStep, IppiRect srcRoi, void* dst,
                     int dstStep, IppiRect dstRoi, Layout layout, double angle, double xShift,
                     double yShift, int interpolation) {
  const double a = ReduceAngle(angle);
  if ((a == 90 || a == 180 || a == 270) && xShift == floor(xShift) && yShift == floor(yShift))
    return TurnQuarters(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, layout,
                        static_cast<int>(a), xShift, yShift);
  double coeffs[2][3];
  RotationCoefficients(angle, xShift, yShift, coeffs);
  return WarpAffineCore(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, layout, coeffs,
                        interpolation);
}

IppStatus Rotate_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiRect dstRoi, double angle,
                       double xShift, double yShift, int interpolation) {
  return RotateCore(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, Layout::kGrey, angle,
                    xShift, yShift, interpolation);
}

IppStatus Rotate_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiRect dstRoi, double angle,
                       double xShift, double yShift, int interpolation) {
  return RotateCore(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, Layout::kTriples,
                    angle, xShift, yShift, interpolation);
}

}  // namespace qv
