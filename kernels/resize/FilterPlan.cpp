// Scratch memory of the separable filter.
#include "kernels/resize/Filter.h"

namespace qv {

namespace {

// Rows of work memory are whole blocks of 64 samples; the widest window may reach past a short
// line by kReadAhead.
constexpr long long kBlock = 64;
constexpr long long kReadAhead = 128;

long long RoundUp(long long n) { return (n + kBlock - 1) / kBlock * kBlock; }

// Source samples that the taps span.
long long SpannedSamples(const AxisTaps& taps) {
  return static_cast<long long>(taps.first[taps.count - 1]) + taps.taps - taps.first[0];
}

}  // namespace

FilterScratch PlanFilterScratch(RowLayout layout, const FilterColumns& x, const AxisTaps& y) {
  FilterScratch s = {};
  s.ringRows = y.taps + kBatchRows;
  s.first = x.luma.first[0];
  s.count = SpannedSamples(x.luma);
  if (layout == RowLayout::kPairs422) {
    const long long lumaEnd = (s.first + s.count + 1) / 2;
    const long long chromaEnd = x.chroma.first[0] + SpannedSamples(x.chroma);
    s.first = s.first / 2 < x.chroma.first[0] ? s.first / 2 : x.chroma.first[0];
    s.count = (lumaEnd > chromaEnd ? lumaEnd : chromaEnd) - s.first;
  }
  long long at = 0;
  const auto take = [&at](long long bytes) {
    const long long start = at;
    at += RoundUp(bytes);
    return start;
  };
  for (int k = 0; k < ComponentCount(layout); ++k) {
    const bool pairs = layout == RowLayout::kPairs422;
    const int perUnit = pairs && k == 0 ? 2 : 1;
    s.lineBytes[k] = RoundUp(perUnit * s.count) + kReadAhead;
    s.line[k] = take(s.lineBytes[k] * kBatchRows);
    s.ringBytes[k] = 2 * perUnit * RoundUp(pairs ? x.chroma.count : x.luma.count);
    s.ring[k] = take(s.ringBytes[k] * s.ringRows);
  }
  s.words = take(2 * s.lineBytes[0]);
  // Byte indices and weights of each sample's tap pairs and an int for every four samples, or up to
  // four or eight weights and an int.
  const auto columnBytes = [](const AxisTaps& taps) {
    return RoundUp(taps.count) * ((taps.taps + 1) / 2 * 8 + 4);
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
