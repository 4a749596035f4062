// Single precision for plain rows, whatever registers the compiler computes in.
#ifndef QV_KERNELS_LEVEL_PLAINFLOATS_H
#define QV_KERNELS_LEVEL_PLAINFLOATS_H

#include <float.h>

#include "kernels/level/Common.h"

namespace qv::QV_LEVEL {

// A float with the excess digits cut off that x87 arithmetic keeps. Sums, products and quotients of
// floats that are rounded twice, to at least 50 bits and then to 24, are rounded correctly.
QV_INLINE float RoundToFloat(float v) {
#if FLT_EVAL_METHOD == 0
  return v;
#else
  volatile float exact = v;
  return exact;
#endif
}

}  // namespace qv::QV_LEVEL

#endif
