// The separable filter: every source row that a destination row needs is filtered along x once,
// into a ring of 16-bit rows; destination rows are sums of ring rows.
//
// Numbers. Weights have 14 fractional bits. A source row filtered along x keeps 6 (the 32-bit sum
// shifted right by 8, rounding down): with positive weights of at most 1.5 and negative ones of at
// most -0.5 that is -8160 .. 24480. Along y every product is rounded to 5 fractional bits by
// (h * w + 2^14) >> 15, the sum stays within 2 * 24480 / 2, and (sum + 16) >> 5 is the result.
//
// Error, in units of the result, beyond that of the weights: 1/64 from x, 1/64 for each of at most
// 8 taps along y; together at most 0.15, as an independent error at most 0.03 root mean square. An
// error of weights of half a unit each, 8 taps, adds at most 255 * 8 / 32768 = 0.07 on each axis.
// So the result is never more than 0.5 + 0.3 from the exact value, and on average not more than
// 0.25 + 0.03^2.
#include "kernels/resize/Filter.h"
#include "kernels/level/Level.h"

#if QV_HAS_VECTORS
#include "kernels/resize/FilterAcross.h"
#include "kernels/resize/FilterDown.h"
#include "kernels/resize/SplitRows.h"
#endif

namespace qv::QV_LEVEL {

namespace {

// A component's part of the work.
struct Plane {
  const AxisTaps* taps;
  ptrdiff_t span;  // source samples from the first that a tap names to the last
  Byte* line;
  ptrdiff_t lineBytes;
  Byte* ring;
  ptrdiff_t ringBytes;
#if QV_HAS_VECTORS
  AcrossPlan across;
#endif

  Byte* Line(int slot) const { return line + lineBytes * slot; }
  short* Ring(int slot) const { return reinterpret_cast<short*>(ring + ringBytes * slot); }
};

struct Work {
  Plane planes[3];
  ptrdiff_t first, count;  // as in FilterScratch
  int ringRows;
  short* words;
};

template <RowLayout kLayout>
void PlanWork(const FilterColumns& x, const AxisTaps& y, void* scratch, Work* work) {
  const FilterScratch plan = PlanFilterScratch(kLayout, x, y);
  Byte* const base = static_cast<Byte*>(scratch) + (-reinterpret_cast<uintptr_t>(scratch) & 63);
  work->first = static_cast<ptrdiff_t>(plan.first);
  work->count = static_cast<ptrdiff_t>(plan.count);
  work->ringRows = plan.ringRows;
  work->words = reinterpret_cast<short*>(base + plan.words);
  for (int k = 0; k < ComponentCount(kLayout); ++k) {
    Plane& plane = work->planes[k];
    const bool isChroma = kLayout == RowLayout::kPairs422 && k > 0;
    if (k == 0 || (k == 1 && isChroma)) {
      plane.taps = isChroma ? &x.chroma : &x.luma;
      plane.span = ptrdiff_t{plane.taps->first[plane.taps->count - 1]} + plane.taps->taps -
                   plane.taps->first[0];
#if QV_HAS_VECTORS
      plane.across = PlanAcross(*plane.taps, base + plan.columns[isChroma]);
#endif
    } else {
      plane = work->planes[k - 1];
    }
    plane.line = base + plan.line[k];
    plane.lineBytes = static_cast<ptrdiff_t>(plan.lineBytes[k]);
    plane.ring = base + plan.ring[k];
    plane.ringBytes = static_cast<ptrdiff_t>(plan.ringBytes[k]);
  }
}

#if QV_HAS_VECTORS

// Source rows y .. y + rows - 1, at most kBatchRows of them, filtered along x into the ring.
template <RowLayout kLayout>
void FilterSourceRows(const Byte* src, int srcStep, int y, int rows, const Work& work) {
  const Byte* lines[3][kBatchRows];
  for (int r = 0; r < rows; ++r) {
    const Byte* row = RowAt(src, srcStep, ptrdiff_t{y} + r);
    Byte* own[3] = {};
    for (int k = 0; k < ComponentCount(kLayout); ++k) lines[k][r] = own[k] = work.planes[k].Line(r);
    if constexpr (kLayout == RowLayout::kGray) {
      // Windows end with the row, unless it is shorter than a window.
      const int windowBytes = work.planes[0].across.windowBytes;
      if (windowBytes == 0 || work.count >= windowBytes)
        lines[0][r] = row + work.first;
      else
        memcpy(own[0], row + work.first, static_cast<size_t>(work.count));
    } else if constexpr (kLayout == RowLayout::kTriples) {
      SplitTriples(row + 3 * work.first, own, work.count);
    } else {
      SplitPairs(row + 4 * work.first, own, work.count);
      for (int k = 0; k < 3; ++k)
        lines[k][r] += work.planes[k].taps->first[0] - work.first * (k == 0 ? 2 : 1);
    }
  }
  for (int k = 0; k < ComponentCount(kLayout); ++k) {
    short* out[kBatchRows];
    for (int r = 0; r < rows; ++r) out[r] = work.planes[k].Ring((y + r) % work.ringRows);
    FilterAcross(work.planes[k].across, lines[k], work.planes[k].span, rows, work.words, out);
  }
}

#else

template <RowLayout kLayout>
void FilterSourceRows(const Byte* src, int srcStep, int y, int rows, const Work& work) {
  for (int r = y; r < y + rows; ++r)
    for (int k = 0; k < ComponentCount(kLayout); ++k) {
      const AxisTaps& taps = *work.planes[k].taps;
      const RowComponent component = Component(kLayout, k);
      const Byte* row = RowAt(src, srcStep, r) + component.offset;
      short* out = work.planes[k].Ring(r % work.ringRows);
      for (ptrdiff_t i = 0; i < taps.count; ++i) {
        int sum = 0;
        for (int t = 0; t < taps.taps; ++t)
          sum += taps.weights[i * taps.taps + t] *
                 row[(ptrdiff_t{taps.first[i]} + t) * component.stride];
        out[i] = static_cast<short>(sum >> 8);
      }
    }
}

template <RowLayout kLayout>
void FilterDown(const short* const (*rows)[kMaxTaps], const short* weights, int taps, Byte* dst,
                ptrdiff_t count) {
  for (int k = 0; k < ComponentCount(kLayout); ++k) {
    const RowComponent component = Component(kLayout, k);
    const ptrdiff_t samples = kLayout == RowLayout::kPairs422 && k == 0 ? 2 * count : count;
    for (ptrdiff_t i = 0; i < samples; ++i) {
      int sum = 16;
      for (int t = 0; t < taps; ++t) sum += (rows[k][t][i] * weights[t] + 16384) >> 15;
      dst[component.offset + i * component.stride] = ToByte(sum >> 5);
    }
  }
}

#endif

// True if a destination row from `i` on needs source row r, which no earlier row than i needs.
bool IsNeeded(const AxisTaps& y, int i, int r) {
  while (i < y.count && y.first[i] + y.taps <= r) ++i;
  return i < y.count && y.first[i] <= r;
}

template <RowLayout kLayout>
IppStatus FilterRows(const Byte* src, int srcStep, const FilterColumns& x, const AxisTaps& y,
                     Byte* dst, int dstStep, void* scratch) {
  Work work;
  PlanWork<kLayout>(x, y, scratch, &work);
  const ptrdiff_t count = kLayout == RowLayout::kPairs422 ? x.chroma.count : x.luma.count;
  const int taps = (y.taps + 1) / 2 * 2;
  int next = 0;  // source rows before this one are in the ring or not needed any more
  for (int i = 0; i < y.count; ++i) {
    const int first = y.first[i], end = first + y.taps;
    if (next < first) next = first;
    while (next < end) {
      // Two rows at a time, the second one perhaps ahead of its use.
      const int rows = next + 1 < end || IsNeeded(y, i, next + 1) ? 2 : 1;
      FilterSourceRows<kLayout>(src, srcStep, next, rows, work);
      next += rows;
    }
    const short* rows[3][kMaxTaps];
    short weights[kMaxTaps] = {};
    for (int t = 0; t < taps; ++t) {
      const int own = t < y.taps ? t : 0;
      if (t == own) weights[t] = y.weights[static_cast<ptrdiff_t>(i) * y.taps + t];
      for (int k = 0; k < ComponentCount(kLayout); ++k)
        rows[k][t] = work.planes[k].Ring((first + own) % work.ringRows);
    }
    FilterDown<kLayout>(rows, weights, taps, RowAt(dst, dstStep, i), count);
  }
  return StatusOk;
}

}  // namespace

IppStatus FilterRows_8u_C1(const Byte* src, int srcStep, const FilterColumns& x,
                           const AxisTaps& y, Byte* dst, int dstStep, void* scratch) {
  return FilterRows<RowLayout::kGray>(src, srcStep, x, y, dst, dstStep, scratch);
}

IppStatus FilterRows_8u_C3(const Byte* src, int srcStep, const FilterColumns& x,
                           const AxisTaps& y, Byte* dst, int dstStep, void* scratch) {
  return FilterRows<RowLayout::kTriples>(src, srcStep, x, y, dst, dstStep, scratch);
}

IppStatus FilterRows422_8u_C2(const Byte* src, int srcStep, const FilterColumns& x,
                              const AxisTaps& y, Byte* dst, int dstStep, void* scratch) {
  return FilterRows<RowLayout::kPairs422>(src, srcStep, x, y, dst, dstStep, scratch);
}

}  // namespace qv::QV_LEVEL
