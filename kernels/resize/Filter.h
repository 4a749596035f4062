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

#include "kernels/resize/AxisTaps.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Area averaging by exactly two on both axes, with the bytes that the filter writes for it:
// dst[x, y] = (src[2x, 2y] + src[2x + 1, 2y] + src[2x, 2y + 1] + src[2x + 1, 2y + 1] + 2) >> 2.
// `size` is the destination's.
IppStatus HalveRows_8u_C1(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                          IppiSize size);
IppStatus HalveRows_8u_C3(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                          IppiSize size);

// How the samples of a row are interleaved.
enum class RowLayout { kGray, kTriples, kPairs422 };

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
long long FilterScratchBytes(RowLayout layout, const FilterColumns& x, const AxisTaps& y);
long long AreaScratchBytes(RowLayout layout, const AreaColumns& x, const AxisSpans& y);

// dst = sum over both axes of weight * src, rounded and limited to a byte. At most kMaxTaps taps an
// axis; the positive weights of one sample sum to at most 1.5, the negative ones to at most -0.5.
IppStatus FilterRows_8u_C1(const unsigned char* src, int srcStep, const FilterColumns& x,
                           const AxisTaps& y, unsigned char* dst, int dstStep, void* scratch);
IppStatus FilterRows_8u_C3(const unsigned char* src, int srcStep, const FilterColumns& x,
                           const AxisTaps& y, unsigned char* dst, int dstStep, void* scratch);
IppStatus FilterRows422_8u_C2(const unsigned char* src, int srcStep, const FilterColumns& x,
                              const AxisTaps& y, unsigned char* dst, int dstStep, void* scratch);

// dst = mean of src over the spans of both axes, rounded.
IppStatus AreaRows_8u_C1(const unsigned char* src, int srcStep, const AreaColumns& x,
                         const AxisSpans& y, unsigned char* dst, int dstStep, void* scratch);
IppStatus AreaRows_8u_C3(const unsigned char* src, int srcStep, const AreaColumns& x,
                         const AxisSpans& y, unsigned char* dst, int dstStep, void* scratch);
IppStatus AreaRows422_8u_C2(const unsigned char* src, int srcStep, const AreaColumns& x,
                            const AxisSpans& y, unsigned char* dst, int dstStep, void* scratch);

// The components of a row: component k has its first sample at byte `offset` of a row and the next
// ones `stride` bytes further. Always inlined: row sources of several levels share this header.
struct RowComponent {
  int offset, stride;
};

__attribute__((always_inline)) constexpr int ComponentCount(RowLayout layout) {
  return layout == RowLayout::kGray ? 1 : 3;
}

__attribute__((always_inline)) constexpr RowComponent Component(RowLayout layout, int k) {
  if (layout == RowLayout::kGray) return {0, 1};
  if (layout == RowLayout::kTriples) return {k, 3};
  return k == 0 ? RowComponent{0, 2} : RowComponent{2 * k - 1, 4};
}

// How FilterRows carves its scratch memory, in bytes from its 64-byte aligned start. The sizes hold
// for every level. Per component k: `line` holds kBatchRows rows of source samples, one after
// another, and `ring` ringRows filtered rows, padded to whole blocks of 64 pixels (pairs).
constexpr int kBatchRows = 2;

struct FilterScratch {
  long long first, count;                // pixels (4:2:2: pairs) of a source row that taps name
  int ringRows;
  long long lineBytes[3], ringBytes[3];  // of one row
  long long line[3], ring[3];            // where they start
  long long words;                       // a line widened to 16 bits
  long long columns[2];                  // what a level derives from the taps of x
  long long total;                       // alignment included
};

FilterScratch PlanFilterScratch(RowLayout layout, const FilterColumns& x, const AxisTaps& y);

}  // namespace qv

#endif
