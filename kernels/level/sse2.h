// 16-byte vectors of an SSE2 processor.
#ifndef QV_KERNELS_LEVEL_SSE2_H
#define QV_KERNELS_LEVEL_SSE2_H

#include <emmintrin.h>

#include "kernels/level/vec128.h"

namespace qv::QV_LEVEL {

constexpr bool kHasByteShuffle = false;

QV_INLINE Vec ReverseBytes(Vec v) {
  v = _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
  v = _mm_shufflelo_epi16(v, _MM_SHUFFLE(0, 1, 2, 3));
  v = _mm_shufflehi_epi16(v, _MM_SHUFFLE(0, 1, 2, 3));
  return _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2));
}

}  // namespace qv::QV_LEVEL

#endif
