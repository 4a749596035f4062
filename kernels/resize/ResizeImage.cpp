// The whole-image kernels: checks, planning, rows.
#include "kernels/resize/FilterImage.h"
#include "kernels/resize/Positions.h"
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizePlan.h"
#include "kernels/resize/ResizeRows.h"
#include "kernels/resize/WorkMemory.h"

namespace qv {

namespace {

// A checked job: sizes are those of the clipped region and of what is written.
struct Job {
  const unsigned char* src;
  int srcStep;
  unsigned char* dst;
  int dstStep, channels;
  Axis x, y;
  int width, height;
};

// Long filters want more samples than a small image has.
int DowngradedForSize(int interpolation, IppiSize size) {
  const int shorter = size.width < size.height ? size.width : size.height;
  if (interpolation == InterpolateLanczos && shorter < 8) interpolation = InterpolateCubic;
  if (interpolation == InterpolateCubic && shorter < 4) interpolation = InterpolateLinear;
  if (shorter < 2) interpolation = InterpolateNearest;
  return interpolation;
}

IppStatus RunNearest(const Job& job) {
  WorkLayout layout;
  const auto x = layout.Add<int>(job.width), y = layout.Add<int>(job.height);
  const auto rows = layout.Add<char>(RowsWorkBytes(uint64_t(job.width) * job.channels));
  const WorkMemory work(layout);
  if (!work) return StatusMemAllocErr;
  NearestIndices(job.x, job.width, work.At<int>(x));
  NearestIndices(job.y, job.height, work.At<int>(y));
  const NearestTables tables = {job.width, job.height,      job.x.length, job.channels,
                                work.At<int>(x), work.At<int>(y), nullptr};
  NearestRows_8u(job.src, job.srcStep, job.dst, job.dstStep, &tables, work.At<char>(rows));
  return StatusOk;
}

IppStatus RunLinear(const Job& job) {
  WorkLayout layout;
  const auto x = layout.Add<int>(job.width), y = layout.Add<int>(job.height);
  const auto xWeight = layout.Add<unsigned short>(job.width);
  const auto yWeight = layout.Add<unsigned short>(job.height);
  const auto rows = layout.Add<char>(RowsWorkBytes(uint64_t(job.width) * job.channels));
  const WorkMemory work(layout);
  if (!work) return StatusMemAllocErr;
  AlignedTaps(job.x, job.width, work.At<int>(x), work.At<unsigned short>(xWeight));
  AlignedTaps(job.y, job.height, work.At<int>(y), work.At<unsigned short>(yWeight));
  const LinearTables tables = {
      job.width, job.height, job.x.length, job.channels,
      {job.x.length > 1, work.At<int>(x), work.At<unsigned short>(xWeight)},
      {job.y.length > 1, work.At<int>(y), work.At<unsigned short>(yWeight)},
      {}};
  LinearRows_8u(job.src, job.srcStep, job.dst, job.dstStep, &tables, work.At<char>(rows));
  return StatusOk;
}

FilterTask TaskOf(const Job& job) {
  return {job.channels == 1 ? RowLayout::kGray : RowLayout::kTriples, job.src, job.srcStep, job.dst,
          job.dstStep};
}

// Cubic and Lanczos.
IppStatus RunFilter(const Job& job, int interpolation) {
  WorkLayout layout;
  const auto x = layout.Add<double>(job.width), y = layout.Add<double>(job.height);
  const WorkMemory work(layout);
  if (!work) return StatusMemAllocErr;
  AlignedPositions(job.x, job.width, work.At<double>(x));
  AlignedPositions(job.y, job.height, work.At<double>(y));
  return FilterImage(TaskOf(job), interpolation, {job.width, work.At<double>(x), job.x.length},
                     {}, {job.height, work.At<double>(y), job.y.length});
}

IppStatus RunArea(const Job& job) {
  return AverageImage(TaskOf(job), {job.width, 1 / job.x.factor, job.x.length}, {},
                      {job.height, 1 / job.y.factor, job.y.length});
}

IppStatus ResizeImage(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                      unsigned char* dst, int dstStep, IppiSize dstRoiSize, double xFactor,
                      double yFactor, int interpolation, int channels) {
  if (!src || !dst) return StatusNullPtrErr;
  if (CheckSource(srcSize, srcRoi) != StatusOk) return StatusSizeErr;
  if (StartsOutside(srcSize, srcRoi)) return StatusNoOverlapWarning;
  if (dstRoiSize.width < 1 || dstRoiSize.height < 1) return StatusSizeErr;
  if (!AreFactorsPositive(xFactor, yFactor)) return StatusResizeFactorErr;
  const bool area = interpolation == InterpolateArea && xFactor <= 1 && yFactor <= 1;
  if (!area) {
    if (!IsInterpolation(interpolation)) return StatusInterpolationErr;
    interpolation = DowngradedForSize(interpolation, srcSize);
  }
  const Axis x = {ClippedLength(srcRoi.x, srcRoi.width, srcSize.width), xFactor};
  const Axis y = {ClippedLength(srcRoi.y, srcRoi.height, srcSize.height), yFactor};
  const Job job = {PixelAt(src, srcStep, srcRoi.x, srcRoi.y, channels),
                   srcStep,
                   dst,
                   dstStep,
                   channels,
                   x,
                   y,
                   WrittenExtent(x, dstRoiSize.width),
                   WrittenExtent(y, dstRoiSize.height)};
  if (job.width == 0 || job.height == 0) return StatusEmptyOutputErr;
  switch (interpolation) {
    case InterpolateNearest: return RunNearest(job);
    case InterpolateLinear: return RunLinear(job);
    case InterpolateArea: return RunArea(job);
    default: return RunFilter(job, interpolation);
  }
}

}  // namespace

IppStatus Resize_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiSize dstRoiSize, double xFactor,
                       double yFactor, int interpolation) {
  return ResizeImage(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoiSize, xFactor, yFactor,
                     interpolation, 1);
}

IppStatus Resize_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiSize dstRoiSize, double xFactor,
                       double yFactor, int interpolation) {
  return ResizeImage(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoiSize, xFactor, yFactor,
                     interpolation, 3);
}

}  // namespace qv
