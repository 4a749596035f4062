// 64-byte vectors of a processor with AVX-512 F, BW, VL, DQ and VBMI.
#ifndef QV_KERNELS_LEVEL_AVX512_H
#define QV_KERNELS_LEVEL_AVX512_H

#include <immintrin.h>

#define QV_HAS_VECTORS 1
#define QV_VEC_BITS 512
#define QV_OP(name) _mm512_##name
#define QV_BITS_OP(name) _mm512_##name##si512

namespace qv::QV_LEVEL {

using Vec = __m512i;
using Floats = __m512;
constexpr int kVecBytes = QV_VEC_BITS / 8;

constexpr bool kHasByteShuffle = true;
constexpr bool kHasLanePermute = true;
constexpr bool kHasBytePermute = true;
constexpr bool kHasMaskedBytes = true;
constexpr bool kHasFusedMultiply = true;
constexpr bool kHasGather = true;

}  // namespace qv::QV_LEVEL

#include "kernels/level/X86.h"

namespace qv::QV_LEVEL {

template <class Lane> QV_INLINE Vec BuildLanes(Lane lane) {
  const __m256i low = _mm256_inserti128_si256(_mm256_castsi128_si256(lane(0)), lane(1), 1);
  const __m256i high = _mm256_inserti128_si256(_mm256_castsi128_si256(lane(2)), lane(3), 1);
  return _mm512_inserti64x4(_mm512_zextsi256_si512(low), high, 1);
}

template <int lane> QV_INLINE __m128i Lane(Vec v) {
  return lane == 0 ? _mm512_castsi512_si128(v) : _mm512_extracti32x4_epi32(v, lane);
}
QV_INLINE Vec FromLane(__m128i v) { return _mm512_castsi128_si512(v); }
QV_INLINE Vec FromLaneAlone(__m128i v) { return _mm512_zextsi128_si512(v); }
template <int n> QV_INLINE Vec ShiftBytesUp(Vec v) { return _mm512_bslli_epi128(v, n); }
template <int n> QV_INLINE Vec ShiftBytesDown(Vec v) { return _mm512_bsrli_epi128(v, n); }

QV_INLINE Vec PermuteLanes32(Vec v, Vec index) { return _mm512_permutexvar_epi32(index, v); }

QV_INLINE Vec Gather32(const void* base, Vec offset) {
  return _mm512_i32gather_epi32(offset, base, 1);
}
template <int kHalf> QV_INLINE Vec Gather64(const void* base, Vec offset) {
  const Vec order = _mm512_setr_epi32(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
  const Vec sorted = PermuteLanes32(offset, order);
  return _mm512_i32gather_epi64(_mm512_extracti64x4_epi64(sorted, kHalf), base, 1);
}

QV_INLINE Vec PermuteBytes(Vec v, Vec index) { return _mm512_permutexvar_epi8(index, v); }
QV_INLINE Vec PermuteBytes2(Vec low, Vec index, Vec high) {
  return _mm512_permutex2var_epi8(low, index, high);
}
QV_INLINE Vec PermuteBytesPart(unsigned long long mask, Vec v, Vec index) {
  return _mm512_maskz_permutexvar_epi8(mask, index, v);
}
QV_INLINE Vec PermuteBytesPart2(unsigned long long mask, Vec low, Vec index, Vec high) {
  return _mm512_maskz_permutex2var_epi8(mask, low, index, high);
}
QV_INLINE Vec PermuteBytesOver(Vec base, unsigned long long mask, Vec v, Vec index) {
  return _mm512_mask_permutexvar_epi8(base, mask, index, v);
}

QV_INLINE Vec JoinEvenLanes(Vec a, Vec b) { return _mm512_shuffle_i32x4(a, b, 0x88); }
QV_INLINE Vec JoinOddLanes(Vec a, Vec b) { return _mm512_shuffle_i32x4(a, b, 0xDD); }
QV_INLINE Vec JoinLowHalves(Vec a, Vec b) { return _mm512_shuffle_i32x4(a, b, 0x44); }
QV_INLINE Vec JoinHighHalves(Vec a, Vec b) { return _mm512_shuffle_i32x4(a, b, 0xEE); }

QV_INLINE Vec LoadPart(const void* p, unsigned long long mask) {
  return _mm512_maskz_loadu_epi8(mask, p);
}
QV_INLINE void StorePart(void* p, Vec v, unsigned long long mask) {
  _mm512_mask_storeu_epi8(p, mask, v);
}

QV_INLINE Vec Select(unsigned long long mask, Vec a, Vec b) {
  return _mm512_mask_blend_epi8(mask, b, a);
}
QV_INLINE unsigned long long TopBits(Vec v) { return _mm512_movepi8_mask(v); }

QV_INLINE Vec Xor(Vec a, Vec b, Vec c) { return _mm512_ternarylogic_epi64(a, b, c, 0x96); }

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) {
  return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7),
                                  PackUnsigned16(a, b));
}
QV_INLINE bool AnyNegative32(Vec v) { return _mm512_movepi32_mask(v) != 0; }
QV_INLINE bool AnyBits(Vec v) { return _mm512_test_epi32_mask(v, v) != 0; }
template <int i0, int i1, int i2, int i3> QV_INLINE Vec ShuffleLanes32(Vec v) {
  return _mm512_shuffle_epi32(v, static_cast<_MM_PERM_ENUM>(i0 + 4 * i1 + 16 * i2 + 64 * i3));
}
QV_INLINE Vec HighHalves16(Vec even, Vec odd) {
  const Vec down = _mm512_broadcast_i32x4(
      _mm_setr_epi8(2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15));
  return _mm512_mask_shuffle_epi8(odd, 0x3333333333333333u, even, down);
}

QV_INLINE void StoreLowBytes32(void* p, Vec v) {
  Store128(p, _mm512_cvtepi32_epi8(v));
}
QV_INLINE void StoreLimited32(void* p, Vec v) {
  Store128(p, _mm512_cvtusepi32_epi8(Max32(v, Zero())));
}

QV_INLINE Vec DealHalves(Vec v) {
  return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), v);
}

QV_INLINE Vec ReverseBytes(Vec v) {
  const Vec index = _mm512_set_epi8(
      0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24,
      25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47,
      48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63);
  return _mm512_permutexvar_epi8(index, v);
}

QV_INLINE Vec LoadHalves(const void* low, const void* high) {
  return _mm512_inserti64x4(
      _mm512_castsi256_si512(_mm256_loadu_si256(static_cast<const __m256i*>(low))),
      _mm256_loadu_si256(static_cast<const __m256i*>(high)), 1);
}
QV_INLINE void StoreLowHalf(void* p, Vec v) {
  _mm256_storeu_si256(static_cast<__m256i*>(p), _mm512_castsi512_si256(v));
}
QV_INLINE void StreamStoreLowHalf(void* p, Vec v) {
  _mm256_stream_si256(static_cast<__m256i*>(p), _mm512_castsi512_si256(v));
}
QV_INLINE Vec LoadBytesAs16(const void* p) {
  return _mm512_cvtepu8_epi16(_mm256_loadu_si256(static_cast<const __m256i*>(p)));
}
QV_INLINE Vec LoadBytesAs32(const void* p) {
  return _mm512_cvtepu8_epi32(Load128(p));
}
QV_INLINE Vec LoadSplat128(const void* p) {
  return _mm512_broadcast_i32x4(Load128(p));
}

QV_INLINE Floats FusedMulAdd(Floats a, Floats b, Floats c) { return _mm512_fmadd_ps(a, b, c); }
QV_INLINE Floats FusedNegMulAdd(Floats a, Floats b, Floats c) {
  return _mm512_fnmadd_ps(a, b, c);
}

}  // namespace qv::QV_LEVEL

#endif
