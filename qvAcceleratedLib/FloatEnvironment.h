// A floating-point environment that does not depend on the host.
#ifndef QV_QVACCELERATEDLIB_FLOATENVIRONMENT_H
#define QV_QVACCELERATEDLIB_FLOATENVIRONMENT_H

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
  FloatEnvironment() : host_(EnterDefaultFloatState()) {}
  ~FloatEnvironment() { LeaveDefaultFloatState(host_); }
  FloatEnvironment(const FloatEnvironment&) = delete;
  FloatEnvironment& operator=(const FloatEnvironment&) = delete;

 private:
  const FloatState host_;
};

}  // namespace qv

#endif
