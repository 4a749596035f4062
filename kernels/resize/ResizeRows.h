// The row kernels of nearest-neighbour and exact linear resizing, and the tables that planning
// makes for them. All indices are of samples within the clipped region.
#ifndef QV_KERNELS_RESIZE_RESIZEROWS_H
#define QV_KERNELS_RESIZE_RESIZEROWS_H

#include <stddef.h>
#include <stdint.h>

#include "dispatch/Dispatched.h"
#include "kernels/Layout.h"

namespace qv {

// Which source sample each destination column and row takes; both rise.
struct NearestTables {
  int width, height;   // of the destination, in pixels
  int srcWidth;        // of the region
  Layout layout;       // interleaved or kPairs422
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
  Layout layout;       // interleaved or kPairs422
  LinearTaps x, y;
  LinearTaps xChroma;  // packed 4:2:2: of the pairs
};

constexpr int kWeightOne = 16384;

// A fourth byte of pixels that is interpolated with the others, but not stored. Always inlined,
// like the next functions: row sources of several levels share this header.
__attribute__((always_inline)) inline bool DropsFourth(const LinearTables& t) {
  return t.layout == Layout::kTriplesOfQuads;
}

// The byte offsets of a value's two samples in a source row and the weight of the right one.
struct LinearSides {
  int left, right, weight;
};

__attribute__((always_inline)) inline LinearSides SidesOf(const LinearTaps& x, ptrdiff_t j,
                                                          int stride, int offset) {
  const int left = x.first[j] * stride + offset;
  return {left, left + x.neighbour * stride, x.weight[j]};
}

// Calls each(k, sides) for every value k of a row.
template <class Each>
__attribute__((always_inline)) inline void ForEachValue(const LinearTables& t, Each each) {
  if (t.layout == Layout::kPairs422) {
    for (ptrdiff_t j = 0; j < t.width / 2; ++j) {
      each(4 * j, SidesOf(t.x, 2 * j, 2, 0));
      each(4 * j + 1, SidesOf(t.xChroma, j, 4, 1));
      each(4 * j + 2, SidesOf(t.x, 2 * j + 1, 2, 0));
      each(4 * j + 3, SidesOf(t.xChroma, j, 4, 3));
    }
  } else {
    const int stride = PixelBytes(t.layout);
    for (ptrdiff_t j = 0; j < t.width; ++j)
      for (int c = 0; c < stride; ++c) each(j * stride + c, SidesOf(t.x, j, stride, c));
  }
}

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
// kTriplesOfQuads whole pixels of the source are read. Nothing is checked.
extern QV_HIDDEN const Dispatched<void(
    const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
    const LinearTables* tables, void* work)> ResizeLinearRows_8u;

}  // namespace qv

#endif
