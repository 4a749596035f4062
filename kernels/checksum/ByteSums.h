// Sums over the bytes of a vector, for Adler-32.
#ifndef QV_KERNELS_CHECKSUM_BYTESUMS_H
#define QV_KERNELS_CHECKSUM_BYTESUMS_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

// The sum of all 64-bit lanes.
QV_INLINE uint64_t Sum64(__m128i v) {
  v = _mm_add_epi64(v, _mm_unpackhi_epi64(v, v));
  uint64_t sum;
  _mm_storel_epi64(reinterpret_cast<__m128i*>(&sum), v);
  return sum;
}

#if defined(__AVX512BW__)

QV_INLINE uint64_t Sum64(Vec v) {
  const __m256i half = _mm256_add_epi64(_mm512_castsi512_si256(v), _mm512_extracti64x4_epi64(v, 1));
  return Sum64(_mm_add_epi64(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1)));
}

#elif defined(__AVX2__)

QV_INLINE uint64_t Sum64(Vec v) {
  return Sum64(_mm_add_epi64(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1)));
}

#endif

}  // namespace qv::QV_LEVEL

#endif
