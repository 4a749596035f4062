// Control and status registers of the floating-point units, and the processor's clock.
//
// "Set" replaces the bits of `mask` by those of `value`, returns the whole register as it was
// before, and with a mask of 0 only reads. The compiler knows nothing of what these registers do.
#ifndef QV_DISPATCH_FLOATCONTROL_H
#define QV_DISPATCH_FLOATCONTROL_H

#include <stdint.h>

#include "dispatch/Hidden.h"

namespace qv {

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

// Ticks of the time-stamp counter, which the Pentium brought.
QV_HIDDEN uint64_t ReadTimeStamp();

}  // namespace qv

#endif
