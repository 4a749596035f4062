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

constexpr bool kHasBytePermute = false;
constexpr bool kHasMaskedBytes = false;
constexpr bool kHasGather = false;

template <class Lane> QV_INLINE Vec BuildLanes(Lane lane) { return lane(0); }

template <class At> QV_INLINE void StoreLanes(Vec v, At at) {
  _mm_storeu_si128(reinterpret_cast<Vec*>(at(0)), v);
}

QV_INLINE Vec LowLane(Vec v) { return v; }
QV_INLINE Vec FromLane(Vec v) { return v; }

QV_INLINE Vec DealHalves(Vec v) { return v; }
QV_INLINE Vec LowLaneTwice(Vec v) { return v; }
QV_INLINE Vec HighLaneTwice(Vec v) { return v; }

}  // namespace qv::QV_LEVEL

#endif
