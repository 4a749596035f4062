// A floating-point environment that does not depend on the host.
#ifndef QV_FLOATENVIRONMENT_H
#define QV_FLOATENVIRONMENT_H

#include "dispatch/FloatControl.h"

namespace qv {

// While it lives, arithmetic of the calling thread rounds to nearest, keeps denormal numbers and
// traps on nothing, whatever the host had set; then the host's state is put back, its flags
// included.
//
// Every thread of a team has a state of its own: whatever computes with floating-point numbers in
// a parallel region takes an object of its own there. The compiler knows nothing of this, so the
// arithmetic must be in functions of other sources, which are not inlined into the scope.
class FloatEnvironment {
 public:
  FloatEnvironment(const FloatEnvironment&) = delete;
  FloatEnvironment& operator=(const FloatEnvironment&) = delete;

#if defined(__x86_64__)

  FloatEnvironment() : control_(ResetMxcsr()) {}
  ~FloatEnvironment() {
    SetMxcsr(control_, ~0u);
#if defined(_WIN64)
    SetX87Control(x87Control_, 0xFFFF);
#endif
  }

 private:
  unsigned control_;
#if defined(_WIN64)
  // The runtime library computes sines and cosines in x87 registers there.
  unsigned x87Control_ = SetX87Control(0x037F, 0xFFFF);
#endif

#else

  // Doubles are computed in x87 registers, whose control also has a precision: that of a double,
  // so that sums and products are the same as in SSE2 registers as long as they stay within a
  // double's exponents. The sources are built to store what they assign, for those that do not.
  FloatEnvironment() { Enter(); }
  ~FloatEnvironment() { Leave(); }

 private:
  // Calls, not inline, since at a call no value lies on the register stack, whose height is part of
  // what is stored and put back.
  QV_HIDDEN void Enter();
  QV_HIDDEN void Leave();

  // The x87 environment as FNSTENV writes it: control, status and tag word, last instruction.
  unsigned x87_[7];
  unsigned control_ = kMxcsrDefault;  // of the SSE registers, where there are any

#endif
};

}  // namespace qv

#endif
