// Area averaging over intervals of any length: the source rows of a span are added up column by
// column, their sums scaled to means with 7 fractional bits, and the means added up along the row.
//
// Errors, in units of the result: a mean is rounded by at most 1/256; a share is rounded by at
// most half of a 4096th, two of them on each axis against a total of at least one sample: together
// at most 0.004 + 2 * 255 / 4096 = 0.13 (where the unit of shares is smaller than 4096 the total
// is larger by more). All sums are whole numbers, so the order in which they are taken changes
// nothing.
#include "kernels/resize/Filter.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

using Wide = unsigned long long;

// mean * 128 = (sum * factor + half) >> shift for a sum of bytes whose shares add up to `total`.
// factor is above 2^30 and at most 2^31 (less for totals above 2^25), and sum * factor is at most
// 255 * 2^(shift + 7) <= 255 * 2^55.
struct MeanScale {
  unsigned factor;
  int shift;

  QV_INLINE explicit MeanScale(Wide total) {
    int power = 30;
    while (power < 55 && total >> (power - 30)) ++power;
    factor = static_cast<unsigned>((1ull << power) / total);
    shift = power - 7;
  }

  QV_INLINE unsigned operator()(Wide sum) const {
    return static_cast<unsigned>((sum * factor + (1ull << (shift - 1))) >> shift);
  }
};

// sums[i] = shares of the span's rows times their bytes.
template <class Sum>
void AddRows(const Byte* src, int srcStep, const AreaSpan& span, unsigned unit, Sum* sums,
             ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) sums[i] = 0;
  for (ptrdiff_t r = span.first; r <= span.last; ++r) {
    const Byte* row = RowAt(src, srcStep, r);
    const unsigned share =
        r == span.first ? span.firstShare : r == span.last ? span.lastShare : unit;
    for (ptrdiff_t i = 0; i < count; ++i) sums[i] += share * row[i];
  }
}

template <class Sum>
void ScaleSums(const Sum* sums, const MeanScale& scale, unsigned short* means, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) means[i] = static_cast<unsigned short>(scale(sums[i]));
}

// One component of a destination row; `means` counts from the component's sample 0.
void AddAcross(const unsigned short* means, int stride, const AxisSpans& spans,
               const Wide* reciprocals, Byte* dst) {
  for (ptrdiff_t i = 0; i < spans.count; ++i) {
    const AreaSpan& span = spans.span[i];
    const unsigned short* from = means + static_cast<ptrdiff_t>(span.first) * stride;
    Wide sum = 0;
    for (ptrdiff_t s = span.first + 1; s < span.last; ++s) sum += (from += stride)[0];
    sum *= spans.unit;
    sum += Wide{span.firstShare} * means[static_cast<ptrdiff_t>(span.first) * stride];
    if (span.last > span.first)
      sum += Wide{span.lastShare} * means[static_cast<ptrdiff_t>(span.last) * stride];
    dst[i * stride] = static_cast<Byte>((sum * reciprocals[i] + (1ull << 54)) >> 55);
  }
}

// The sums of a span fit 32 bits unless its shares pass 2^24, which only a row of that many samples
// can make happen.
bool FitsNarrowSums(const AxisSpans& y) {
  for (ptrdiff_t i = 0; i < y.count; ++i)
    if (SpanTotal(y.span[i], y.unit) > 1u << 24) return false;
  return true;
}

template <class Sum>
void AverageRow(const Byte* src, int srcStep, const AreaSpan& span, unsigned unit, void* sums,
                unsigned short* means, ptrdiff_t count) {
  AddRows(src, srcStep, span, unit, static_cast<Sum*>(sums), count);
  ScaleSums(static_cast<const Sum*>(sums), MeanScale(SpanTotal(span, unit)), means, count);
}

template <Layout kLayout>
IppStatus AreaRows(const Byte* src, int srcStep, const AreaColumns& x, const AxisSpans& y,
                   Byte* dst, int dstStep, void* scratch) {
  Byte* at = static_cast<Byte*>(scratch) + (-reinterpret_cast<uintptr_t>(scratch) & 63);
  constexpr int kStride = Component(kLayout, 0).stride;
  // Bytes of a source row up to the end of the last pixel (pair) that a span names.
  ptrdiff_t count = 0;
  Wide* reciprocals[3];
  for (int k = 0; k < ComponentCount(kLayout); ++k) {
    const AxisSpans& spans = kLayout == Layout::kPairs422 && k > 0 ? x.chroma : x.luma;
    const ptrdiff_t last = spans.span[spans.count - 1].last;
    const ptrdiff_t bytes = kLayout == Layout::kPairs422
                                ? (k == 0 ? last / 2 + 1 : last + 1) * 4
                                : (last + 1) * kStride;
    count = bytes > count ? bytes : count;
    reciprocals[k] = reinterpret_cast<Wide*>(at);
    if (k < 2 && (k == 0 || kLayout == Layout::kPairs422)) {
      for (ptrdiff_t i = 0; i < spans.count; ++i)
        reciprocals[k][i] = (1ull << 48) / SpanTotal(spans.span[i], spans.unit);
      at += sizeof(Wide) * static_cast<size_t>(spans.count);
    } else {
      reciprocals[k] = reciprocals[k - 1];
    }
  }
  void* sums = at;
  const bool narrow = FitsNarrowSums(y);
  unsigned short* means = reinterpret_cast<unsigned short*>(
      at + (narrow ? sizeof(unsigned) : sizeof(Wide)) * static_cast<size_t>(count));
  for (ptrdiff_t i = 0; i < y.count; ++i) {
    if (narrow)
      AverageRow<unsigned>(src, srcStep, y.span[i], y.unit, sums, means, count);
    else
      AverageRow<Wide>(src, srcStep, y.span[i], y.unit, sums, means, count);
    for (int k = 0; k < ComponentCount(kLayout); ++k) {
      const RowComponent component = Component(kLayout, k);
      const AxisSpans& spans = kLayout == Layout::kPairs422 && k > 0 ? x.chroma : x.luma;
      AddAcross(means + component.offset, component.stride, spans, reciprocals[k],
                RowAt(dst, dstStep, i) + component.offset);
    }
  }
  return StatusOk;
}

}  // namespace

IppStatus AreaRows_8u_C1(const Byte* src, int srcStep, const AreaColumns& x, const AxisSpans& y,
                         Byte* dst, int dstStep, void* scratch) {
  return AreaRows<Layout::kGrey>(src, srcStep, x, y, dst, dstStep, scratch);
}

IppStatus AreaRows_8u_C3(const Byte* src, int srcStep, const AreaColumns& x, const AxisSpans& y,
                         Byte* dst, int dstStep, void* scratch) {
  return AreaRows<Layout::kTriples>(src, srcStep, x, y, dst, dstStep, scratch);
}

IppStatus AreaRows422_8u_C2(const Byte* src, int srcStep, const AreaColumns& x,
                            const AxisSpans& y, Byte* dst, int dstStep, void* scratch) {
  return AreaRows<Layout::kPairs422>(src, srcStep, x, y, dst, dstStep, scratch);
}

}  // namespace qv::QV_LEVEL
