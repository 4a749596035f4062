// Scratch memory of the separable filter.
#include "kernels/resize/Filter.h"

namespace qv {

namespace {

// Rows of work memory are whole blocks of 64 samples with one more block to read into.
constexpr long long kBlock = 64;

long long RoundUp(long long n) { return (n + kBlock - 1) / kBlock * kBlock; }

// Source samples that the taps span.
long long SpannedSamples(const AxisTaps& taps) {
  return static_cast<long long>(taps.first[taps.count - 1]) + taps.taps - taps.first[0];
}

}  // namespace

FilterScratch PlanFilterScratch(RowLayout layout, const FilterColumns& x, const AxisTaps& y) {
  FilterScratch s = {};
  s.ringRows = y.taps + kBatchRows;
  long long at = 0;
  const auto take = [&at](long long bytes) {
    const long long start = at;
    at += RoundUp(bytes);
    return start;
  };
  for (int k = 0; k < ComponentCount(layout); ++k) {
    const AxisTaps& taps = layout == RowLayout::kPairs422 && k > 0 ? x.chroma : x.luma;
    s.lineBytes[k] = 2 * (RoundUp(SpannedSamples(taps)) + kBlock);
    s.ringBytes[k] = 2 * RoundUp(taps.count);
    s.line[k] = take(s.lineBytes[k] * kBatchRows);
    s.ring[k] = take(s.ringBytes[k] * s.ringRows);
    s.out[k] = take(RoundUp(taps.count));
  }
  // Byte indices and weights of each sample's tap pairs, and one int for every four samples.
  const auto columnBytes = [](const AxisTaps& taps) {
    return RoundUp(taps.count) * ((taps.taps + 1) / 2 * 8 + 1);
  };
  s.columns[0] = take(columnBytes(x.luma));
  s.columns[1] = layout == RowLayout::kPairs422 ? take(columnBytes(x.chroma)) : s.columns[0];
  s.total = at + kBlock;
  return s;
}

long long FilterScratchBytes(RowLayout layout, const FilterColumns& x, const AxisTaps& y) {
  return PlanFilterScratch(layout, x, y).total;
}

long long AreaScratchBytes(RowLayout layout, const AreaColumns& x, const AxisSpans&) {
  // Sums of a row of source bytes, 64 bits wide at the most, and their means; a reciprocal for each
  // destination sample.
  const long long pixels = 1ll + x.luma.span[x.luma.count - 1].last;
  long long bytes, reciprocals = x.luma.count;
  if (layout == RowLayout::kPairs422) {
    const long long pairs = 1ll + x.chroma.span[x.chroma.count - 1].last;
    bytes = 4 * (pairs > (pixels + 1) / 2 ? pairs : (pixels + 1) / 2);
    reciprocals += x.chroma.count;
  } else {
    bytes = pixels * Component(layout, 0).stride;
  }
  return bytes * (8 + 2) + reciprocals * 8 + 2 * kBlock;
}

}  // namespace qv
