#include "kernels/resize/ColumnWindows.h"

#include <stdint.h>
#include <string.h>

namespace qv {

namespace {

// Where the taps of a component's values are, from the first one: those of pair q in bits 0 .. 15
// and 16 .. 31. Taps that an odd count or a short region leaves open repeat the last one; their
// weight is 0.
struct PairOffsets {
  uint32_t pair[kMaxTaps / 2];

  PairOffsets(int taps, int stride) {
    for (int q = 0; q < kMaxTaps / 2; ++q)
      pair[q] = At(2 * q, taps, stride) | At(2 * q + 1, taps, stride) << 16;
  }
  int Low(int q) const { return static_cast<int>(pair[q] & 0xFFFF); }
  int High(int q) const { return static_cast<int>(pair[q] >> 16); }

 private:
  static uint32_t At(int tap, int taps, int stride) {
    return static_cast<uint32_t>((tap < taps ? tap : taps - 1) * stride);
  }
};

// The first tap of each value, in bytes from the first that is named; past the end of the last one.
template <Layout kLayout>
void FillStarts(const FilterColumns& x, long long first, ptrdiff_t padded, int* start) {
  const ptrdiff_t count = ValueCount<kLayout>(x);
  for (ptrdiff_t k = 0; k < count; ++k)
    start[k] = static_cast<int>(TapsOfValue<kLayout>(x, k).at - first);
  for (ptrdiff_t k = count; k < padded; ++k) start[k] = start[count - 1];
}

// The lowest and the highest byte that the taps of pairs p .. last of a group touch.
struct Reach {
  int low, high;
};

template <Layout kLayout>
Reach ReachOf(const int* start, int count, const PairOffsets* offsets, int p, int last) {
  constexpr int kComponents = kLayout == Layout::kPairs422 ? 2 : 1;
  Reach reach = {INT32_MAX, 0};
  for (int c = 0; c < kComponents; ++c) {
    int low = start[c], high = start[c];
    for (int s = c; s < count; s += kComponents) {
      low = start[s] < low ? start[s] : low;
      high = start[s] > high ? start[s] : high;
    }
    low += offsets[c].Low(p);
    high += offsets[c].High(last);
    reach.low = low < reach.low ? low : reach.low;
    reach.high = high > reach.high ? high : reach.high;
  }
  return reach;
}

template <Layout kLayout, int kPairs, bool kOneAPair>
bool FillWindows(const FilterColumns& x, const WindowShape& shape, const int* start,
                 ptrdiff_t padded, int lastBase, const ColumnWindows& windows) {
  constexpr bool kPairs422 = kLayout == Layout::kPairs422;
  static constexpr short kNone[kMaxTaps] = {};
  const int perBlock = shape.vectorBytes / 2;
  const int perGroup = perBlock / 2 / shape.windowsPerVector;
  const ptrdiff_t count = ValueCount<kLayout>(x);
  const PairOffsets offsets[2] = {{x.luma.taps, Component(kLayout, 0).stride}, {x.chroma.taps, 4}};
  int* base = windows.base;
  unsigned char* index = windows.index;
  auto* weights = reinterpret_cast<unsigned char*>(windows.weights);
  const auto fill = [&](ptrdiff_t group, ptrdiff_t at, int p, int last) {
    const Reach reach = ReachOf<kLayout>(start + group, perGroup, offsets, p, last);
    const int low = reach.low < lastBase ? reach.low : lastBase;
    *base++ = low;
    for (int s = 0; s < perGroup; ++s, at += 4) {
      const ptrdiff_t k = group + s;
      const bool isChroma = kPairs422 && s % 2;
      const int taps = isChroma ? x.chroma.taps : x.luma.taps;
      const short* const from = k < count ? TapsOfValue<kLayout>(x, k).weights : kNone;
      const auto ahead = static_cast<uint32_t>(start[k] - low) * 0x10001u + 0x80008000u;
      for (int q = p; q <= last; ++q) {
        const uint32_t bytes = ahead + offsets[isChroma].pair[q];
        uint32_t pair = 0;
        if (2 * q + 1 < taps) memcpy(&pair, from + 2 * q, 4);
        else if (2 * q < taps) memcpy(&pair, from + 2 * q, 2);
        memcpy(index + at + q * shape.vectorBytes, &bytes, 4);
        memcpy(weights + at + q * shape.vectorBytes, &pair, 4);
      }
    }
    return reach.high - low < shape.windowBytes;
  };
  for (ptrdiff_t block = 0; block < padded; block += perBlock)
    for (int v = 0; v < 2; ++v) {
      for (int p = 0; p < (kOneAPair ? kPairs : 1); ++p)
        for (int w = 0; w < shape.windowsPerVector; ++w)
          if (!fill(block + (2 * w + v) * perGroup, 4 * w * perGroup, p,
                    kOneAPair ? p : kPairs - 1))
            return false;
      index += kPairs * shape.vectorBytes;
      weights += kPairs * shape.vectorBytes;
    }
  return true;
}

template <Layout kLayout, int kPairs>
bool FillWindows(const FilterColumns& x, const WindowShape& shape, const int* start,
                 ptrdiff_t padded, int lastBase, const ColumnWindows& windows) {
  const auto fill =
      shape.oneAPair ? FillWindows<kLayout, kPairs, true> : FillWindows<kLayout, kPairs, false>;
  return fill(x, shape, start, padded, lastBase, windows);
}

template <Layout kLayout>
bool PlanWindowsOf(const FilterColumns& x, const WindowShape& shape, const FilterScratch& scratch,
                   void* memory, ColumnWindows* windows) {
  const ptrdiff_t padded = (ValueCount<kLayout>(x) + 63) / 64 * 64;
  const bool chroma = kLayout == Layout::kPairs422 && x.chroma.taps > x.luma.taps;
  windows->pairs = ((chroma ? x.chroma.taps : x.luma.taps) + 1) / 2;
  windows->index = static_cast<unsigned char*>(memory);
  windows->weights = reinterpret_cast<short*>(windows->index + padded * 4 * windows->pairs);
  windows->base = reinterpret_cast<int*>(windows->index + padded * 8 * windows->pairs);
  int* const start = windows->base + padded / 4 * windows->pairs;
  FillStarts<kLayout>(x, scratch.first, padded, start);
  const auto lastBase = static_cast<int>(
      scratch.span > shape.windowBytes ? scratch.span - shape.windowBytes : 0);
  const auto fill = windows->pairs == 1   ? FillWindows<kLayout, 1>
                    : windows->pairs == 2 ? FillWindows<kLayout, 2>
                    : windows->pairs == 3 ? FillWindows<kLayout, 3>
                    : windows->pairs == 4 ? FillWindows<kLayout, 4>
                    : windows->pairs == 5 ? FillWindows<kLayout, 5>
                                          : FillWindows<kLayout, 6>;
  return fill(x, shape, start, padded, lastBase, *windows);
}

}  // namespace

bool PlanWindows(Layout layout, const FilterColumns& x, const WindowShape& shape,
                 const FilterScratch& scratch, void* memory, ColumnWindows* windows) {
  if (scratch.span > INT32_MAX) return false;
  switch (layout) {
    case Layout::kGrey:
      return PlanWindowsOf<Layout::kGrey>(x, shape, scratch, memory, windows);
    case Layout::kPairs:
      return PlanWindowsOf<Layout::kPairs>(x, shape, scratch, memory, windows);
    case Layout::kQuads:
      return PlanWindowsOf<Layout::kQuads>(x, shape, scratch, memory, windows);
    case Layout::kTriples:
      return PlanWindowsOf<Layout::kTriples>(x, shape, scratch, memory, windows);
    default: return PlanWindowsOf<Layout::kPairs422>(x, shape, scratch, memory, windows);
  }
}

PaddedTaps PadTaps(const AxisTaps& taps, long long first, void** memory) {
  PaddedTaps padded;
  padded.count = (ptrdiff_t{taps.count} + 7) / 8 * 8;
  padded.kept = taps.taps <= 4 ? 4 : taps.taps <= 8 ? 8 : 16;
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
