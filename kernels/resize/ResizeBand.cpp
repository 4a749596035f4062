// The band kernels: checks, the span of the destination that a band writes, planning, rows.
#include "kernels/resize/FilterImage.h"
#include "kernels/resize/Positions.h"
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizePlan.h"
#include "kernels/resize/ResizeRows.h"
#include "kernels/resize/WorkMemory.h"

namespace qv {

namespace {

struct BandJob {
  const unsigned char* src;
  int srcStep;
  unsigned char* dst;
  int dstStep, channels;
  BandAxis x, y;
  Span columns, rows;
  unsigned char* buffer;
  uint64_t bufferBytes;
};

IppStatus RunNearest(const BandJob& job) {
  WorkLayout layout;
  const auto x = layout.Add<int>(job.columns.count), y = layout.Add<int>(job.rows.count);
  const auto rows = layout.Add<char>(RowsWorkBytes(uint64_t(job.columns.count) * job.channels));
  const WorkMemory work(layout, job.buffer, job.bufferBytes);
  if (!work) return StatusMemAllocErr;
  BandNearestIndices(job.x, job.columns, work.At<int>(x));
  BandNearestIndices(job.y, job.rows, work.At<int>(y));
  const NearestTables tables = {job.columns.count, job.rows.count,  job.x.length, job.channels,
                                work.At<int>(x),   work.At<int>(y), nullptr};
  NearestRows_8u(job.src, job.srcStep, job.dst, job.dstStep, &tables, work.At<char>(rows));
  return StatusOk;
}

IppStatus RunLinear(const BandJob& job) {
  const int width = job.columns.count, height = job.rows.count;
  WorkLayout layout;
  const auto x = layout.Add<int>(width), y = layout.Add<int>(height);
  const auto xWeight = layout.Add<unsigned short>(width);
  const auto yWeight = layout.Add<unsigned short>(height);
  const auto rows = layout.Add<char>(RowsWorkBytes(uint64_t(width) * job.channels));
  const WorkMemory work(layout, job.buffer, job.bufferBytes);
  if (!work) return StatusMemAllocErr;
  BandTaps(job.x, job.columns, work.At<int>(x), work.At<unsigned short>(xWeight));
  BandTaps(job.y, job.rows, work.At<int>(y), work.At<unsigned short>(yWeight));
  const LinearTables tables = {
      width, height, job.x.length, job.channels,
      {job.x.length > 1, work.At<int>(x), work.At<unsigned short>(xWeight)},
      {job.y.length > 1, work.At<int>(y), work.At<unsigned short>(yWeight)},
      {}};
  LinearRows_8u(job.src, job.srcStep, job.dst, job.dstStep, &tables, work.At<char>(rows));
  return StatusOk;
}

FilterTask TaskOf(const BandJob& job) {
  return {job.channels == 1 ? RowLayout::kGray : RowLayout::kTriples, job.src, job.srcStep, job.dst,
          job.dstStep};
}

// Cubic and Lanczos.
IppStatus RunFilter(const BandJob& job, int interpolation) {
  WorkLayout layout;
  const auto x = layout.Add<double>(job.columns.count), y = layout.Add<double>(job.rows.count);
  const WorkMemory work(layout, job.buffer, job.bufferBytes);
  if (!work) return StatusMemAllocErr;
  BandPositions(job.x, job.columns, work.At<double>(x));
  BandPositions(job.y, job.rows, work.At<double>(y));
  return FilterImage(TaskOf(job), interpolation,
                     {job.columns.count, work.At<double>(x), job.x.length}, {},
                     {job.rows.count, work.At<double>(y), job.y.length});
}

AxisArea AreaOf(const BandAxis& axis, const Span& span) {
  return {span.count, 1 / axis.factor, axis.length, static_cast<double>(span.first),
          axis.shift / axis.factor + axis.start};
}

IppStatus ResizeBand(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                     unsigned char* dst, int dstStep, IppiRect dstRect, double xFactor,
                     double yFactor, double xShift, double yShift, int interpolation,
                     unsigned char* buffer, int channels) {
  if (!src || !dst || !buffer) return StatusNullPtrErr;
  if (CheckSource(srcSize, srcRoi) != StatusOk || dstRect.x < 0 || dstRect.y < 0 ||
      dstRect.width < 1 || dstRect.height < 1)
    return StatusSizeErr;
  if (!AreFactorsPositive(xFactor, yFactor)) return StatusResizeFactorErr;
  if (!IsInterpolation(interpolation) && interpolation != InterpolateArea)
    return StatusInterpolationErr;
  if (StartsOutside(srcSize, srcRoi)) return StatusNoOverlapWarning;

  const BandAxis x = {srcRoi.x, ClippedLength(srcRoi.x, srcRoi.width, srcSize.width), xFactor,
                      xShift};
  const BandAxis y = {srcRoi.y, ClippedLength(srcRoi.y, srcRoi.height, srcSize.height), yFactor,
                      yShift};
  Span columns, rows;
  if (!ProjectRegion(x, dstRect.x, dstRect.width, &columns) ||
      !ProjectRegion(y, dstRect.y, dstRect.height, &rows))
    return StatusNothingToDoWarning;
  if (interpolation == InterpolateArea && !(xFactor <= 1 && yFactor <= 1))
    return StatusResizeFactorErr;
  if (columns.count == 0 || rows.count == 0) return StatusOk;

  int bufferBytes = 0;  // stays 0 for what the query does not cover: nothing is known of the buffer
  ResizeBandBufferSize({dstRect.width, dstRect.height}, channels, interpolation, &bufferBytes);
  const BandJob job = {
      PixelAt(src, srcStep, srcRoi.x, srcRoi.y, channels),
      srcStep,
      dst + static_cast<ptrdiff_t>(rows.first) * dstStep +
          static_cast<ptrdiff_t>(columns.first) * channels,
      dstStep,
      channels,
      x,
      y,
      columns,
      rows,
      buffer,
      static_cast<uint64_t>(bufferBytes)};
  switch (interpolation) {
    case InterpolateNearest: return RunNearest(job);
    case InterpolateLinear: return RunLinear(job);
    case InterpolateArea:
      return AverageImage(TaskOf(job), AreaOf(x, columns), {}, AreaOf(y, rows));
    default: return RunFilter(job, interpolation);
  }
}

}  // namespace

IppStatus ResizeBandBufferSize(IppiSize dstSize, int channels, int interpolation, int* bytes) {
  if (!bytes) return StatusNullPtrErr;
  if (dstSize.width < 1 || dstSize.height < 1) return StatusSizeErr;
  if (channels != 1 && channels != 3 && channels != 4) return StatusChannelErr;
  if (!IsInterpolation(interpolation)) return StatusInterpolationErr;
  const long long width = dstSize.width, height = dstSize.height;
  const long long sixteens = ((width + 15) >> 4) + ((height + 15) >> 4);
  // k values a column and m more, in whole lines of 16.
  const auto line = [=](int k, int m) { return (k * width + m) / 16 * 16; };
  long long size = 0;
  switch (interpolation) {
    case InterpolateNearest: size = sixteens * 64 + 15; break;
    case InterpolateLinear: size = sixteens * 128 + line(2, 31) * channels * 4 + 15; break;
    case InterpolateCubic: size = sixteens * 128 + line(4, 63) * channels * 4 + 15; break;
    default:
      size = (sixteens * 32 + channels * line(6, 95) + line(6, 95) + (6 * height + 95) / 16 * 16) *
                 4 + 15;
  }
  if (size > INT32_MAX) return StatusSizeErr;
  *bytes = static_cast<int>(size);
  return StatusOk;
}

IppStatus ResizeBand_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep,
                           IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRect,
                           double xFactor, double yFactor, double xShift, double yShift,
                           int interpolation, unsigned char* buffer) {
  return ResizeBand(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRect, xFactor, yFactor, xShift,
                    yShift, interpolation, buffer, 1);
}

IppStatus ResizeBand_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep,
                           IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRect,
                           double xFactor, double yFactor, double xShift, double yShift,
                           int interpolation, unsigned char* buffer) {
  return ResizeBand(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRect, xFactor, yFactor, xShift,
                    yShift, interpolation, buffer, 3);
}

}  // namespace qv
