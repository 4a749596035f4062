// Filtering along x without gathers: for each group of neighbouring destination samples, one
// window of contiguous source bytes that holds all their taps, and the shuffles that bring each
// sample's tap pairs side by side.
#ifndef QV_KERNELS_RESIZE_COLUMNWINDOWS_H
#define QV_KERNELS_RESIZE_COLUMNWINDOWS_H

#include <stddef.h>

#include "kernels/resize/AxisTaps.h"

namespace qv {

// The vectors of a level: a vector has vectorBytes / 4 samples (32-bit sums), in windowsPerVector
// groups with a window of windowBytes each.
struct WindowShape {
  int vectorBytes, windowsPerVector, windowBytes;
};

// Blocks of vectorBytes / 2 samples, two vectors each; group w of vector v in a block is the
// block's group 2 * w + v. The tables are in the order of use: for each block, vector and (but for
// `base`) pair of taps.
struct ColumnWindows {
  int pairs;
  ptrdiff_t blocks;
  int* base;             // of each window, in source samples from the first that a tap names
  unsigned char* index;  // four bytes a sample: tap 2p, 128, tap 2p + 1, 128
  short* weights;        // two a sample
};

// Fills the tables into `memory`, 64-byte aligned, of the size that PlanFilterScratch reserves.
// False if the taps of some group do not fit a window. Samples past the end, up to a multiple of
// 64, have no weight. No window reaches past the last sample that a tap names, unless there are
// fewer of them than a window has bytes.
bool PlanWindows(const AxisTaps& taps, const WindowShape& shape, void* memory,
                 ColumnWindows* windows);

// Taps for reading four source samples at a time, or eight if there are more than four taps:
// positions from the first sample that a tap names and weights with zeros up to that count;
// samples past the end as above. `memory` as above.
struct PaddedTaps {
  int kept;  // 4 or 8
  int* first;
  short* weights;
};

PaddedTaps PadTaps(const AxisTaps& taps, void* memory);

}  // namespace qv

#endif
