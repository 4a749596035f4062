// The whole-image kernels: checks, planning, rows.
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizePlan.h"

namespace qv {

namespace {

// Long filters want more samples than a small image has.
int DowngradedForSize(int interpolation, IppiSize size) {
  const int shorter = size.width < size.height ? size.width : size.height;
  if (interpolation == InterpolateLanczos && shorter < 8) interpolation = InterpolateCubic;
  if (interpolation == InterpolateCubic && shorter < 4) interpolation = InterpolateLinear;
  if (shorter < 2) interpolation = InterpolateNearest;
  return interpolation;
}

IppStatus RunWhole(const ResizeTask& task, Axis x, Axis y, int interpolation) {
  switch (interpolation) {
    case InterpolateNearest:
      return RunNearest(
          task, [&](int* at) { NearestIndices(x, task.width, at); },
          [&](int* at) { NearestIndices(y, task.height, at); }, NoChroma());
    case InterpolateLinear:
      return RunLinear(
          task, [&](int* at, unsigned short* w) { AlignedTaps(x, task.width, at, w); },
          [&](int* at, unsigned short* w) { AlignedTaps(y, task.height, at, w); }, NoChroma());
    case InterpolateArea:
      return AverageImage(task.Filter(), {task.width, 1 / x.factor, x.length}, {},
                          {task.height, 1 / y.factor, y.length});
    default:
      return RunFilter(
          task, interpolation, [&](double* at) { AlignedPositions(x, task.width, at); },
          [&](double* at) { AlignedPositions(y, task.height, at); }, NoChroma());
  }
}

// A call whose arguments are good: what is read, what is written, and how.
struct WholePlan {
  Axis x, y;
  int width, height, interpolation;
};

IppStatus PlanWhole(IppiSize srcSize, IppiRect srcRoi, IppiSize dstRoiSize, double xFactor,
                    double yFactor, int interpolation, WholePlan* plan) {
  if (CheckSource(srcSize, srcRoi) != StatusOk) return StatusSizeErr;
  if (StartsOutside(srcSize, srcRoi)) return StatusNoOverlapWarning;
  if (dstRoiSize.width < 1 || dstRoiSize.height < 1) return StatusSizeErr;
  if (!AreFactorsPositive(xFactor, yFactor)) return StatusResizeFactorErr;
  const bool area = interpolation == InterpolateArea && !Enlarges(xFactor, yFactor);
  if (!area) {
    if (!IsInterpolation(interpolation)) return StatusInterpolationErr;
    interpolation = DowngradedForSize(interpolation, srcSize);
  }
  const Axis x = {ClippedLength(srcRoi.x, srcRoi.width, srcSize.width), xFactor};
  const Axis y = {ClippedLength(srcRoi.y, srcRoi.height, srcSize.height), yFactor};
  *plan = {x, y, WrittenExtent(x, dstRoiSize.width), WrittenExtent(y, dstRoiSize.height),
           interpolation};
  return plan->width == 0 || plan->height == 0 ? StatusEmptyOutputErr : StatusOk;
}

IppStatus ResizeImage(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                      unsigned char* dst, int dstStep, IppiSize dstRoiSize, double xFactor,
                      double yFactor, int interpolation, Layout layout) {
  if (!src || !dst) return StatusNullPtrErr;
  WholePlan plan;
  const IppStatus status =
      PlanWhole(srcSize, srcRoi, dstRoiSize, xFactor, yFactor, interpolation, &plan);
  if (status != StatusOk) return status;
  const ResizeTask task = {PixelAt(src, srcStep, srcRoi.x, srcRoi.y, PixelBytes(layout)),
                           srcStep,
                           dst,
                           dstStep,
                           layout,
                           plan.width,
                           plan.height,
                           plan.x.length,
                           plan.y.length};
  return RunWhole(task, plan.x, plan.y, plan.interpolation);
}

// In the region; area averaging stands in the middle of what it covers.
double PositionOf(Axis axis, int i, int interpolation) {
  switch (interpolation) {
    case InterpolateNearest: return NearestIndex(axis, i);
    case InterpolateArea: return (i + 0.5) / axis.factor - 0.5;
    default: return AlignedPosition(axis, i);
  }
}

}  // namespace

IppStatus WholeSourcePosition(const ResizeCall& call, int x, int y, double position[2]) {
  WholePlan plan;
  const IppStatus status = PlanWhole(call.srcSize, call.srcRoi, call.dstRoiSize, call.xFactor,
                                     call.yFactor, call.interpolation, &plan);
  if (status != StatusOk) return status;
  if (x < 0 || x >= plan.width || y < 0 || y >= plan.height) return StatusOutOfRangeErr;
  position[0] = call.srcRoi.x + PositionOf(plan.x, x, plan.interpolation);
  position[1] = call.srcRoi.y + PositionOf(plan.y, y, plan.interpolation);
  return StatusOk;
}

bool Enlarges(double xFactor, double yFactor) { return xFactor > 1 || yFactor > 1; }

IppStatus Resize_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiSize dstRoiSize, double xFactor,
                       double yFactor, int interpolation) {
  return ResizeImage(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoiSize, xFactor, yFactor,
                     interpolation, Layout::kGrey);
}

IppStatus Resize_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiSize dstRoiSize, double xFactor,
                       double yFactor, int interpolation) {
  return ResizeImage(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoiSize, xFactor, yFactor,
                     interpolation, Layout::kTriples);
}

}  // namespace qv
