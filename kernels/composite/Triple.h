// One value a pixel to one a byte of three-byte pixels.
#ifndef QV_KERNELS_COMPOSITE_TRIPLE_H
#define QV_KERNELS_COMPOSITE_TRIPLE_H

namespace qv::QV_LEVEL {

struct Vec3 {
  Vec v[3];
};

// Byte i of all three results together is byte i / 3 of `a`.
#if defined(__SSSE3__)

// Where each byte of result j is found. A shuffle stays within 16-byte lanes: the index counts from the
// first byte of its lane.
constexpr ByteTable TripleIndex(int j) {
  ByteTable table{};
  for (int i = 0; i < kVecBytes; ++i) {
    const int from = (kVecBytes * j + i) / 3;
    table.b[i] = static_cast<Byte>(kHasBytePermute ? from : from % 16);
  }
  return table;
}

QV_INLINE Vec3 TripleBytes(Vec a) {
  static constexpr ByteTable kIndex[3] = {TripleIndex(0), TripleIndex(1), TripleIndex(2)};
  if constexpr (kHasBytePermute)
    return {{PermuteBytes(a, Load(kIndex[0].b)), PermuteBytes(a, Load(kIndex[1].b)),
             PermuteBytes(a, Load(kIndex[2].b))}};
  // On two lanes, the first result comes from the low one alone, the second from both in place, the
  // third from the high one.
  return {{ShuffleBytes(LowLaneTwice(a), Load(kIndex[0].b)), ShuffleBytes(a, Load(kIndex[1].b)),
           ShuffleBytes(HighLaneTwice(a), Load(kIndex[2].b))}};
}

#else

// Eight 16-bit lanes, each three times.
QV_INLINE Vec3 TripleWords(Vec w) {
  const Vec low = _mm_shuffle_epi32(w, 0x44), high = _mm_shuffle_epi32(w, 0xEE);
  return {{_mm_shufflehi_epi16(_mm_shufflelo_epi16(low, _MM_SHUFFLE(1, 0, 0, 0)),
                               _MM_SHUFFLE(2, 2, 1, 1)),
           _mm_shufflehi_epi16(_mm_shufflelo_epi16(w, _MM_SHUFFLE(3, 3, 3, 2)),
                               _MM_SHUFFLE(1, 0, 0, 0)),
           _mm_shufflehi_epi16(_mm_shufflelo_epi16(high, _MM_SHUFFLE(2, 2, 1, 1)),
                               _MM_SHUFFLE(3, 3, 3, 2))}};
}

QV_INLINE Vec3 TripleBytes(Vec a) {
  const Vec3 low = TripleWords(InterleaveLow8(a, Zero()));
  const Vec3 high = TripleWords(InterleaveHigh8(a, Zero()));
  return {{PackUnsigned16(low.v[0], low.v[1]), PackUnsigned16(low.v[2], high.v[0]),
           PackUnsigned16(high.v[1], high.v[2])}};
}

#endif

}  // namespace qv::QV_LEVEL

#endif
