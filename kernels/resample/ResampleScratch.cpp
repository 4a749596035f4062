// Scratch memory of the row kernels.
#include "kernels/resample/ResampleRows.h"

namespace qv {

namespace {

// Rows are whole blocks, with one more to read on into.
unsigned long long Padded(unsigned long long n) { return (n + 63) / 64 * 64 + 64; }

}  // namespace

// A row of values, the same by channels, and a destination row by channels.
unsigned long long LongScratchBytes(const LongTables& t) {
  const auto pixels =
      static_cast<unsigned long long>(NamedBy(t.x.first, t.width, t.x.taps).count);
  const auto channels = static_cast<unsigned long long>(t.channels);
  return 2 * Padded(channels * pixels) + channels * (2 * Padded(pixels) + Padded(t.width));
}

// A source row and the ring of filtered ones.
unsigned long long WeightedScratchBytes(const WeightedTables& t) {
  const auto pixels =
      static_cast<unsigned long long>(NamedBy(t.x.first, t.width, t.x.taps).count);
  return 16 * (Padded(pixels) + Padded(t.width) * static_cast<unsigned long long>(t.y.taps));
}

}  // namespace qv
