// 32-byte vectors of an AVX2 processor.
#ifndef QV_KERNELS_LEVEL_AVX2_H
#define QV_KERNELS_LEVEL_AVX2_H

#include <immintrin.h>

#define QV_HAS_VECTORS 1
#define QV_VEC_BITS 256
#define QV_OP(name) _mm256_##name
#define QV_BITS_OP(name) _mm256_##name##si256

namespace qv::QV_LEVEL {

using Vec = __m256i;
using Floats = __m256;
constexpr int kVecBytes = QV_VEC_BITS / 8;

constexpr bool kHasByteShuffle = true;
constexpr bool kHasLanePermute = true;
constexpr bool kHasBytePermute = false;
constexpr bool kHasMaskedBytes = false;
constexpr bool kHasFusedMultiply = false;
constexpr bool kHasGather = true;

}  // namespace qv::QV_LEVEL

#include "kernels/level/X86.h"

namespace qv::QV_LEVEL {

template <class Lane> QV_INLINE Vec BuildLanes(Lane lane) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(lane(0)), lane(1), 1);
}

template <int lane> __m128i Lane(Vec v);
template <> QV_INLINE __m128i Lane<0>(Vec v) { return _mm256_castsi256_si128(v); }
template <> QV_INLINE __m128i Lane<1>(Vec v) { return _mm256_extracti128_si256(v, 1); }
QV_INLINE Vec FromLane(__m128i v) { return _mm256_castsi128_si256(v); }
QV_INLINE Vec FromLaneAlone(__m128i v) { return _mm256_zextsi128_si256(v); }
template <int n> QV_INLINE Vec ShiftBytesUp(Vec v) { return _mm256_bslli_epi128(v, n); }
template <int n> QV_INLINE Vec ShiftBytesDown(Vec v) { return _mm256_bsrli_epi128(v, n); }

QV_INLINE Vec PermuteLanes32(Vec v, Vec index) { return _mm256_permutevar8x32_epi32(v, index); }

QV_INLINE Vec Gather32(const void* base, Vec offset) {
  return _mm256_i32gather_epi32(static_cast<const int*>(base), offset, 1);
}
template <int kHalf> QV_INLINE Vec Gather64(const void* base, Vec offset) {
  const Vec sorted = PermuteLanes32(offset, _mm256_setr_epi32(0, 1, 4, 5, 2, 3, 6, 7));
  return _mm256_i32gather_epi64(static_cast<const long long*>(base),
                                Lane<kHalf>(sorted), 1);
}

QV_INLINE Vec ReverseBytes(Vec v) {
  const Vec index = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
  return _mm256_permute4x64_epi64(ShuffleBytes(v, index), _MM_SHUFFLE(1, 0, 3, 2));
}

QV_INLINE Vec Xor(Vec a, Vec b, Vec c) { return Xor(Xor(a, b), c); }

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) {
  return _mm256_permute4x64_epi64(PackUnsigned16(a, b), 0xD8);
}
QV_INLINE bool AnyNegative32(Vec v) { return _mm256_movemask_ps(_mm256_castsi256_ps(v)) != 0; }
QV_INLINE bool AnyBits(Vec v) { return !_mm256_testz_si256(v, v); }
template <int i0, int i1, int i2, int i3> QV_INLINE Vec ShuffleLanes32(Vec v) {
  return _mm256_shuffle_epi32(v, i0 + 4 * i1 + 16 * i2 + 64 * i3);
}
QV_INLINE Vec HighHalves16(Vec even, Vec odd) {
  return _mm256_blend_epi16(ShiftRight32<16>(even), odd, 0xAA);
}

QV_INLINE void StoreLowBytes32(void* p, Vec v) {
  const Vec index = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
  const Vec low = ShuffleBytes(v, index);
  Store64(p, InterleaveLow32(Lane<0>(low), Lane<1>(low)));
}
QV_INLINE void StoreLimited32(void* p, Vec v) {
  v = PackUnsigned16(PackSigned32(v, v), v);
  Store64(p, Lane<0>(PermuteLanes32(v, _mm256_setr_epi32(0, 4, 0, 0, 0, 0, 0, 0))));
}

QV_INLINE Vec DealHalves(Vec v) { return _mm256_permute4x64_epi64(v, 0xD8); }
QV_INLINE Vec LowLaneTwice(Vec v) { return _mm256_permute4x64_epi64(v, 0x44); }
QV_INLINE Vec HighLaneTwice(Vec v) { return _mm256_permute4x64_epi64(v, 0xEE); }
QV_INLINE Vec JoinEvenLanes(Vec a, Vec b) { return _mm256_permute2x128_si256(a, b, 0x20); }
QV_INLINE Vec JoinOddLanes(Vec a, Vec b) { return _mm256_permute2x128_si256(a, b, 0x31); }
QV_INLINE void LanesInTurns(Vec& a, Vec& b, Vec& c) {
  const Vec first = _mm256_permute2x128_si256(a, b, 0x20);
  const Vec second = _mm256_blend_epi32(c, a, 0xF0);
  c = _mm256_permute2x128_si256(b, c, 0x31);
  a = first;
  b = second;
}

QV_INLINE void JoinTwelves(Vec& a, Vec& b, Vec& c, Vec d) {
  a = _mm256_blend_epi32(a, b, 0x88);
  b = _mm256_blend_epi32(b, c, 0xCC);
  c = _mm256_blend_epi32(c, d, 0xEE);
}

QV_INLINE Vec LoadHalves(const void* low, const void* high) {
  return _mm256_loadu2_m128i(static_cast<const __m128i*>(high), static_cast<const __m128i*>(low));
}
QV_INLINE void StoreLowHalf(void* p, Vec v) {
  Store128(p, Lane<0>(v));
}
QV_INLINE void StreamStoreLowHalf(void* p, Vec v) {
  _mm_stream_si128(static_cast<__m128i*>(p), Lane<0>(v));
}
QV_INLINE Vec LoadBytesAs16(const void* p) {
  return _mm256_cvtepu8_epi16(Load128(p));
}
QV_INLINE Vec LoadBytesAs32(const void* p) {
  return _mm256_cvtepu8_epi32(Load64(p));
}
QV_INLINE Vec LoadSplat128(const void* p) {
  return _mm256_broadcastsi128_si256(Load128(p));
}

}  // namespace qv::QV_LEVEL

#endif
