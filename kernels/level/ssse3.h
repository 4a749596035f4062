// 16-byte vectors of an SSSE3 processor.
#ifndef QV_KERNELS_LEVEL_SSSE3_H
#define QV_KERNELS_LEVEL_SSSE3_H

#include <tmmintrin.h>

#include "kernels/level/vec128.h"

namespace qv::QV_LEVEL {

constexpr bool kHasByteShuffle = true;

QV_INLINE Vec ReverseBytes(Vec v) {
  return ShuffleBytes(v, _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
}

}  // namespace qv::QV_LEVEL

#endif
