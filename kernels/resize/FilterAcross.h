// Source rows filtered along x by vectors, in the order of values that PackSamples expects.
#ifndef QV_KERNELS_RESIZE_FILTERACROSS_H
#define QV_KERNELS_RESIZE_FILTERACROSS_H

#include "kernels/resize/ColumnWindows.h"
#include "kernels/resize/FilterWords.h"
#include "kernels/resize/ResizeVectors.h"

namespace qv::QV_LEVEL {

namespace {

// How rows are filtered along x: by windows of the first kind that all taps fit, or by words.
enum class Across { kWindow, kSecondWindow, kWords };

struct AcrossPlan {
  Across kind;
  int windowBytes;
  ColumnWindows windows;
  PaddedTaps luma, chroma;
  short *words, *line;
};

QV_INLINE WindowShape ShapeOf(Across kind) {
  const bool second = kind == Across::kSecondWindow;
  return {kVecBytes, kWindowsPerVector,
          kVecBytes / kWindowsPerVector * (second && kHasBytePermute ? 2 : 1),
          second && !kHasBytePermute};
}

QV_INLINE AcrossPlan PlanAcross(Layout layout, const FilterColumns& x,
                                const FilterScratch& scratch, Byte* base) {
  AcrossPlan plan = {};
  void* memory = base + scratch.columns;
  if constexpr (kHasByteShuffle) {
    static constexpr Across kKinds[] = {Across::kWindow, Across::kSecondWindow};
    for (const Across kind : kKinds) {
      plan.kind = kind;
      plan.windowBytes = ShapeOf(kind).windowBytes;
      if (PlanWindows(layout, x, ShapeOf(kind), scratch, memory, &plan.windows)) return plan;
    }
  }
  plan.kind = Across::kWords;
  plan.windowBytes = 0;
  const int stride = Component(layout, 0).stride;
  plan.luma = PadTaps(x.luma, scratch.first / stride, &memory);
  if (layout == Layout::kPairs422)
    plan.chroma = PadTaps(x.chroma, scratch.first / 4, &memory);
  plan.words = reinterpret_cast<short*>(base + scratch.words);
  plan.line = reinterpret_cast<short*>(base + scratch.line);
  return plan;
}

// Blocks first .. end - 1 of kRows rows at once, so that indices and weights are loaded once for
// all. The rows `ahead` bytes further, which are next, are fetched meanwhile.
template <int kPairs, int kRows, bool kSecond>
void FilterWindows(const Byte* const* lines, ptrdiff_t ahead, const ColumnWindows& windows,
                   ptrdiff_t first, ptrdiff_t end, short* const* out) {
  constexpr bool kWide = kSecond && kHasBytePermute, kOneAPair = kSecond && !kHasBytePermute;
  const int* base = windows.base + 2 * first * kWindowsPerVector * (kOneAPair ? kPairs : 1);
  const Byte* index = windows.index + 2 * first * kPairs * kVecBytes;
  const short* weights = windows.weights + first * kPairs * kVecBytes;
  const Byte* row[kRows];
  short* to[kRows];
  for (int r = 0; r < kRows; ++r) row[r] = lines[r], to[r] = out[r];
  for (ptrdiff_t b = first; b < end; ++b) {
    Vec sums[kRows][2];
    if (b % (64 / kVecBytes) == 0)  // 32 values come from about a cache line, or two
      for (int r = 0; r < kRows; ++r)
        for (int l = 0; l < (kWide ? 128 : 64); l += 64)
          __builtin_prefetch(row[r] + ahead + base[0] + l);
    for (int v = 0; v < 2; ++v) {
      for (int p = 0; p < kPairs; ++p) {
        const Vec spread = LoadOnce(index), w = LoadOnce(weights);
        for (int r = 0; r < kRows; ++r) {
          Vec pairs;
          if constexpr (kWide)
            pairs = SpreadWidePairs(row[r], base, spread);
          else
            pairs = SpreadPairs(row[r], base, spread);
          const Vec products = MulAddPairs16(pairs, w);
          sums[r][v] = p == 0 ? products : Add32(sums[r][v], products);
        }
        index += kVecBytes;
        weights += kVecBytes / 2;
        if constexpr (kOneAPair) base += kWindowsPerVector;
      }
      if constexpr (!kOneAPair) base += kWindowsPerVector;
    }
    for (int r = 0; r < kRows; ++r)
      Store(to[r] + b * (kVecBytes / 2),
            PackSigned32(ShiftRightSigned32<8>(sums[r][0]), ShiftRightSigned32<8>(sums[r][1])));
  }
}

template <int kPairs, bool kSecond>
QV_INLINE void FilterWindowRows(const Byte* const* lines, int rows, ptrdiff_t ahead,
                                const ColumnWindows& windows, ptrdiff_t first, ptrdiff_t end,
                                short* const* out) {
  if (rows == 2)
    FilterWindows<kPairs, 2, kSecond>(lines, ahead, windows, first, end, out);
  else
    FilterWindows<kPairs, 1, kSecond>(lines, ahead, windows, first, end, out);
}

template <bool kSecond>
void FilterByWindows(const Byte* const* lines, int rows, ptrdiff_t ahead,
                     const ColumnWindows& windows, ptrdiff_t first, ptrdiff_t end,
                     short* const* out) {
  switch (windows.pairs) {
    case 1: return FilterWindowRows<1, kSecond>(lines, rows, ahead, windows, first, end, out);
    case 2: return FilterWindowRows<2, kSecond>(lines, rows, ahead, windows, first, end, out);
    case 3: return FilterWindowRows<3, kSecond>(lines, rows, ahead, windows, first, end, out);
    case 4: return FilterWindowRows<4, kSecond>(lines, rows, ahead, windows, first, end, out);
    case 5: return FilterWindowRows<5, kSecond>(lines, rows, ahead, windows, first, end, out);
    default: return FilterWindowRows<6, kSecond>(lines, rows, ahead, windows, first, end, out);
  }
}

// `rows` source rows, 1 or 2, from the first byte that a tap names, to rows of the ring: values
// `from` to before `to`, where `from` is a multiple of 64. By words all values, whatever the range.
template <Layout kLayout>
void FilterAcross(const AcrossPlan& plan, const FilterColumns& x, const Byte* const* lines,
                  int rows, ptrdiff_t ahead, ptrdiff_t span, ptrdiff_t from, ptrdiff_t to,
                  short* const* out) {
  if constexpr (kHasByteShuffle) {
    constexpr ptrdiff_t kBlock = kVecBytes / 2;
    const ptrdiff_t first = from / kBlock, end = (to + kBlock - 1) / kBlock;
    if (plan.kind == Across::kWindow)
      return FilterByWindows<false>(lines, rows, ahead, plan.windows, first, end, out);
    if (plan.kind == Across::kSecondWindow)
      return FilterByWindows<true>(lines, rows, ahead, plan.windows, first, end, out);
  }
  constexpr bool kIsInPlace = kLayout == Layout::kGrey && !kHasBytePermute;
  for (int r = 0; r < rows; ++r) {
    short* line = kIsInPlace ? out[r] : plan.line;
    for (int k = 0; k < ComponentCount(kLayout); ++k) {
      const bool isChroma = kLayout == Layout::kPairs422 && k > 0;
      const RowComponent component = Component(kLayout, k);
      // Writes eight at a time: what passes the line's end is overwritten by the next line.
      FilterComponent(lines[r], component, span / component.stride,
                      isChroma ? plan.chroma : plan.luma, plan.words, line);
      line += isChroma ? x.chroma.count : x.luma.count;
    }
    if constexpr (!kIsInPlace)
      PlaceComponents<kLayout>(
          plan.line, kLayout == Layout::kPairs422 ? x.chroma.count : x.luma.count, out[r]);
  }
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
