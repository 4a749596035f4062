// Packed 4:2:2: checks, planning on the grids of luma and of chroma, rows.
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizePlan.h"

namespace qv {

namespace {

// The two axes have thresholds of their own: a row has half as many chroma samples as pixels.
int DowngradedForSize(int interpolation, IppiSize size) {
  if (interpolation == InterpolateCubic && (size.width < 8 || size.height < 4))
    interpolation = InterpolateLinear;
  if (size.width < 4 || size.height < 2) interpolation = InterpolateNearest;
  return interpolation;
}

IppStatus Run422(const ResizeTask& task, Axis luma, Axis chroma, Axis y, int interpolation) {
  const int pairs = task.Pairs();
  switch (interpolation) {
    case InterpolateNearest:
      return RunNearest(
          task, [&](int* at) { NearestIndices(luma, task.width, at); },
          [&](int* at) { NearestIndices(y, task.height, at); },
          [&](int* at) { NearestIndices(chroma, pairs, at); });
    case InterpolateLinear:
      return RunLinear(
          task, [&](int* at, unsigned short* w) { AlignedTaps(luma, task.width, at, w); },
          [&](int* at, unsigned short* w) { AlignedTaps(y, task.height, at, w); },
          [&](int* at, unsigned short* w) { AlignedTaps(chroma, pairs, at, w); });
    case InterpolateArea:
      return AverageImage(task.Filter(), {task.width, 1 / luma.factor, luma.length},
                          {pairs, 1 / chroma.factor, chroma.length},
                          {task.height, 1 / y.factor, y.length});
    default:
      return RunFilter(
          task, interpolation, [&](double* at) { AlignedPositions(luma, task.width, at); },
          [&](double* at) { AlignedPositions(y, task.height, at); },
          [&](double* at) { AlignedPositions(chroma, pairs, at); });
  }
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
  if (interpolation == InterpolateArea && Enlarges(xFactor, yFactor))
    return StatusResizeFactorErr;
  // Four bytes for each pixel of the region's origin, twice as many as its pixels take.
  const ResizeTask task = {PixelAt(src, srcStep, srcRoi.x, srcRoi.y, 4),
                           srcStep,
                           dst,
                           dstStep,
                           Layout::kPairs422,
                           width / 2 * 2,
                           height,
                           luma.length,
                           y.length};
  if (interpolation != InterpolateArea) interpolation = DowngradedForSize(interpolation, srcSize);
  return Run422(task, luma, chroma, y, interpolation);
}

}  // namespace qv
