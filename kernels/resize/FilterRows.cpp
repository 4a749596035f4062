// The separable filter: every source row that a destination row needs is filtered along x once,
// into a ring of 16-bit rows; destination rows are sums of ring rows.
//
// Numbers. Weights have 14 fractional bits. A source row filtered along x keeps 6 (the 32-bit sum
// shifted right by 8, rounding down): from kAcrossLeast to kAcrossMost. Along y every product is
// rounded to 5 fractional bits by (h * w + 2^14) >> 15, and (sum + 16) >> 5 is the result.
//
// Error, in units of the result, beyond that of the weights: 1/64 from x, 1/64 for each tap along
// y; with 8 of them together at most 0.15, as an independent error at most 0.03 root mean square.
// An error of weights of half a unit each, 8 taps, adds at most 255 * 8 / 32768 = 0.07 on each
// axis. So the result is never more than 0.5 + 0.3 from the exact value, and on average not more
// than 0.25 + 0.03^2; with 12 taps, 0.5 + 0.4 and 0.25 + 0.04^2.
#include "kernels/resize/Filter.h"
#include "kernels/level/Level.h"

#if QV_HAS_VECTORS
#include "kernels/resize/FilterAcross.h"
#include "kernels/resize/FilterDown.h"
#endif

namespace qv::QV_LEVEL {

namespace {

constexpr double kAcrossLeast = 255 * 64 * kLeastWeight, kAcrossMost = 255 * 64 * kMostWeight;
static_assert(kAcrossLeast >= INT16_MIN && kAcrossMost <= INT16_MAX);
// Sums along y, of up to kMaxTaps products with half a unit of rounding each.
static_assert(kAcrossMost / 2 * (kMostWeight - kLeastWeight) + kMaxTaps / 2 <= INT16_MAX);

// The call, its scratch memory, and the range of values of each destination row that is being made.
template <Layout kLayout>
struct Work {
  const Byte* src;
  int srcStep;
  const FilterColumns& x;
  const AxisTaps& y;
  FilterScratch plan;
  Byte* base;
#if QV_HAS_VECTORS
  AcrossPlan across;
#endif
  ptrdiff_t from, to;

  Work(const Byte* source, int step, const FilterColumns& columns, const AxisTaps& rows,
       void* scratch)
      : src(source), srcStep(step), x(columns), y(rows),
        plan(PlanFilterScratch(kLayout, columns, rows)),
        base(static_cast<Byte*>(scratch) + (-reinterpret_cast<uintptr_t>(scratch) & 63)),
#if QV_HAS_VECTORS
        across(PlanAcross(kLayout, columns, plan, base)),
#endif
        from(0), to(ValueCount<kLayout>(columns)) {}

  short* Ring(int row) const {
    return reinterpret_cast<short*>(base + plan.ring +
                                    static_cast<ptrdiff_t>(plan.ringBytes) *
                                        (row % plan.ringRows));
  }
};

#if QV_HAS_VECTORS

// Tables and ring of a strip, which stay in the first cache level together.
constexpr ptrdiff_t kStripBytes = ptrdiff_t{36} << 10;

// Values of a strip: all, or as many in each of as few as there can be.
template <Layout kLayout>
ptrdiff_t StripValues(const Work<kLayout>& work) {
  if (work.across.kind == Across::kWords) return work.to;
  const long long bytes = (2ll * work.plan.ringRows + 8 * work.across.windows.pairs) * work.to;
  const auto strips = static_cast<ptrdiff_t>((bytes + kStripBytes - 1) / kStripBytes);
  return (work.to / strips + 63) / 64 * 64;
}

// Source rows r .. r + rows - 1, at most kBatchRows of them, filtered along x into the ring.
template <Layout kLayout>
void FilterSourceRows(const Work<kLayout>& work, int r, int rows) {
  const Byte* lines[kBatchRows];
  short* out[kBatchRows];
  const int lastRow = work.y.first[work.y.count - 1] + work.y.taps - 1;
  ptrdiff_t ahead = lastRow - r >= 2 * kBatchRows - 1 ? ptrdiff_t{work.srcStep} * kBatchRows : 0;
  for (int i = 0; i < rows; ++i) {
    lines[i] = RowAt(work.src, work.srcStep, ptrdiff_t{r} + i) + work.plan.first;
    out[i] = work.Ring(r + i);
    // Windows end with the row, unless it is shorter than a window.
    if constexpr (kHasByteShuffle) {
      if (work.plan.span < work.across.windowBytes) {
        Byte* const copy = work.base + work.plan.copy + i * kCopyBytes;
        CopyShortRow(lines[i], static_cast<ptrdiff_t>(work.plan.span), copy);
        lines[i] = copy;
        ahead = 0;
      }
    }
  }
  FilterAcross<kLayout>(work.across, work.x, lines, rows, ahead,
                        static_cast<ptrdiff_t>(work.plan.span), work.from, work.to, out);
}

#else

template <Layout kLayout>
ptrdiff_t StripValues(const Work<kLayout>& work) {
  return work.to;
}

template <Layout kLayout>
void FilterSourceRows(const Work<kLayout>& work, int r, int rows) {
  for (int i = r; i < r + rows; ++i) {
    const Byte* row = RowAt(work.src, work.srcStep, i);
    short* out = work.Ring(i);
    for (ptrdiff_t k = work.from; k < work.to; ++k) {
      const ValueTaps v = TapsOfValue<kLayout>(work.x, k);
      int sum = 0;
      for (int t = 0; t < v.taps; ++t) sum += v.weights[t] * row[v.at + ptrdiff_t{t} * v.stride];
      out[k] = static_cast<short>(sum >> 8);
    }
  }
}

void FilterDown(const short* const* rows, const short* weights, int taps, Byte* dst,
                ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    int sum = 16;
    for (int t = 0; t < taps; ++t) sum += (rows[t][i] * weights[t] + 16384) >> 15;
    dst[i] = ToByte(sum >> 5);
  }
}

#endif

// True if a destination row from `i` on needs source row r, which no earlier row than i needs.
bool IsNeeded(const AxisTaps& y, int i, int r) {
  while (i < y.count && y.first[i] + y.taps <= r) ++i;
  return i < y.count && y.first[i] <= r;
}

// Values work.from .. work.to - 1 of all destination rows.
template <Layout kLayout>
void FilterStrip(const Work<kLayout>& work, Byte* dst, int dstStep) {
  const AxisTaps& y = work.y;
  const int taps = (y.taps + 1) / 2 * 2;
  int next = 0;  // source rows before this one are in the ring or not needed any more
  for (int i = 0; i < y.count; ++i) {
    const int first = y.first[i], end = first + y.taps;
    if (next < first) next = first;
    while (next < end) {
      // Two rows at a time, the second one perhaps ahead of its use.
      const int rows = next + 1 < end || IsNeeded(y, i, next + 1) ? 2 : 1;
      FilterSourceRows(work, next, rows);
      next += rows;
    }
    const short* rows[kMaxTaps];
    short weights[kMaxTaps] = {};
    for (int t = 0; t < taps; ++t) {
      const int own = t < y.taps ? t : 0;
      if (t == own) weights[t] = y.weights[static_cast<ptrdiff_t>(i) * y.taps + t];
      rows[t] = work.Ring(first + own) + work.from;
    }
    FilterDown(rows, weights, taps, RowAt(dst, dstStep, i) + work.from, work.to - work.from);
  }
}

template <Layout kLayout>
IppStatus FilterRows(const Byte* src, int srcStep, const FilterColumns& x, const AxisTaps& y,
                     Byte* dst, int dstStep, void* scratch) {
  Work<kLayout> work(src, srcStep, x, y, scratch);
  const ptrdiff_t values = work.to, strip = StripValues(work);
  for (; work.from < values; work.from = work.to) {
    work.to = values - work.from < strip ? values : work.from + strip;
    FilterStrip(work, dst, dstStep);
  }
  return StatusOk;
}

}  // namespace

IppStatus FilterRows_8u_C1(const Byte* src, int srcStep, const FilterColumns& x,
                           const AxisTaps& y, Byte* dst, int dstStep, void* scratch) {
  return FilterRows<Layout::kGrey>(src, srcStep, x, y, dst, dstStep, scratch);
}

IppStatus FilterRows_8u_C2(const Byte* src, int srcStep, const FilterColumns& x,
                           const AxisTaps& y, Byte* dst, int dstStep, void* scratch) {
  return FilterRows<Layout::kPairs>(src, srcStep, x, y, dst, dstStep, scratch);
}

IppStatus FilterRows_8u_C3(const Byte* src, int srcStep, const FilterColumns& x,
                           const AxisTaps& y, Byte* dst, int dstStep, void* scratch) {
  return FilterRows<Layout::kTriples>(src, srcStep, x, y, dst, dstStep, scratch);
}

IppStatus FilterRows_8u_C4(const Byte* src, int srcStep, const FilterColumns& x,
                           const AxisTaps& y, Byte* dst, int dstStep, void* scratch) {
  return FilterRows<Layout::kQuads>(src, srcStep, x, y, dst, dstStep, scratch);
}

IppStatus FilterRows422_8u_C2(const Byte* src, int srcStep, const FilterColumns& x,
                              const AxisTaps& y, Byte* dst, int dstStep, void* scratch) {
  return FilterRows<Layout::kPairs422>(src, srcStep, x, y, dst, dstStep, scratch);
}

}  // namespace qv::QV_LEVEL
