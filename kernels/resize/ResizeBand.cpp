// The band kernels: checks, the span of the destination that a band writes, planning, rows.
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizePlan.h"

namespace qv {

namespace {

AxisArea AreaOf(const BandAxis& axis, const Span& span) {
  return {span.count, 1 / axis.factor, axis.length, static_cast<double>(span.first),
          axis.shift / axis.factor + axis.start};
}

BandAxis RowAxis(IppiSize srcSize, IppiRect srcRoi, double yFactor, double yShift) {
  return {srcRoi.y, ClippedLength(srcRoi.y, srcRoi.height, srcSize.height), yFactor, yShift};
}

IppStatus RunBand(const ResizeTask& task, const BandAxis& x, const BandAxis& y, Span columns,
                  Span rows, int interpolation) {
  switch (interpolation) {
    case InterpolateNearest:
      return RunNearest(
          task, [&](int* at) { BandNearestIndices(x, columns, at); },
          [&](int* at) { BandNearestIndices(y, rows, at); }, NoChroma());
    case InterpolateLinear:
      return RunLinear(
          task, [&](int* at, unsigned short* w) { BandTaps(x, columns, at, w); },
          [&](int* at, unsigned short* w) { BandTaps(y, rows, at, w); }, NoChroma());
    case InterpolateArea:
      return AverageImage(task.Filter(), AreaOf(x, columns), {}, AreaOf(y, rows));
    default:
      return RunFilter(
          task, interpolation, [&](double* at) { BandPositions(x, columns, at); },
          [&](double* at) { BandPositions(y, rows, at); }, NoChroma());
  }
}

}  // namespace

uint64_t ResizeWorkBytes(int width, int height, Layout layout, int interpolation) {
  const int counts[3] = {width, height, 0};
  const uint64_t rowBytes = static_cast<uint64_t>(width) * PixelBytes(layout);
  switch (interpolation) {
    case InterpolateNearest: return NearestLayout(counts, rowBytes).all.bytes();
    case InterpolateLinear: return LinearLayout(counts, rowBytes).all.bytes();
    default: return FilterLayout(counts, interpolation).all.bytes();
  }
}

IppStatus ResizeBand(const ResizeCall& call, Layout layout, IppiRect dstRect, double xShift,
                     double yShift, const WorkBuffer& buffer) {
  const IppiSize srcSize = call.srcSize;
  const IppiRect srcRoi = call.srcRoi;
  if (!call.src || !call.dst || !buffer.at) return StatusNullPtrErr;
  if (CheckSource(srcSize, srcRoi) != StatusOk || dstRect.x < 0 || dstRect.y < 0 ||
      dstRect.width < 1 || dstRect.height < 1)
    return StatusSizeErr;
  if (!AreFactorsPositive(call.xFactor, call.yFactor)) return StatusResizeFactorErr;
  if (!IsInterpolation(call.interpolation) && call.interpolation != InterpolateArea)
    return StatusInterpolationErr;
  if (StartsOutside(srcSize, srcRoi)) return StatusNoOverlapWarning;

  const BandAxis x = {srcRoi.x, ClippedLength(srcRoi.x, srcRoi.width, srcSize.width),
                      call.xFactor, xShift};
  const BandAxis y = RowAxis(srcSize, srcRoi, call.yFactor, yShift);
  Span columns, rows;
  if (!ProjectRegion(x, dstRect.x, dstRect.width, &columns) ||
      !ProjectRegion(y, dstRect.y, dstRect.height, &rows))
    return StatusNothingToDoWarning;
  if (call.interpolation == InterpolateArea && Enlarges(call.xFactor, call.yFactor))
    return StatusResizeFactorErr;
  if (columns.count == 0 || rows.count == 0) return StatusOk;

  const int pixelBytes = PixelBytes(layout);
  const ResizeTask task = {PixelAt(call.src, call.srcStep, srcRoi.x, srcRoi.y, pixelBytes),
                           call.srcStep,
                           call.dst + static_cast<ptrdiff_t>(rows.first) * call.dstStep +
                               static_cast<ptrdiff_t>(columns.first) * pixelBytes,
                           call.dstStep,
                           layout,
                           columns.count,
                           rows.count,
                           x.length,
                           y.length,
                           buffer};
  return RunBand(task, x, y, columns, rows, call.interpolation);
}

IppStatus BandSourcePosition(const ResizeCall& call, int x, int y, double position[2]) {
  const IppiSize srcSize = call.srcSize, dstSize = call.dstRoiSize;
  const IppiRect srcRoi = call.srcRoi;
  if (CheckSource(srcSize, srcRoi) != StatusOk) return StatusSizeErr;
  if (!AreFactorsPositive(call.xFactor, call.yFactor)) return StatusResizeFactorErr;
  if (!IsInterpolation(call.interpolation)) return StatusInterpolationErr;
  if (StartsOutside(srcSize, srcRoi)) return StatusNoOverlapWarning;
  const BandAxis axes[] = {
      {srcRoi.x, ClippedLength(srcRoi.x, srcRoi.width, srcSize.width), call.xFactor, 0},
      RowAxis(srcSize, srcRoi, call.yFactor, 0)};
  const int pixel[] = {x, y}, sizes[] = {dstSize.width, dstSize.height};
  double found[2];
  for (int i = 0; i < 2; ++i) {
    Span written;
    if (!ProjectRegion(axes[i], 0, sizes[i], &written)) return StatusNothingToDoWarning;
    if (pixel[i] < written.first || pixel[i] >= written.first + written.count)
      return StatusOutOfRangeErr;
    const Span one = {pixel[i], 1};
    int index;
    if (call.interpolation == InterpolateNearest)
      BandNearestIndices(axes[i], one, &index), found[i] = index;
    else
      BandPositions(axes[i], one, &found[i]);
    found[i] += axes[i].start;
  }
  position[0] = found[0];
  position[1] = found[1];
  return StatusOk;
}

bool HasResizeRows(IppiSize srcSize, IppiRect srcRoi, int firstRow, int rows, double yFactor) {
  Span span;
  return ProjectRegion(RowAxis(srcSize, srcRoi, yFactor, 0), firstRow, rows, &span);
}

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

namespace {

// In a buffer of which is known what the query says, nothing where it says nothing.
IppStatus ResizeBuffered(const ResizeCall& call, Layout layout, IppiRect dstRect, double xShift,
                         double yShift, unsigned char* buffer) {
  int bytes = 0;
  ResizeBandBufferSize({dstRect.width, dstRect.height}, PixelBytes(layout), call.interpolation,
                       &bytes);
  return ResizeBand(call, layout, dstRect, xShift, yShift,
                    {buffer, static_cast<uint64_t>(bytes)});
}

}  // namespace

IppStatus ResizeBand_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep,
                           IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRect,
                           double xFactor, double yFactor, double xShift, double yShift,
                           int interpolation, unsigned char* buffer) {
  return ResizeBuffered({src, srcSize, srcStep, srcRoi, dst, dstStep, {}, xFactor, yFactor,
                         interpolation}, Layout::kGrey, dstRect, xShift, yShift, buffer);
}

IppStatus ResizeBand_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep,
                           IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRect,
                           double xFactor, double yFactor, double xShift, double yShift,
                           int interpolation, unsigned char* buffer) {
  return ResizeBuffered({src, srcSize, srcStep, srcRoi, dst, dstStep, {}, xFactor, yFactor,
                         interpolation}, Layout::kTriples, dstRect, xShift, yShift, buffer);
}

}  // namespace qv
