// 16-byte vectors: what the levels sse2 and ssse3 have in common.
#ifndef QV_KERNELS_LEVEL_VEC128_H
#define QV_KERNELS_LEVEL_VEC128_H

#define QV_HAS_VECTORS 1
#define QV_VEC_BITS 128
#define QV_OP(name) _mm_##name
#define QV_BITS_OP(name) _mm_##name##si128

namespace qv::QV_LEVEL {

using Vec = __m128i;
using Floats = __m128;
constexpr int kVecBytes = QV_VEC_BITS / 8;

constexpr bool kHasLanePermute = false;
constexpr bool kHasBytePermute = false;
constexpr bool kHasMaskedBytes = false;
constexpr bool kHasFusedMultiply = false;
constexpr bool kHasGather = false;

template <class Lane> QV_INLINE Vec BuildLanes(Lane lane) { return lane(0); }

template <class At> QV_INLINE void StoreLanes(Vec v, At at) {
  _mm_storeu_si128(reinterpret_cast<Vec*>(at(0)), v);
}

template <int> QV_INLINE Vec Lane(Vec v) { return v; }
QV_INLINE Vec FromLane(Vec v) { return v; }
QV_INLINE Vec FromLaneAlone(Vec v) { return v; }

QV_INLINE Vec Xor(Vec a, Vec b, Vec c) { return _mm_xor_si128(_mm_xor_si128(a, b), c); }

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) { return _mm_packus_epi16(a, b); }
QV_INLINE bool AnyNegative32(Vec v) { return _mm_movemask_ps(_mm_castsi128_ps(v)) != 0; }
template <int i0, int i1, int i2, int i3> QV_INLINE Vec ShuffleLanes32(Vec v) {
  return _mm_shuffle_epi32(v, i0 + 4 * i1 + 16 * i2 + 64 * i3);
}
QV_INLINE Vec HighHalves16(Vec even, Vec odd) {
  return _mm_or_si128(_mm_srli_epi32(even, 16),
                      _mm_and_si128(odd, _mm_set1_epi32(static_cast<int>(0xFFFF0000))));
}

QV_INLINE void StoreLimited32(void* p, Vec v) {
  v = _mm_packs_epi32(v, v);
  const int bits = _mm_cvtsi128_si32(_mm_packus_epi16(v, v));
  memcpy(p, &bits, sizeof bits);
}
QV_INLINE void StoreLowBytes32(void* p, Vec v) {
  StoreLimited32(p, _mm_and_si128(v, _mm_set1_epi32(255)));
}

QV_INLINE Vec DealHalves(Vec v) { return v; }
QV_INLINE Vec LowLaneTwice(Vec v) { return v; }
QV_INLINE Vec HighLaneTwice(Vec v) { return v; }
QV_INLINE void LanesInTurns(Vec&, Vec&, Vec&) {}

QV_INLINE Vec LoadHalves(const void* low, const void* high) {
  return _mm_unpacklo_epi64(_mm_loadl_epi64(static_cast<const Vec*>(low)),
                            _mm_loadl_epi64(static_cast<const Vec*>(high)));
}
QV_INLINE void StoreLowHalf(void* p, Vec v) { _mm_storel_epi64(static_cast<Vec*>(p), v); }
QV_INLINE Vec LoadBytesAs16(const void* p) {
  return _mm_unpacklo_epi8(_mm_loadl_epi64(static_cast<const Vec*>(p)), _mm_setzero_si128());
}
QV_INLINE Vec LoadBytesAs32(const void* p) {
  int bits;
  memcpy(&bits, p, sizeof bits);
  const Vec words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(bits), _mm_setzero_si128());
  return _mm_unpacklo_epi16(words, _mm_setzero_si128());
}
QV_INLINE Vec LoadSplat128(const void* p) { return _mm_loadu_si128(static_cast<const Vec*>(p)); }

}  // namespace qv::QV_LEVEL

#endif
