#include "kernels/resize/ColumnWindows.h"

#include <stdint.h>
#include <string.h>

namespace qv {

namespace {

// One layout's values, from the first byte that a tap names.
template <RowLayout kLayout>
struct Values {
  const FilterColumns& x;
  ptrdiff_t count;
  long long first;

  // Past the end the last value, without weights.
  ValueTaps operator[](ptrdiff_t k) const {
    ValueTaps v = TapsOfValue<kLayout>(x, k < count ? k : count - 1);
    if (k >= count) v.taps = 0;
    v.at -= static_cast<ptrdiff_t>(first);
    return v;
  }
};

// The window of taps begin .. end - 1 of a group; false if they do not fit.
template <RowLayout kLayout>
bool PlaceWindow(const Values<kLayout>& values, ptrdiff_t k, int count, int begin, int end,
                 int windowBytes, ptrdiff_t lastBase, int* base) {
  ptrdiff_t low = lastBase, high = 0;
  for (ptrdiff_t i = k; i < k + count; ++i) {
    const ValueTaps v = values[i];
    const int last = (end < v.taps ? end : v.taps) - 1;
    if (last < begin) continue;
    const ptrdiff_t from = v.at + begin * v.stride, to = v.at + last * v.stride;
    low = from < low ? from : low;
    high = to > high ? to : high;
  }
  *base = static_cast<int>(low);
  return high - low < windowBytes;
}

template <RowLayout kLayout>
bool FillWindows(const Values<kLayout>& values, const WindowShape& shape, ptrdiff_t padded,
                 ptrdiff_t lastBase, const ColumnWindows& windows) {
  const int perBlock = shape.vectorBytes / 2;
  const int perGroup = perBlock / 2 / shape.windowsPerVector;
  const int pairsAWindow = shape.oneAPair ? 1 : windows.pairs;
  int* base = windows.base;
  unsigned char* index = windows.index;
  auto* weights = reinterpret_cast<unsigned char*>(windows.weights);
  for (ptrdiff_t block = 0; block < padded; block += perBlock)
    for (int v = 0; v < 2; ++v) {
      for (int p = 0; p < windows.pairs; p += pairsAWindow)
        for (int w = 0; w < shape.windowsPerVector; ++w) {
          const ptrdiff_t k = block + (2 * w + v) * perGroup;
          if (!PlaceWindow(values, k, perGroup, 2 * p, 2 * (p + pairsAWindow), shape.windowBytes,
                           lastBase, base))
            return false;
          for (int s = 0; s < perGroup; ++s) {
            const ValueTaps value = values[k + s];
            for (int q = p; q < p + pairsAWindow; ++q) {
              const ptrdiff_t at = q * shape.vectorBytes + 4 * (w * perGroup + s);
              // A tap that the value lacks takes any byte: its weight is 0.
              unsigned char bytes[4] = {0, 0x80, 0, 0x80};
              short pair[2] = {};
              for (int side = 0; side < 2; ++side) {
                const int tap = 2 * q + side;
                if (tap >= value.taps) break;
                pair[side] = value.weights[tap];
                bytes[2 * side] =
                    static_cast<unsigned char>(value.at + tap * value.stride - *base);
              }
              memcpy(index + at, bytes, 4);
              memcpy(weights + at, pair, 4);
            }
          }
          ++base;
        }
      index += windows.pairs * shape.vectorBytes;
      weights += windows.pairs * shape.vectorBytes;
    }
  return true;
}

template <RowLayout kLayout>
bool PlanWindowsOf(const FilterColumns& x, const WindowShape& shape, const FilterScratch& scratch,
                   void* memory, ColumnWindows* windows) {
  const Values<kLayout> values = {x, ValueCount<kLayout>(x), scratch.first};
  const ptrdiff_t padded = (values.count + 63) / 64 * 64;
  const int most = kLayout == RowLayout::kPairs422 && x.chroma.taps > x.luma.taps ? x.chroma.taps
                                                                                  : x.luma.taps;
  windows->pairs = (most + 1) / 2;
  windows->index = static_cast<unsigned char*>(memory);
  windows->weights = reinterpret_cast<short*>(windows->index + padded * 4 * windows->pairs);
  windows->base = reinterpret_cast<int*>(windows->index + padded * 8 * windows->pairs);
  const ptrdiff_t lastBase =
      scratch.span > shape.windowBytes ? static_cast<ptrdiff_t>(scratch.span) - shape.windowBytes
                                       : 0;
  return FillWindows(values, shape, padded, lastBase, *windows);
}

}  // namespace

bool PlanWindows(RowLayout layout, const FilterColumns& x, const WindowShape& shape,
                 const FilterScratch& scratch, void* memory, ColumnWindows* windows) {
  if (scratch.span > INT32_MAX) return false;
  switch (layout) {
    case RowLayout::kGray:
      return PlanWindowsOf<RowLayout::kGray>(x, shape, scratch, memory, windows);
    case RowLayout::kTriples:
      return PlanWindowsOf<RowLayout::kTriples>(x, shape, scratch, memory, windows);
    default: return PlanWindowsOf<RowLayout::kPairs422>(x, shape, scratch, memory, windows);
  }
}

PaddedTaps PadTaps(const AxisTaps& taps, long long first, void** memory) {
  PaddedTaps padded;
  padded.count = (ptrdiff_t{taps.count} + 7) / 8 * 8;
  padded.kept = taps.taps <= 4 ? 4 : 8;
  padded.weights = static_cast<short*>(*memory);
  padded.first = reinterpret_cast<int*>(padded.weights + padded.count * padded.kept);
  *memory = padded.first + padded.count;
  for (ptrdiff_t i = 0; i < padded.count; ++i) {
    short* const to = padded.weights + i * padded.kept;
    const bool real = i < taps.count;
    padded.first[i] = real ? static_cast<int>(taps.first[i] - first) : 0;
    for (int t = 0; t < padded.kept; ++t)
      to[t] = real && t < taps.taps ? taps.weights[i * taps.taps + t] : 0;
  }
  return padded;
}

}  // namespace qv
