// The row kernels of nearest-neighbour and exact linear resizing, and the tables that planning
// makes for them. All indices are of samples within the clipped region.
#ifndef QV_KERNELS_RESIZE_RESIZEROWS_H
#define QV_KERNELS_RESIZE_RESIZEROWS_H

#include <stddef.h>
#include <stdint.h>

#include "dispatch/Dispatched.h"

namespace qv {

// Which source sample each destination column and row takes; both rise.
struct NearestTables {
  int width, height;   // of the destination, in pixels
  int srcWidth;        // of the region
  int channels;        // 1 or 3; 2 for packed 4:2:2
  const int* x;
  const int* y;
  const int* xChroma;  // packed 4:2:2: the source pair of each destination pair
};

// Destination sample i of an axis lies between source samples first[i] and first[i] + neighbour, of
// which the second one has weight[i] / 16384 and the first one the rest.
struct LinearTaps {
  int neighbour;  // 1, or 0 in a region that is one sample long
  const int* first;
  const unsigned short* weight;
};

struct LinearTables {
  int width, height;
  int srcWidth;
  int channels;     // 1, 3 or 4; 2 for packed 4:2:2
  int pixelStride;  // bytes from a pixel to the next one: as many as channels, or 4 with 3 of them
  LinearTaps x, y;
  LinearTaps xChroma;  // packed 4:2:2: of the pairs
};

constexpr int kWeightOne = 16384;

// Bytes of work memory, aligned to 64, that the row kernels need for a destination row of
// `rowBytes` bytes, all bytes of its pixels counted. Linear rows take most, for each byte: 4 for
// two rows of 16-bit values, 2 for a weight, and for each of two source bytes 4 for its offset, up
// to 4 for shuffle indices and 4 / 16 for a load position; 1 for a row before its fourth bytes are
// left out.
constexpr uint64_t RowsWorkBytes(uint64_t rowBytes) { return 24 * (rowBytes + 128); }

// dst pixel (i, j) = src pixel (y[i], x[j]).
extern QV_HIDDEN const Dispatched<void(
    const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
    const NearestTables* tables, void* work)> NearestRows_8u;

// With p0, p1 a channel's bytes in the left and the right source column and w = xWeight[j], a
// source row becomes h = (p1 * w + p0 * (16384 - w) + 128) >> 8, a value with 6 fractional bits;
// with u, d the results of the upper and the lower source row and w = yWeight[i] the destination
// byte is (d * w + u * (16384 - w) + 524288) >> 20. Each source row is interpolated once. Of
// four-byte pixels with three channels the fourth byte of the destination is not stored to; whole
// pixels of the source are read. Nothing is checked.
extern QV_HIDDEN const Dispatched<void(
    const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
    const LinearTables* tables, void* work)> ResizeLinearRows_8u;

}  // namespace qv

#endif
