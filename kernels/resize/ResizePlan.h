// From checked arguments to rows: what whole images, bands and packed 4:2:2 have in common.
#ifndef QV_KERNELS_RESIZE_RESIZEPLAN_H
#define QV_KERNELS_RESIZE_RESIZEPLAN_H

#include <stddef.h>

#include "kernels/resize/Filter.h"
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

// False as well for NaN.
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

// A checked call. Lengths are of the clipped region; for packed 4:2:2 also in pairs.
struct ResizeTask {
  const unsigned char* src;  // the region's first byte
  int srcStep;
  unsigned char* dst;        // the first byte to write
  int dstStep;
  Layout layout;
  int width, height;         // to write
  int xLength, yLength;
  WorkBuffer buffer = {};

  FilterTask Filter() const { return {layout, src, srcStep, dst, dstStep}; }
  uint64_t RowBytes() const { return static_cast<uint64_t>(width) * PixelBytes(layout); }
  int Pairs() const { return layout == Layout::kPairs422 ? width / 2 : 0; }
};

// The work memory of each method: tables of the three axes columns, rows and (packed 4:2:2) pairs,
// and what the row kernels want.
struct NearestLayout {
  WorkLayout all;
  uint64_t index[3], rows;

  NearestLayout(const int (&counts)[3], uint64_t rowBytes) {
    for (int axis = 0; axis < 3; ++axis) index[axis] = all.Add<int>(counts[axis]);
    rows = all.Add<char>(RowsWorkBytes(rowBytes));
  }
};

struct LinearLayout {
  WorkLayout all;
  uint64_t first[3], weight[3], rows;

  LinearLayout(const int (&counts)[3], uint64_t rowBytes) {
    for (int axis = 0; axis < 3; ++axis) {
      first[axis] = all.Add<int>(counts[axis]);
      weight[axis] = all.Add<unsigned short>(counts[axis]);
    }
    rows = all.Add<char>(RowsWorkBytes(rowBytes));
  }
};

// The rows' own is planned by FilterImage: it depends on the samples that the taps name.
struct FilterLayout {
  WorkLayout all;
  uint64_t position[3], taps;

  FilterLayout(const int (&counts)[3], int interpolation) {
    for (int axis = 0; axis < 3; ++axis) position[axis] = all.Add<double>(counts[axis]);
    taps = all.Add<char>(FilterTapsBytes(counts, interpolation));
  }
};

// Bytes of a buffer in which a band of up to so many pixels finds all of these, for codes 1, 2, 4
// and 16.
uint64_t ResizeWorkBytes(int width, int height, Layout layout, int interpolation);

// Nearest-neighbour rows. x, y and (packed 4:2:2) chroma fill the indices of the axes' samples.
template <class X, class Y, class Chroma>
IppStatus RunNearest(const ResizeTask& task, X x, Y y, Chroma chroma) {
  const NearestLayout layout({task.width, task.height, task.Pairs()}, task.RowBytes());
  const WorkMemory work(layout.all, task.buffer);
  if (!work) return StatusMemAllocErr;
  int* const columns = work.At<int>(layout.index[0]);
  int* const lines = work.At<int>(layout.index[1]);
  int* const pairs = work.At<int>(layout.index[2]);
  x(columns);
  y(lines);
  if (task.Pairs() > 0) chroma(pairs);
  const NearestTables tables = {task.width, task.height, task.xLength, task.layout,
                                columns,    lines,       pairs};
  NearestRows_8u(task.src, task.srcStep, task.dst, task.dstStep, &tables,
                 work.At<char>(layout.rows));
  return StatusOk;
}

// Whether every sample is the mean of two, side by side, as in bands of half the size. Between two
// such axes linear rows round only once, as halving does: h is 32 * (p0 + p1), and of the four
// bytes' sum s the result is (2^18 * s + 2^19) >> 20.
inline bool AreHalves(const LinearTaps& taps, int count) {
  if (taps.neighbour != 1) return false;
  for (int i = 0; i < count; ++i)
    if (taps.first[i] != taps.first[0] + 2 * i || taps.weight[i] != kWeightOne / 2) return false;
  return true;
}

// Linear rows. The functions fill indices and weights.
template <class X, class Y, class Chroma>
IppStatus RunLinear(const ResizeTask& task, X x, Y y, Chroma chroma) {
  const int counts[3] = {task.width, task.height, task.Pairs()};
  const int lengths[3] = {task.xLength, task.yLength, task.xLength / 2};
  const LinearLayout layout(counts, task.RowBytes());
  const WorkMemory work(layout.all, task.buffer);
  if (!work) return StatusMemAllocErr;
  LinearTaps taps[3];
  const auto fill = [&](int axis, auto function) {
    int* const first = work.At<int>(layout.first[axis]);
    auto* const weight = work.At<unsigned short>(layout.weight[axis]);
    if (counts[axis] > 0) function(first, weight);
    taps[axis] = {lengths[axis] > 1, first, weight};
  };
  fill(0, x);
  fill(1, y);
  fill(2, chroma);
  const bool canHalve = task.layout == Layout::kGrey || task.layout == Layout::kTriples;
  if (canHalve && AreHalves(taps[0], task.width) && AreHalves(taps[1], task.height)) {
    const unsigned char* const src = PixelAt(task.src, task.srcStep, taps[0].first[0],
                                             taps[1].first[0], PixelBytes(task.layout));
    return (task.layout == Layout::kGrey ? HalveRows_8u_C1 : HalveRows_8u_C3)(
        src, task.srcStep, task.dst, task.dstStep, {task.width, task.height});
  }
  const LinearTables tables = {task.width, task.height, task.xLength, task.layout,
                               taps[0],    taps[1],     taps[2]};
  ResizeLinearRows_8u(task.src, task.srcStep, task.dst, task.dstStep, &tables,
                      work.At<char>(layout.rows));
  return StatusOk;
}

// Cubic and Lanczos rows. The functions fill positions.
template <class X, class Y, class Chroma>
IppStatus RunFilter(const ResizeTask& task, int interpolation, X x, Y y, Chroma chroma) {
  const FilterLayout layout({task.width, task.height, task.Pairs()}, interpolation);
  const WorkMemory work(layout.all, task.buffer);
  if (!work) return StatusMemAllocErr;
  double* const columns = work.At<double>(layout.position[0]);
  double* const lines = work.At<double>(layout.position[1]);
  double* const pairs = work.At<double>(layout.position[2]);
  x(columns);
  y(lines);
  if (task.Pairs() > 0) chroma(pairs);
  return FilterImage(task.Filter(), interpolation, {task.width, columns, task.xLength},
                     {task.Pairs(), pairs, task.xLength / 2}, {task.height, lines, task.yLength},
                     work.At<char>(layout.taps));
}

// A band kernel of pixels of one or three bytes, whose work memory is `buffer` as far as that
// reaches.
IppStatus ResizeBand(const ResizeCall& call, Layout layout, IppiRect dstRect, double xShift,
                     double yShift, const WorkBuffer& buffer);

// Nothing to fill: layouts without chroma.
struct NoChroma {
  template <class... Tables>
  void operator()(Tables...) const {}
};

}  // namespace qv

#endif
