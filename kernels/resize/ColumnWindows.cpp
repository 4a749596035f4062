#include "kernels/resize/ColumnWindows.h"

#include <stdint.h>
#include <string.h>

namespace qv {

namespace {

ptrdiff_t PaddedCount(const AxisTaps& taps) { return (ptrdiff_t{taps.count} + 63) / 64 * 64; }

template <int kPairs, bool kEven>
void FillWindows(const AxisTaps& taps, const WindowShape& shape, const ColumnWindows& windows) {
  const int perBlock = shape.vectorBytes / 2;
  const int perGroup = perBlock / 2 / shape.windowsPerVector;
  const int origin = taps.first[0];
  const int span = taps.first[taps.count - 1] + taps.taps - origin;
  const int lastBase = span > shape.windowBytes ? span - shape.windowBytes : 0;
  constexpr int kTaps = kEven ? 2 * kPairs : 2 * kPairs - 1;
  int* base = windows.base;
  unsigned char* index = windows.index;
  unsigned char* weights = reinterpret_cast<unsigned char*>(windows.weights);
  for (ptrdiff_t block = 0; block < windows.blocks; ++block) {
    for (int v = 0; v < 2; ++v) {
      for (int w = 0; w < shape.windowsPerVector; ++w) {
        ptrdiff_t i = block * perBlock + (2 * w + v) * perGroup;
        int start = i < taps.count ? taps.first[i] - origin : 0;
        if (start > lastBase) start = lastBase;
        *base++ = start;
        for (int s = 0; s < perGroup; ++s, ++i) {
          const ptrdiff_t at = 4 * (w * perGroup + s);
          // The second byte of a pair that an odd count leaves open is any one: its weight is 0.
          uint32_t first = 0, pairWeights[kPairs] = {};
          if (i < taps.count) {
            first = static_cast<uint32_t>(taps.first[i] - origin - start);
            const short* const from = taps.weights + i * kTaps;
            memcpy(pairWeights, from, kTaps * sizeof(short));
          }
          for (int p = 0; p < kPairs; ++p) {
            const uint32_t second = first + 2 * p + (kEven || p < kPairs - 1);
            const uint32_t bytes = 0x80008000u | (first + 2 * p) | second << 16;
            memcpy(index + p * shape.vectorBytes + at, &bytes, 4);
            memcpy(weights + p * shape.vectorBytes + at, &pairWeights[p], 4);
          }
        }
      }
      index += kPairs * shape.vectorBytes;
      weights += kPairs * shape.vectorBytes;
    }
  }
}

}  // namespace

bool PlanWindows(const AxisTaps& taps, const WindowShape& shape, void* memory,
                 ColumnWindows* windows) {
  const int perBlock = shape.vectorBytes / 2;
  const int perGroup = perBlock / 2 / shape.windowsPerVector;
  const ptrdiff_t padded = PaddedCount(taps);
  for (ptrdiff_t i = 0; i < taps.count; i += perGroup) {
    const ptrdiff_t end = i + perGroup < taps.count ? i + perGroup : taps.count;
    if (taps.first[end - 1] + taps.taps - taps.first[i] > shape.windowBytes) return false;
  }

  const int pairs = (taps.taps + 1) / 2;
  windows->pairs = pairs;
  windows->blocks = padded / perBlock;
  windows->index = static_cast<unsigned char*>(memory);
  windows->weights = reinterpret_cast<short*>(windows->index + padded * 4 * pairs);
  windows->base = reinterpret_cast<int*>(windows->index + padded * 8 * pairs);

  switch (taps.taps) {
    case 1: FillWindows<1, false>(taps, shape, *windows); break;
    case 2: FillWindows<1, true>(taps, shape, *windows); break;
    case 3: FillWindows<2, false>(taps, shape, *windows); break;
    case 4: FillWindows<2, true>(taps, shape, *windows); break;
    case 5: FillWindows<3, false>(taps, shape, *windows); break;
    case 6: FillWindows<3, true>(taps, shape, *windows); break;
    case 7: FillWindows<4, false>(taps, shape, *windows); break;
    default: FillWindows<4, true>(taps, shape, *windows); break;
  }
  return true;
}

PaddedTaps PadTaps(const AxisTaps& taps, void* memory) {
  const ptrdiff_t count = PaddedCount(taps);
  PaddedTaps padded;
  padded.kept = taps.taps <= 4 ? 4 : 8;
  padded.weights = static_cast<short*>(memory);
  padded.first = reinterpret_cast<int*>(padded.weights + count * padded.kept);
  for (ptrdiff_t i = 0; i < count; ++i) {
    short* const to = padded.weights + i * padded.kept;
    const bool real = i < taps.count;
    padded.first[i] = real ? taps.first[i] - taps.first[0] : 0;
    for (int t = 0; t < padded.kept; ++t)
      to[t] = real && t < taps.taps ? taps.weights[i * taps.taps + t] : 0;
  }
  return padded;
}

}  // namespace qv
