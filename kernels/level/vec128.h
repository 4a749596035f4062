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
constexpr bool kHasGather = false;

template <class Lane> QV_INLINE Vec BuildLanes(Lane lane) { return lane(0); }

template <class At> QV_INLINE void StoreLanes(Vec v, At at) {
  _mm_storeu_si128(reinterpret_cast<Vec*>(at(0)), v);
}

template <int> QV_INLINE Vec Lane(Vec v) { return v; }
QV_INLINE Vec FromLane(Vec v) { return v; }

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) { return _mm_packus_epi16(a, b); }
QV_INLINE bool AnyNegative32(Vec v) { return _mm_movemask_ps(_mm_castsi128_ps(v)) != 0; }
template <int lane> QV_INLINE Vec SplatInLanes32(Vec v) {
  return _mm_shuffle_epi32(v, lane * 0x55);
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

}  // namespace qv::QV_LEVEL

#endif
