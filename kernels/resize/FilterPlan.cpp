// Scratch memory of the separable filter.
#include "kernels/resize/Filter.h"

namespace qv {

namespace {

// Rows of work memory are whole blocks of 64 values; the taps of a widened line are read four or
// more at a time and may pass its end by kReadAhead.
constexpr long long kBlock = 64;
constexpr long long kReadAhead = 16;
// Filtered lines are written eight samples at a time.
constexpr long long kWritePast = 7;

long long RoundUp(long long n) { return (n + kBlock - 1) / kBlock * kBlock; }

// Source samples up to the last that a tap names.
long long EndOfSamples(const AxisTaps& taps) {
  return static_cast<long long>(taps.first[taps.count - 1]) + taps.taps;
}

}  // namespace

FilterScratch PlanFilterScratch(Layout layout, const FilterColumns& x, const AxisTaps& y) {
  FilterScratch s = {};
  long long first = x.luma.first[0], end = EndOfSamples(x.luma), samples = end - first;
  int pixelBytes = ComponentCount(layout), taps = x.luma.taps;
  long long values = static_cast<long long>(x.luma.count) * pixelBytes;
  if (layout == Layout::kPairs422) {
    const long long chromaFirst = x.chroma.first[0], chromaEnd = EndOfSamples(x.chroma);
    first = first / 2 < chromaFirst ? first / 2 : chromaFirst;
    end = (end + 1) / 2 > chromaEnd ? (end + 1) / 2 : chromaEnd;
    samples = 2 * (end - first);
    pixelBytes = 4;
    values = static_cast<long long>(x.chroma.count) * pixelBytes;
    if (x.chroma.taps > taps) taps = x.chroma.taps;
  }
  s.first = first * pixelBytes;
  s.span = (end - first) * pixelBytes;
  s.ringRows = y.taps + kBatchRows;
  s.ringBytes = 2 * RoundUp(values);
  long long at = 0;
  const auto take = [&at](long long bytes) {
    const long long start = at;
    at += RoundUp(bytes);
    return start;
  };
  s.ring = take(s.ringBytes * s.ringRows);
  s.copy = take(kBatchRows * kCopyBytes);
  // For each value its first tap's offset, indices and weights of its pairs of taps, and for every
  // fourth one a window a pair; or up to 16 weights and an offset.
  s.columns = take(RoundUp(values) * (4 + (taps + 1) / 2 * 9));
  s.words = take(2 * (samples + kReadAhead));
  s.line = take(2 * RoundUp(values + kWritePast));
  s.total = at + kBlock;
  return s;
}

long long FilterScratchBytes(Layout layout, const FilterColumns& x, const AxisTaps& y) {
  return PlanFilterScratch(layout, x, y).total;
}

long long AreaScratchBytes(Layout layout, const AreaColumns& x, const AxisSpans&) {
  // Sums of a row of source bytes, 64 bits wide at the most, and their means; a reciprocal for each
  // destination sample.
  const long long pixels = 1ll + x.luma.span[x.luma.count - 1].last;
  long long bytes, reciprocals = x.luma.count;
  if (layout == Layout::kPairs422) {
    const long long pairs = 1ll + x.chroma.span[x.chroma.count - 1].last;
    bytes = 4 * (pairs > (pixels + 1) / 2 ? pairs : (pixels + 1) / 2);
    reciprocals += x.chroma.count;
  } else {
    bytes = pixels * Component(layout, 0).stride;
  }
  return bytes * (8 + 2) + reciprocals * 8 + 2 * kBlock;
}

}  // namespace qv
