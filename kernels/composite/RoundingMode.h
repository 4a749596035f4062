// A floating-point environment that does not depend on the host.
#ifndef QV_KERNELS_COMPOSITE_ROUNDINGMODE_H
#define QV_KERNELS_COMPOSITE_ROUNDINGMODE_H

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

namespace qv::QV_LEVEL {

// While it lives, single-precision operations of this thread round to single precision, to nearest
// even, and trap nothing, whatever the host has set. On the x87 that takes the precision control:
// its registers would keep 64 bits of significand. The compiler knows nothing of all this, so the
// arithmetic must be in a function of its own that is not inlined into the scope.
class RoundToNearest {
 public:
#if defined(__SSE__)
  RoundToNearest() : old_(_mm_getcsr()) { _mm_setcsr(0x1F80); }
  ~RoundToNearest() { _mm_setcsr(old_); }
#else
  RoundToNearest() {
    const unsigned short nearestSingle = 0x007F;
    asm volatile("fnstcw %0\n\tfldcw %1" : "=m"(old_) : "m"(nearestSingle) : "memory");
  }
  ~RoundToNearest() { asm volatile("fnclex\n\tfldcw %0" : : "m"(old_) : "memory"); }
#endif
  RoundToNearest(const RoundToNearest&) = delete;
  RoundToNearest& operator=(const RoundToNearest&) = delete;

 private:
#if defined(__SSE__)
  unsigned old_;
#else
  unsigned short old_;
#endif
};

}  // namespace qv::QV_LEVEL

#endif
