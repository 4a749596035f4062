// 16-byte vectors of an SSE2 processor.
#ifndef QV_KERNELS_LEVEL_SSE2_H
#define QV_KERNELS_LEVEL_SSE2_H

#include "kernels/level/vec128.h"

namespace qv::QV_LEVEL {

constexpr bool kHasByteShuffle = false;

QV_INLINE Vec ReverseBytes(Vec v) {
  v = Or(ShiftLeft16<8>(v), ShiftRight16<8>(v));
  return ShuffleLanes32<2, 3, 0, 1>(ShuffleHigh16<3, 2, 1, 0>(ShuffleLow16<3, 2, 1, 0>(v)));
}

}  // namespace qv::QV_LEVEL

#endif
