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

// The shuffle that JoinTwelves wants for vector i: byte k of its twelve comes from byte from(k).
template <class From>
constexpr ByteTable MakeTwelve(int i, From from) {
  return MakeByteTable([=](int j) {
    const int k = (j + 16 - kTwelveAt[i]) % 16;
    return k < 12 ? from(k) : 0x80;
  });
}

// Covers a row of three-byte pixels with lanes of 16, from its end down if `down`; false, with
// nothing stored, if it has fewer. twelve(i, x, apart) is what JoinTwelves wants for vector i:
// pixels 4 i to 4 i + 3 of those from x on in the first lane, of those from x + apart on in the
// second. For levels of one or two lanes.
template <bool down, class Twelve>
QV_INLINE bool CoverWithLanes(Byte* dst, ptrdiff_t width, bool stream, Twelve twelve) {
  const auto lanes = [=](ptrdiff_t x, ptrdiff_t apart, Vec& a, Vec& b, Vec& c) {
    a = twelve(0, x, apart);
    b = twelve(1, x, apart);
    c = twelve(2, x, apart);
    JoinTwelves(a, b, c, twelve(3, x, apart));
  };
  const auto block = [=](ptrdiff_t done, auto store) {
    const ptrdiff_t x = down ? width - kVecBytes - done : done;
    Vec a, b, c;
    lanes(x, 16, a, b, c);
    LanesInTurns(a, b, c);
    store(dst + 3 * x, a);
    store(dst + 3 * x + kVecBytes, b);
    store(dst + 3 * x + 2 * kVecBytes, c);
  };
  const ptrdiff_t second =
      down ? kVecBytes + 1 - PixelsToAlign3(dst + 3 * (width - 1)) : PixelsToAlign3(dst);
  if (CoverWithBlocks<kVecBytes>(width, stream, block, second)) return true;
  if (width < 16) return false;
  const ptrdiff_t apart = width - 16;  // two lanes that overlap
  Vec a, b, c;
  lanes(0, apart, a, b, c);
  StoreLanes(a, [=](int lane) { return dst + 3 * apart * lane; });
  StoreLanes(b, [=](int lane) { return dst + 16 + 3 * apart * lane; });
  StoreLanes(c, [=](int lane) { return dst + 32 + 3 * apart * lane; });
  return true;
}

}  // namespace qv::QV_LEVEL

#endif
