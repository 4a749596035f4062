// From checked arguments to rows: what whole images, bands and packed 4:2:2 have in common.
#ifndef QV_KERNELS_RESIZE_RESIZEPLAN_H
#define QV_KERNELS_RESIZE_RESIZEPLAN_H

#include <stddef.h>

#include "kernels/resize/FilterImage.h"
#include "kernels/resize/Positions.h"
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizeRows.h"
#include "kernels/resize/WorkMemory.h"

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

// A checked call. Lengths are of the clipped region; for packed 4:2:2 (2 channels) also in pairs.
struct ResizeTask {
  const unsigned char* src;  // the region's first byte
  int srcStep;
  unsigned char* dst;        // the first byte to write
  int dstStep, channels;
  int width, height;         // to write
  int xLength, yLength;
  void* buffer = nullptr;    // work memory that the caller has
  uint64_t bufferBytes = 0;

  RowLayout Layout() const {
    return channels == 1   ? RowLayout::kGray
           : channels == 3 ? RowLayout::kTriples
                           : RowLayout::kPairs422;
  }
  FilterTask Filter() const { return {Layout(), src, srcStep, dst, dstStep}; }
  uint64_t RowBytes() const { return static_cast<uint64_t>(width) * channels; }
  int Pairs() const { return channels == 2 ? width / 2 : 0; }
};

// Nearest-neighbour rows. x, y and (packed 4:2:2) chroma fill the indices of the axes' samples.
template <class X, class Y, class Chroma>
IppStatus RunNearest(const ResizeTask& task, X x, Y y, Chroma chroma) {
  WorkLayout layout;
  const auto columns = layout.Add<int>(task.width), lines = layout.Add<int>(task.height);
  const auto pairs = layout.Add<int>(task.Pairs());
  const auto rows = layout.Add<char>(RowsWorkBytes(task.RowBytes()));
  const WorkMemory work(layout, task.buffer, task.bufferBytes);
  if (!work) return StatusMemAllocErr;
  x(work.At<int>(columns));
  y(work.At<int>(lines));
  if (task.Pairs() > 0) chroma(work.At<int>(pairs));
  const NearestTables tables = {task.width,    task.height,
                                task.xLength,  task.channels,
                                work.At<int>(columns), work.At<int>(lines), work.At<int>(pairs)};
  NearestRows_8u(task.src, task.srcStep, task.dst, task.dstStep, &tables, work.At<char>(rows));
  return StatusOk;
}

// Linear rows. The functions fill indices and weights.
template <class X, class Y, class Chroma>
IppStatus RunLinear(const ResizeTask& task, X x, Y y, Chroma chroma) {
  WorkLayout layout;
  const int counts[3] = {task.width, task.height, task.Pairs()};
  const int lengths[3] = {task.xLength, task.yLength, task.xLength / 2};
  uint64_t first[3], weight[3];
  for (int axis = 0; axis < 3; ++axis) {
    first[axis] = layout.Add<int>(counts[axis]);
    weight[axis] = layout.Add<unsigned short>(counts[axis]);
  }
  const auto rows = layout.Add<char>(RowsWorkBytes(task.RowBytes()));
  const WorkMemory work(layout, task.buffer, task.bufferBytes);
  if (!work) return StatusMemAllocErr;
  LinearTaps taps[3];
  const auto fill = [&](int axis, auto function) {
    int* const at = work.At<int>(first[axis]);
    auto* const w = work.At<unsigned short>(weight[axis]);
    if (counts[axis] > 0) function(at, w);
    taps[axis] = {lengths[axis] > 1, at, w};
  };
  fill(0, x);
  fill(1, y);
  fill(2, chroma);
  const LinearTables tables = {task.width,    task.height, task.xLength, task.channels,
                               task.channels, taps[0],     taps[1],      taps[2]};
  ResizeLinearRows_8u(task.src, task.srcStep, task.dst, task.dstStep, &tables,
                      work.At<char>(rows));
  return StatusOk;
}

// Cubic and Lanczos rows. The functions fill positions.
template <class X, class Y, class Chroma>
IppStatus RunFilter(const ResizeTask& task, int interpolation, X x, Y y, Chroma chroma) {
  WorkLayout layout;
  const auto columns = layout.Add<double>(task.width), lines = layout.Add<double>(task.height);
  const auto pairs = layout.Add<double>(task.Pairs());
  const WorkMemory work(layout, task.buffer, task.bufferBytes);
  if (!work) return StatusMemAllocErr;
  x(work.At<double>(columns));
  y(work.At<double>(lines));
  if (task.Pairs() > 0) chroma(work.At<double>(pairs));
  return FilterImage(task.Filter(), interpolation,
                     {task.width, work.At<double>(columns), task.xLength},
                     {task.Pairs(), work.At<double>(pairs), task.xLength / 2},
                     {task.height, work.At<double>(lines), task.yLength});
}

// Nothing to fill: layouts without chroma.
struct NoChroma {
  template <class... Tables>
  void operator()(Tables...) const {}
};

}  // namespace qv

#endif
