// Scratch memory of the row kernels.
#include "kernels/resample/ResampleRows.h"

namespace qv {

unsigned long long LongScratchBytes(const LongTables& t) {
  const long long pixels = NamedBy(t.x.first, t.width, t.x.taps).count;
  return static_cast<unsigned long long>(2 * PaddedLine(t.channels * pixels) +
                                         PaddedLine(4ll * t.width));
}

unsigned long long WeightedScratchBytes(const WeightedTables& t) {
  const long long pixels = NamedBy(t.x.first, t.width, t.x.taps).count;
  return static_cast<unsigned long long>(
      16 * (kMostRows * PaddedLine(pixels) + PaddedLine(t.width) * (t.y.taps + kMostRows - 1)));
}

}  // namespace qv
