// Filtering along x without gathers: for each group of neighbouring bytes of a destination row, a
// window of contiguous source bytes that holds their taps, and the shuffles that bring each one's
// pairs of taps side by side. Components stay interleaved: their taps are further apart, and that
// is all.
#ifndef QV_KERNELS_RESIZE_COLUMNWINDOWS_H
#define QV_KERNELS_RESIZE_COLUMNWINDOWS_H

#include <stddef.h>

#include "kernels/resize/Filter.h"

namespace qv {

// The vectors of a level: a vector has vectorBytes / 4 values (32-bit sums), in windowsPerVector
// groups with windows of windowBytes each: one for all taps, or one for each pair of taps.
struct WindowShape {
  int vectorBytes, windowsPerVector, windowBytes;
  bool oneAPair;
};

// Blocks of vectorBytes / 2 values, two vectors each; group w of vector v in a block is the block's
// group 2 * w + v. The tables are in the order of use: for each block, vector and pair of taps
// (`base` of windows for all taps: each block and vector).
struct ColumnWindows {
  int pairs;
  int* base;             // of each window, in bytes from FilterScratch::first
  unsigned char* index;  // four bytes a value: tap 2p, 128, tap 2p + 1, 128
  short* weights;        // two a value
};

// Fills the tables into `memory`, 64-byte aligned, of the size that PlanFilterScratch reserves.
// False if the taps of some group do not fit a window. Values past the end, up to a multiple of 64,
// have no weight. No window reaches past the `span` bytes from byte `first` that taps name, unless
// a window is longer than that.
bool PlanWindows(Layout layout, const FilterColumns& x, const WindowShape& shape,
                 const FilterScratch& scratch, void* memory, ColumnWindows* windows);

// Taps for reading four source samples at a time, eight if there are more than four taps or sixteen
// if there are more than eight: positions from sample `first` and weights with zeros up to that
// count; samples past the end, up to a multiple of eight, have no weight.
struct PaddedTaps {
  ptrdiff_t count;
  int kept;  // 4, 8 or 16
  int* first;
  short* weights;
};

// `*memory` moves on past the tables.
PaddedTaps PadTaps(const AxisTaps& taps, long long first, void** memory);

}  // namespace qv

#endif
