#include "kernels/resize/ColumnWindows.h"

#include <stdint.h>
#include <string.h>

namespace qv {

namespace {

ptrdiff_t PaddedCount(const AxisTaps& taps) { return (ptrdiff_t{taps.count} + 63) / 64 * 64; }

}  // namespace

bool PlanWindows(const AxisTaps& taps, const WindowShape& shape, void* memory,
                 ColumnWindows* windows) {
  const int perVector = shape.vectorBytes / 4;
  const int perGroup = perVector / shape.windowsPerVector;
  const int perBlock = 2 * perVector;
  const ptrdiff_t padded = PaddedCount(taps);
  const int origin = taps.first[0];
  const int span = taps.first[taps.count - 1] + taps.taps - origin;
  const int lastBase = span > shape.windowBytes ? span - shape.windowBytes : 0;
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

  int* base = windows->base;
  for (ptrdiff_t block = 0; block < windows->blocks; ++block) {
    for (int v = 0; v < 2; ++v) {
      unsigned char* const index =
          windows->index + (2 * block + v) * pairs * shape.vectorBytes;
      short* const weights =
          windows->weights + (2 * block + v) * pairs * (shape.vectorBytes / 2);
      for (int w = 0; w < shape.windowsPerVector; ++w) {
        const ptrdiff_t group = block * perBlock + (2 * w + v) * perGroup;
        int start = group < taps.count ? taps.first[group] - origin : 0;
        if (start > lastBase) start = lastBase;
        *base++ = start;
        for (int s = 0; s < perGroup; ++s) {
          const ptrdiff_t i = group + s;
          const int lane = w * perGroup + s;
          for (int p = 0; p < pairs; ++p) {
            uint32_t bytes = 0x80008000;
            uint32_t pairWeights = 0;
            if (i < taps.count) {
              const uint32_t at =
                  static_cast<uint32_t>(taps.first[i] - origin - start) + 2 * p;
              const short* from = taps.weights + i * taps.taps + 2 * p;
              pairWeights = static_cast<uint16_t>(from[0]);
              bytes |= at;
              if (2 * p + 1 < taps.taps) {
                pairWeights |= static_cast<uint32_t>(static_cast<uint16_t>(from[1])) << 16;
                bytes |= (at + 1) << 16;
              }
            }
            memcpy(index + p * shape.vectorBytes + 4 * lane, &bytes, 4);
            memcpy(reinterpret_cast<unsigned char*>(weights) + p * shape.vectorBytes + 4 * lane,
                   &pairWeights, 4);
          }
        }
      }
    }
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
