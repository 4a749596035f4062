// The separable filter from positions or intervals to pixels: builds taps, takes the work memory
// that the kernels want, runs them and releases it.
#ifndef QV_KERNELS_RESIZE_FILTERIMAGE_H
#define QV_KERNELS_RESIZE_FILTERIMAGE_H

#include <stdint.h>

#include "kernels/resize/Filter.h"

namespace qv {

// One image region and what becomes of it. `src` is the region's first byte, `dst` the first byte
// to write.
struct FilterTask {
  Layout layout;
  const unsigned char* src;
  int srcStep;
  unsigned char* dst;
  int dstStep;
};

// Resamples with the cubic (4) or Lanczos (16) method. `chroma` gives the positions of
// the chroma samples of 4:2:2 on the grid of pairs, half as many as `x`; other layouts ignore it.
// `tapsMemory`, aligned to 64, is for the taps. StatusMemAllocErr, with nothing written, if there
// is not enough memory.
IppStatus FilterImage(const FilterTask& task, int interpolation, const AxisPositions& x,
                      const AxisPositions& chroma, const AxisPositions& y, void* tapsMemory);

// Bytes for the taps of three axes of so many samples, however long the region is.
uint64_t FilterTapsBytes(const int (&counts)[3], int interpolation);

// Averages over areas.
IppStatus AverageImage(const FilterTask& task, const AxisArea& x, const AxisArea& chroma,
                       const AxisArea& y);

}  // namespace qv

#endif
