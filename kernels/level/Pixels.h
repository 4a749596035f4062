// Pixels of three bytes made of groups of four.
#ifndef QV_KERNELS_LEVEL_PIXELS_H
#define QV_KERNELS_LEVEL_PIXELS_H

namespace qv::QV_LEVEL {

// The first three bytes of each group of four, without gaps, and then anything: across the vector
// where bytes can be permuted, else within each 128-bit lane. Not for levels without a shuffle.
QV_INLINE Vec PackTriples(Vec v) {
  constexpr int kReach = kHasBytePermute ? kVecBytes : 16;
  static constexpr auto kIndex = MakeByteTable(
      [](int i) { return i % kReach < kReach / 4 * 3 ? WithoutFourths(i % kReach) : 0x80; });
  if constexpr (kHasBytePermute) return PermuteBytes(v, Load(&kIndex));
  return ShuffleBytes(v, Load(&kIndex));
}

// Stores the first three bytes of each group of four, without gaps: exactly 3 * kVecBytes / 4 bytes
// are written.
QV_INLINE void StoreTriples(Byte* p, Vec v) {
  if constexpr (kHasBytePermute && kHasMaskedBytes) {
    StorePart(p, PackTriples(v), FirstOf64(kVecBytes / 4 * 3, 0));
  } else if constexpr (kHasByteShuffle && kHasLanePermute) {
    static constexpr int kOrder[] = {0, 1, 2, 4, 5, 6, 3, 7};
    static_assert(sizeof kOrder == kVecBytes || kHasMaskedBytes || !kHasLanePermute);
    const Vec packed = PermuteLanes32(PackTriples(v), Load(kOrder));
    Store128(p, LowLane(packed));
    Store64(p + 16, Lane<1>(packed));
  } else if constexpr (kHasByteShuffle) {
    const Vec128 packed = LowLane(PackTriples(v));
    Store64(p, packed);
    Store32(p + 8, ShiftBytesDown<8>(packed));
  } else {
    Byte bytes[kVecBytes];
    Store(bytes, v);
    for (int i = 0; i < kLanes32 - 1; ++i) memcpy(p + 3 * i, bytes + 4 * i, 4);
    memcpy(p + 3 * (kLanes32 - 1), bytes + kVecBytes - 4, 3);
  }
}

}  // namespace qv::QV_LEVEL

#endif
