// The separable filter: every source row that a destination row needs is filtered along x once,
// into a ring of 16-bit rows; destination rows are sums of ring rows.
//
// Numbers. Weights have 14 fractional bits. A source row filtered along x keeps 6 (the 32-bit sum
// shifted right by 8, rounding down): with positive weights of at most 1.5 and negative ones of at
// most -0.5 that is -8160 .. 24480. Along y every product is rounded to 5 fractional bits by
// (h * w + 2^14) >> 15, the sum stays within 2 * 24480 / 2, and (sum + 16) >> 5 is the result.
//
// Error, in units of the result, beyond that of the weights: 1/64 from x, 1/64 for each of at most 8
// taps along y; together at most 0.15, as an independent error at most 0.03 root mean square. An
// error of weights of half a unit each, 8 taps, adds at most 255 * 8 / 32768 = 0.07 on each axis.
// So the result is never more than 0.5 + 0.3 from the exact value, and on average not more than
// 0.25 + 0.03^2.
#include "kernels/resize/Filter.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

struct Work {
  FilterScratch plan;
  Byte* base;
  const AxisTaps* taps[3];
  ptrdiff_t origin[3];  // first source sample that a tap names

  short* Ring(int k, int row) const {
    return reinterpret_cast<short*>(
        base + plan.ring[k] +
        static_cast<ptrdiff_t>(plan.ringBytes[k]) * (row % plan.ringRows));
  }
  Byte* Line(int k) const { return base + plan.line[k]; }
  Byte* Out(int k) const { return base + plan.out[k]; }
};

template <RowLayout kLayout>
void SplitRow(const Byte* row, int k, Byte* line, ptrdiff_t origin, ptrdiff_t count) {
  constexpr RowLayout layout = kLayout;
  const RowComponent component = Component(layout, k);
  const Byte* from = row + component.offset + origin * component.stride;
  for (ptrdiff_t i = 0; i < count; ++i) line[i] = from[i * component.stride];
}

void FilterAcross(const Byte* line, ptrdiff_t origin, const AxisTaps& taps, short* out) {
  const short* weights = taps.weights;
  for (ptrdiff_t i = 0; i < taps.count; ++i, weights += taps.taps) {
    const Byte* from = line + (taps.first[i] - origin);
    int sum = 0;
    for (int t = 0; t < taps.taps; ++t) sum += weights[t] * from[t];
    out[i] = static_cast<short>(sum >> 8);
  }
}

void FilterDown(const short* const* rows, const short* weights, int taps, Byte* out,
                ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    int sum = 16;
    for (int t = 0; t < taps; ++t) sum += (rows[t][i] * weights[t] + 16384) >> 15;
    out[i] = ToByte(sum >> 5);
  }
}

template <RowLayout kLayout>
void JoinRow(const Byte* const* out, const Work& work, Byte* row) {
  for (int k = 0; k < ComponentCount(kLayout); ++k) {
    const RowComponent component = Component(kLayout, k);
    for (ptrdiff_t i = 0; i < work.taps[k]->count; ++i)
      row[component.offset + i * component.stride] = out[k][i];
  }
}

template <RowLayout kLayout>
void FilterSourceRow(const Byte* row, int y, const Work& work) {
  for (int k = 0; k < ComponentCount(kLayout); ++k) {
    const AxisTaps& taps = *work.taps[k];
    SplitRow<kLayout>(row, k, work.Line(k), work.origin[k],
                      taps.first[taps.count - 1] + taps.taps - work.origin[k]);
    FilterAcross(work.Line(k), work.origin[k], taps, work.Ring(k, y));
  }
}

template <RowLayout kLayout>
IppStatus FilterRows(const Byte* src, int srcStep, const FilterColumns& x, const AxisTaps& y,
                     Byte* dst, int dstStep, void* scratch) {
  Work work;
  work.plan = PlanFilterScratch(kLayout, x, y);
  work.base = static_cast<Byte*>(scratch) + (-reinterpret_cast<uintptr_t>(scratch) & 63);
  for (int k = 0; k < ComponentCount(kLayout); ++k) {
    work.taps[k] = kLayout == RowLayout::kPairs422 && k > 0 ? &x.chroma : &x.luma;
    work.origin[k] = work.taps[k]->first[0];
  }
  int next = 0;  // source rows below this one are in the ring or not needed
  for (int i = 0; i < y.count; ++i) {
    const int first = y.first[i], end = first + y.taps;
    for (int r = next > first ? next : first; r < end; ++r)
      FilterSourceRow<kLayout>(RowAt(src, srcStep, r), r, work);
    next = end;
    const Byte* out[3];
    for (int k = 0; k < ComponentCount(kLayout); ++k) {
      const short* rows[kMaxTaps];
      for (int t = 0; t < y.taps; ++t) rows[t] = work.Ring(k, first + t);
      FilterDown(rows, y.weights + static_cast<ptrdiff_t>(i) * y.taps, y.taps, work.Out(k),
                 work.taps[k]->count);
      out[k] = work.Out(k);
    }
    JoinRow<kLayout>(out, work, RowAt(dst, dstStep, i));
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
