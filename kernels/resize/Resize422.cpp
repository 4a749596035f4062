// Packed 4:2:2: checks, planning on the grids of luma and of chroma, rows.
#include "kernels/resize/FilterImage.h"
#include "kernels/resize/Positions.h"
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizePlan.h"
#include "kernels/resize/ResizeRows.h"
#include "kernels/resize/WorkMemory.h"

namespace qv {

namespace {

struct Job422 {
  const unsigned char* src;
  int srcStep;
  unsigned char* dst;
  int dstStep;
  Axis luma, chroma, y;
  int pairs, height;
};

// The two axes have thresholds of their own: a row has half as many chroma samples as pixels.
int DowngradedForSize(int interpolation, IppiSize size) {
  if (interpolation == InterpolateCubic && (size.width < 8 || size.height < 4))
    interpolation = InterpolateLinear;
  if (size.width < 4 || size.height < 2) interpolation = InterpolateNearest;
  return interpolation;
}

IppStatus RunNearest(const Job422& job) {
  const int width = 2 * job.pairs;
  WorkLayout layout;
  const auto x = layout.Add<int>(width), chroma = layout.Add<int>(job.pairs);
  const auto y = layout.Add<int>(job.height);
  const auto rows = layout.Add<char>(RowsWorkBytes(uint64_t(job.pairs) * 4));
  const WorkMemory work(layout);
  if (!work) return StatusMemAllocErr;
  NearestIndices(job.luma, width, work.At<int>(x));
  NearestIndices(job.chroma, job.pairs, work.At<int>(chroma));
  NearestIndices(job.y, job.height, work.At<int>(y));
  const NearestTables tables = {width,           job.height,      job.luma.length,     2,
                                work.At<int>(x), work.At<int>(y), work.At<int>(chroma)};
  NearestRows_8u(job.src, job.srcStep, job.dst, job.dstStep, &tables, work.At<char>(rows));
  return StatusOk;
}

FilterTask TaskOf(const Job422& job) {
  return {RowLayout::kPairs422, job.src, job.srcStep, job.dst, job.dstStep};
}

IppStatus RunLinear(const Job422& job) {
  const int width = 2 * job.pairs;
  WorkLayout layout;
  const auto x = layout.Add<int>(width), chroma = layout.Add<int>(job.pairs);
  const auto y = layout.Add<int>(job.height);
  const auto xWeight = layout.Add<unsigned short>(width);
  const auto chromaWeight = layout.Add<unsigned short>(job.pairs);
  const auto yWeight = layout.Add<unsigned short>(job.height);
  const auto rows = layout.Add<char>(RowsWorkBytes(uint64_t(job.pairs) * 4));
  const WorkMemory work(layout);
  if (!work) return StatusMemAllocErr;
  AlignedTaps(job.luma, width, work.At<int>(x), work.At<unsigned short>(xWeight));
  AlignedTaps(job.chroma, job.pairs, work.At<int>(chroma), work.At<unsigned short>(chromaWeight));
  AlignedTaps(job.y, job.height, work.At<int>(y), work.At<unsigned short>(yWeight));
  const LinearTables tables = {
      width, job.height, job.luma.length, 2,
      {job.luma.length > 1, work.At<int>(x), work.At<unsigned short>(xWeight)},
      {job.y.length > 1, work.At<int>(y), work.At<unsigned short>(yWeight)},
      {job.chroma.length > 1, work.At<int>(chroma), work.At<unsigned short>(chromaWeight)}};
  LinearRows_8u(job.src, job.srcStep, job.dst, job.dstStep, &tables, work.At<char>(rows));
  return StatusOk;
}

IppStatus RunCubic(const Job422& job) {
  const int width = 2 * job.pairs;
  WorkLayout layout;
  const auto x = layout.Add<double>(width), chroma = layout.Add<double>(job.pairs);
  const auto y = layout.Add<double>(job.height);
  const WorkMemory work(layout);
  if (!work) return StatusMemAllocErr;
  AlignedPositions(job.luma, width, work.At<double>(x));
  AlignedPositions(job.chroma, job.pairs, work.At<double>(chroma));
  AlignedPositions(job.y, job.height, work.At<double>(y));
  return FilterImage(TaskOf(job), InterpolateCubic, {width, work.At<double>(x), job.luma.length},
                     {job.pairs, work.At<double>(chroma), job.chroma.length},
                     {job.height, work.At<double>(y), job.y.length});
}

IppStatus RunArea(const Job422& job) {
  const double xInverse = 1 / job.luma.factor, yInverse = 1 / job.y.factor;
  return AverageImage(TaskOf(job), {2 * job.pairs, xInverse, job.luma.length},
                      {job.pairs, xInverse, job.chroma.length},
                      {job.height, yInverse, job.y.length});
}

// Pixels of a destination row, at least one pair: 0 if the region's width comes out below 1.5.
int WrittenWidth(Axis luma, int available) {
  const double extent = luma.length * luma.factor + 1e-07;
  if (extent >= available) return available;
  if (extent >= 2) return static_cast<int>(extent);
  return extent < 1.5 ? 0 : 2;
}

}  // namespace

IppStatus ResizeYUV422_8u_C2(const unsigned char* src, IppiSize srcSize, int srcStep,
                             IppiRect srcRoi, unsigned char* dst, int dstStep,
                             IppiSize dstRoiSize, double xFactor, double yFactor,
                             int interpolation) {
  if (!src || !dst) return StatusNullPtrErr;
  if (CheckSource(srcSize, srcRoi) != StatusOk) return StatusSizeErr;
  if (StartsOutside(srcSize, srcRoi)) return StatusNoOverlapWarning;
  if (dstRoiSize.width < 1 || dstRoiSize.height < 1) return StatusSizeErr;
  if (srcSize.width % 2 || srcRoi.width % 2 || srcRoi.x % 2 || dstRoiSize.width < 2)
    return StatusSizeErr;
  if (!AreFactorsPositive(xFactor, yFactor)) return StatusResizeFactorErr;
  if (interpolation != InterpolateNearest && interpolation != InterpolateLinear &&
      interpolation != InterpolateCubic && interpolation != InterpolateArea)
    return StatusInterpolationErr;

  const Axis luma = {ClippedLength(srcRoi.x, srcRoi.width, srcSize.width), xFactor};
  const Axis chroma = {luma.length / 2, xFactor};
  const Axis y = {ClippedLength(srcRoi.y, srcRoi.height, srcSize.height), yFactor};
  const int width = WrittenWidth(luma, dstRoiSize.width);
  if (width == 0) return StatusEmptyOutputErr;
  const int height = WrittenExtent(y, dstRoiSize.height);
  if (height == 0) return StatusEmptyOutputErr;
  if (interpolation == InterpolateArea && !(xFactor <= 1 && yFactor <= 1))
    return StatusResizeFactorErr;
  // Four bytes for each pixel of the region's origin, twice as many as its pixels take.
  const Job422 job = {PixelAt(src, srcStep, srcRoi.x, srcRoi.y, 4),
                      srcStep,
                      dst,
                      dstStep,
                      luma,
                      chroma,
                      y,
                      width / 2,
                      height};
  if (interpolation != InterpolateArea) interpolation = DowngradedForSize(interpolation, srcSize);
  switch (interpolation) {
    case InterpolateNearest: return RunNearest(job);
    case InterpolateArea: return RunArea(job);
    case InterpolateLinear: return RunLinear(job);
    default: return RunCubic(job);
  }
}

}  // namespace qv
