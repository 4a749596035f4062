// Entry points of the separable filter: destination rows from source rows by taps on both axes. All
// levels write the same bytes, each within one unit of the sum that the exact weights would give.
//
// Arguments are the caller's to get right; nothing is checked. `src` is the first byte of the
// region that the taps count from, `dst` the first destination pixel. Only source samples that a
// tap names are read, whole pixels of them (4:2:2: whole four-byte pairs). The scratch memory
// needs no alignment and as many bytes as the planning function of the kernel says.
#ifndef QV_KERNELS_RESIZE_FILTER_H
#define QV_KERNELS_RESIZE_FILTER_H

#include <stddef.h>

#include "dispatch/Dispatched.h"
#include "kernels/Layout.h"
#include "kernels/resize/AxisTaps.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Area averaging by exactly two on both axes, with the bytes that the filter writes for it:
// dst[x, y] = (src[2x, 2y] + src[2x + 1, 2y] + src[2x, 2y + 1] + src[2x + 1, 2y + 1] + 2) >> 2.
// `size` is the destination's.
extern QV_HIDDEN const ImageKernel HalveRows_8u_C1, HalveRows_8u_C3;

// Taps along x: of all components, or for 4:2:2 of the luma samples (two a pair) and of the chroma
// samples (one a pair); there the luma count is twice the chroma count. No other layout reads
// `chroma`.
struct FilterColumns {
  AxisTaps luma;
  AxisTaps chroma;
};

struct AreaColumns {
  AxisSpans luma;
  AxisSpans chroma;
};

// Bytes of scratch memory; may be more than memory has.
long long FilterScratchBytes(Layout layout, const FilterColumns& x, const AxisTaps& y);
long long AreaScratchBytes(Layout layout, const AreaColumns& x, const AxisSpans& y);

// dst = sum over both axes of weight * src, rounded and limited to a byte. At most kMaxTaps taps an
// axis, and weights within kMostWeight and kLeastWeight.
using FilterKernel = Dispatched<IppStatus(
    const unsigned char* src, int srcStep, const FilterColumns& x, const AxisTaps& y,
    unsigned char* dst, int dstStep, void* scratch)>;
extern QV_HIDDEN const FilterKernel FilterRows_8u_C1, FilterRows_8u_C2, FilterRows_8u_C3,
    FilterRows_8u_C4, FilterRows422_8u_C2;

// dst = mean of src over the spans of both axes, rounded.
using AreaKernel = Dispatched<IppStatus(
    const unsigned char* src, int srcStep, const AreaColumns& x, const AxisSpans& y,
    unsigned char* dst, int dstStep, void* scratch)>;
extern QV_HIDDEN const AreaKernel AreaRows_8u_C1, AreaRows_8u_C3, AreaRows422_8u_C2;

// The components of a row: component k has its first sample at byte `offset` of a row and the next
// ones `stride` bytes further. Always inlined, like the next function: row sources of several
// levels share this header.
struct RowComponent {
  int offset, stride;
};

__attribute__((always_inline)) constexpr int ComponentCount(Layout layout) {
  return layout == Layout::kPairs422 ? 3 : PixelBytes(layout);
}

__attribute__((always_inline)) constexpr RowComponent Component(Layout layout, int k) {
  if (layout != Layout::kPairs422) return {k, ComponentCount(layout)};
  return k == 0 ? RowComponent{0, 2} : RowComponent{2 * k - 1, 4};
}

// What makes byte k of a destination row: `taps` source bytes `stride` bytes apart, the first of
// them at byte `at` of a source row.
struct ValueTaps {
  int taps, stride;
  ptrdiff_t at;
  const short* weights;
};

template <Layout kLayout>
__attribute__((always_inline)) inline ValueTaps TapsOfValue(const FilterColumns& x, ptrdiff_t k) {
  constexpr bool kPairs = kLayout == Layout::kPairs422;
  const bool isChroma = kPairs && k % 2 != 0;
  const AxisTaps& taps = isChroma ? x.chroma : x.luma;
  const int stride = !kPairs ? ComponentCount(kLayout) : isChroma ? 4 : 2;
  const ptrdiff_t i = k / stride;
  const ptrdiff_t offset = !kPairs || isChroma ? k % stride : 0;
  return {taps.taps, stride, ptrdiff_t{taps.first[i]} * stride + offset,
          taps.weights + i * taps.taps};
}

// Bytes of a destination row.
template <Layout kLayout>
__attribute__((always_inline)) inline ptrdiff_t ValueCount(const FilterColumns& x) {
  return kLayout == Layout::kPairs422 ? ptrdiff_t{4} * x.chroma.count
                                         : ptrdiff_t{ComponentCount(kLayout)} * x.luma.count;
}

// How FilterRows carves its scratch memory, in bytes from its 64-byte aligned start. The sizes hold
// for every level.
constexpr int kBatchRows = 2;    // source rows filtered at once
constexpr int kCopyBytes = 128;  // the longest window, and a row shorter than it

struct FilterScratch {
  long long first, span;      // bytes of a source row that taps name, in whole pixels (pairs)
  int ringRows;
  long long ring, ringBytes;  // filtered rows and the bytes of one, whole blocks of 64 values
  long long copy;             // kBatchRows rows of kCopyBytes
  long long columns;          // what a level derives from the taps of x
  long long words, line;      // the samples of a component in 16 bits; the same, filtered
  long long total;            // alignment included
};

FilterScratch PlanFilterScratch(Layout layout, const FilterColumns& x, const AxisTaps& y);

}  // namespace qv

#endif
