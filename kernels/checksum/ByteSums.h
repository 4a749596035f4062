// Sums over the bytes of a vector, for Adler-32.
#ifndef QV_KERNELS_CHECKSUM_BYTESUMS_H
#define QV_KERNELS_CHECKSUM_BYTESUMS_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

// Products of bytes came into the instruction set together with the byte shuffle.
constexpr bool kHasByteProducts = kHasByteShuffle;

// SumOctets: in each 64-bit lane the sum of its eight bytes.
// MulAddBytes: in each 16-bit lane a[0] * b[0] + a[1] * b[1] of its two bytes, unsigned times
//   signed, saturated.
// MulEven32: in each 64-bit lane the product of its low 32 bits.
// Sum64: the sum of all 64-bit lanes.

QV_INLINE uint64_t Sum64(__m128i v) {
  v = _mm_add_epi64(v, _mm_unpackhi_epi64(v, v));
  uint64_t sum;
  _mm_storel_epi64(reinterpret_cast<__m128i*>(&sum), v);
  return sum;
}

#if defined(__AVX512BW__)

QV_INLINE Vec SumOctets(Vec v) { return _mm512_sad_epu8(v, Zero()); }
QV_INLINE Vec MulAddBytes(Vec a, Vec b) { return _mm512_maddubs_epi16(a, b); }
QV_INLINE Vec MulEven32(Vec a, Vec b) { return _mm512_mul_epu32(a, b); }
QV_INLINE Vec Add64(Vec a, Vec b) { return _mm512_add_epi64(a, b); }
template <int n> QV_INLINE Vec ShiftLeft64(Vec v) { return _mm512_slli_epi64(v, n); }
template <int n> QV_INLINE Vec ShiftRight64(Vec v) { return _mm512_srli_epi64(v, n); }
QV_INLINE uint64_t Sum64(Vec v) {
  const __m256i half = _mm256_add_epi64(_mm512_castsi512_si256(v), _mm512_extracti64x4_epi64(v, 1));
  return Sum64(_mm_add_epi64(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1)));
}

#elif defined(__AVX2__)

QV_INLINE Vec SumOctets(Vec v) { return _mm256_sad_epu8(v, Zero()); }
QV_INLINE Vec MulAddBytes(Vec a, Vec b) { return _mm256_maddubs_epi16(a, b); }
QV_INLINE Vec MulEven32(Vec a, Vec b) { return _mm256_mul_epu32(a, b); }
QV_INLINE Vec Add64(Vec a, Vec b) { return _mm256_add_epi64(a, b); }
template <int n> QV_INLINE Vec ShiftLeft64(Vec v) { return _mm256_slli_epi64(v, n); }
template <int n> QV_INLINE Vec ShiftRight64(Vec v) { return _mm256_srli_epi64(v, n); }
QV_INLINE uint64_t Sum64(Vec v) {
  return Sum64(_mm_add_epi64(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1)));
}

#else

QV_INLINE Vec SumOctets(Vec v) { return _mm_sad_epu8(v, Zero()); }
#if defined(__SSSE3__)
QV_INLINE Vec MulAddBytes(Vec a, Vec b) { return _mm_maddubs_epi16(a, b); }
#else
Vec MulAddBytes(Vec a, Vec b);
#endif
QV_INLINE Vec MulEven32(Vec a, Vec b) { return _mm_mul_epu32(a, b); }
QV_INLINE Vec Add64(Vec a, Vec b) { return _mm_add_epi64(a, b); }
template <int n> QV_INLINE Vec ShiftLeft64(Vec v) { return _mm_slli_epi64(v, n); }
template <int n> QV_INLINE Vec ShiftRight64(Vec v) { return _mm_srli_epi64(v, n); }

#endif

}  // namespace qv::QV_LEVEL

#endif
