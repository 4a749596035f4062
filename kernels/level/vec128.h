// 16-byte vectors: what the levels sse2 and ssse3 have in common.
#ifndef QV_KERNELS_LEVEL_VEC128_H
#define QV_KERNELS_LEVEL_VEC128_H

#include <emmintrin.h>

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

}  // namespace qv::QV_LEVEL

#include "kernels/level/X86.h"

namespace qv::QV_LEVEL {

template <class Lane> QV_INLINE Vec BuildLanes(Lane lane) { return lane(0); }

template <int> QV_INLINE Vec Lane(Vec v) { return v; }
QV_INLINE Vec FromLane(Vec v) { return v; }
QV_INLINE Vec FromLaneAlone(Vec v) { return v; }

QV_INLINE Vec Xor(Vec a, Vec b, Vec c) { return Xor(Xor(a, b), c); }

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) { return PackUnsigned16(a, b); }
QV_INLINE bool AnyNegative32(Vec v) { return _mm_movemask_ps(_mm_castsi128_ps(v)) != 0; }
QV_INLINE bool AnyBits(Vec v) { return _mm_movemask_epi8(_mm_cmpeq_epi8(v, Zero())) != 0xFFFF; }
template <int i0, int i1, int i2, int i3> QV_INLINE Vec ShuffleLanes32(Vec v) {
  return _mm_shuffle_epi32(v, i0 + 4 * i1 + 16 * i2 + 64 * i3);
}
QV_INLINE Vec HighHalves16(Vec even, Vec odd) {
  return Or(ShiftRight32<16>(even), And(odd, Splat32(-0x10000)));
}

QV_INLINE void StoreLimited32(void* p, Vec v) {
  v = PackSigned32(v, v);
  Store32(p, PackUnsigned16(v, v));
}
QV_INLINE void StoreLowBytes32(void* p, Vec v) {
  StoreLimited32(p, And(v, Splat32(255)));
}

QV_INLINE Vec DealHalves(Vec v) { return v; }
QV_INLINE Vec LowLaneTwice(Vec v) { return v; }
QV_INLINE Vec HighLaneTwice(Vec v) { return v; }
QV_INLINE Vec JoinEvenLanes(Vec a, Vec) { return a; }
QV_INLINE Vec JoinOddLanes(Vec, Vec b) { return b; }
QV_INLINE void LanesInTurns(Vec&, Vec&, Vec&) {}

QV_INLINE void JoinTwelves(Vec& a, Vec& b, Vec& c, Vec d) {
  a = Select(_mm_setr_epi32(-1, -1, -1, 0), a, b);
  b = _mm_castpd_si128(_mm_move_sd(_mm_castsi128_pd(c), _mm_castsi128_pd(b)));
  c = _mm_castps_si128(_mm_move_ss(_mm_castsi128_ps(d), _mm_castsi128_ps(c)));
}

QV_INLINE Vec LoadHalves(const void* low, const void* high) {
  return InterleaveLow64(Load64(low), Load64(high));
}
QV_INLINE void StoreLowHalf(void* p, Vec v) { Store64(p, v); }
QV_INLINE void StreamStoreLowHalf(void* p, Vec v) { StoreLowHalf(p, v); }
QV_INLINE Vec LoadBytesAs16(const void* p) { return InterleaveLow8(Load64(p), Zero()); }
QV_INLINE Vec LoadBytesAs32(const void* p) {
  return InterleaveLow16(InterleaveLow8(Load32(p), Zero()), Zero());
}
QV_INLINE Vec LoadSplat128(const void* p) { return Load(p); }

}  // namespace qv::QV_LEVEL

#endif
