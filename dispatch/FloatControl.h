// Control and status registers of the floating-point units, the processor's clock and its hint for
// loops that wait.
//
// "Set" replaces the bits of `mask` by those of `value`, returns the whole register as it was
// before, and with a mask of 0 only reads. The compiler knows nothing of what these registers do.
#ifndef QV_DISPATCH_FLOATCONTROL_H
#define QV_DISPATCH_FLOATCONTROL_H

#include <stdint.h>

#include "dispatch/Hidden.h"

namespace qv {

#if defined(__i386__) || defined(__x86_64__)

// The x87 control word: exceptions masked (bits 0 to 5), precision (8, 9), rounding (10, 11).
QV_HIDDEN unsigned SetX87Control(unsigned value, unsigned mask);

// The x87 status word: exceptions raised (bits 0 to 5), condition codes, top of the stack. Clears
// the exceptions afterwards if asked to.
QV_HIDDEN unsigned ReadX87Status(bool clearExceptions);

// MXCSR, of processors with SSE: exceptions raised (bits 0 to 5), denormals are zero (6),
// exceptions masked (7 to 12), rounding (13, 14), flush to zero (15).
QV_HIDDEN unsigned SetMxcsr(unsigned value, unsigned mask);

// What MXCSR is after a reset: all exceptions masked and none raised, to nearest, denormals kept.
constexpr unsigned kMxcsrDefault = 0x1F80;

// Sets MXCSR to its default and returns what it was.
QV_HIDDEN unsigned ResetMxcsr();

#endif

// What a thread has in these registers: everything that a host may have set, and the exceptions
// that it has raised.
struct FloatState {
#if defined(__i386__)
  unsigned x87[7];  // as FNSTENV writes it: control, status and tag word, last instruction
  unsigned mxcsr;   // where there is SSE
#elif defined(_WIN64)
  unsigned x87Control, mxcsr;
#elif defined(__x86_64__)
  unsigned mxcsr;
#elif defined(__aarch64__)
  uint64_t control, status;  // FPCR, FPSR
#else
#error "FloatControl does not know the floating-point registers of this processor"
#endif
};

// Has the calling thread round to nearest, keep denormal numbers and trap on nothing; returns what
// it had before. In x87 registers doubles get the precision of a double: sums and products are then
// the same as in SSE2 registers as long as they stay within a double's exponents, and the sources
// are built to store what they assign, for those that do not.
QV_HIDDEN FloatState EnterDefaultFloatState();

// Puts that back.
QV_HIDDEN void LeaveDefaultFloatState(const FloatState& before);

// Ticks of a counter that never stops: the time-stamp counter, which the Pentium brought, or ARM's
// virtual counter.
QV_HIDDEN uint64_t ReadTimeStamp();

// Tells the processor that this is a loop that waits.
QV_HIDDEN void Pause();

}  // namespace qv

#endif
