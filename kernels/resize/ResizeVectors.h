// What resizing needs of a level beyond the common vocabulary: windows of source bytes, and the
// order of filtered rows.
#ifndef QV_KERNELS_RESIZE_RESIZEVECTORS_H
#define QV_KERNELS_RESIZE_RESIZEVECTORS_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

#if QV_HAS_VECTORS

// A row of `bytes` bytes, shorter than the loads, to where it can be read by them. Where there are
// masked loads it is stored as it is loaded again, which the processor forwards.
QV_INLINE void CopyShortRow(const Byte* row, ptrdiff_t bytes, Byte* copy) {
  if constexpr (kHasMaskedBytes) {
    for (ptrdiff_t l = 0; l < bytes; l += kVecBytes)
      Store(copy + l, LoadPart(row + l, FirstOf64(bytes, l)));
  } else {
    memcpy(copy, row, static_cast<size_t>(bytes));
  }
}

// Where bytes can be permuted across a vector it has one window of source bytes; else each 128-bit
// lane has one of its own, and the windows are dealt out so that filtered rows are in order.
constexpr int kWindowsPerVector = kHasBytePermute ? 1 : kLanes128;

// The bytes that `index` picks from the windows that begin at line + base[0], ..., each followed by
// a 0: pairs of taps as 16-bit lanes.
constexpr unsigned long long kEvenBytes = 0x5555555555555555;
QV_INLINE Vec SpreadPairs(const Byte* line, const int* base, Vec index) {
  if constexpr (kHasBytePermute)
    return PermuteBytesPart(kEvenBytes, Load(line + base[0]), index);
  else
    return ShuffleBytes(LoadLanes([=](int i) { return line + base[i]; }), index);
}
// From a window of two vectors; only where there is a byte permutation.
QV_INLINE Vec SpreadWidePairs(const Byte* line, const int* base, Vec index) {
  const Byte* const window = line + base[0];
  return PermuteBytesPart2(kEvenBytes, Load(window), index, Load(window + kVecBytes));
}

// With one window a vector, filtered rows keep the order that PackSigned32 of samples 0 .. 15 and
// 16 .. 31 leaves: four of the first, four of the second, and so on. Where value k of a row is, and
// bytes from two such vectors in order of samples.
QV_INLINE ptrdiff_t RingPlace(ptrdiff_t k) {
  if constexpr (!kHasBytePermute) return k;
  return (k & ~ptrdiff_t{31}) + (k & 15) / 4 * 8 + (k & 16) / 4 + (k & 3);
}
QV_INLINE Vec PackSamples(Vec a, Vec b) {
  if constexpr (!kHasBytePermute) return PackBytesInOrder(a, b);
  static constexpr int kOrder[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
  return PermuteLanes32(PackUnsigned16(a, b), Load(kOrder));
}

#endif  // QV_HAS_VECTORS

}  // namespace qv::QV_LEVEL

#endif
