// Doubles that are doubles, where the processor computes them in x87 registers.
#ifndef QV_X87PRECISION_H
#define QV_X87PRECISION_H

#include "dispatch/Hidden.h"

namespace qv {

// While it lives, the calling thread's x87 arithmetic rounds every result to the 53 bits of a double,
// to the nearest, and traps on nothing, whatever the host had set; then the host's state is put
// back. So sums and products are the same as in SSE2 registers, as long as they stay within a
// double's exponents, for which the sources are built to store what they assign.
//
// A thread of a team begins with the system's own setting: whatever works on doubles in a parallel
// region takes an object of its own there. 64-bit builds compute in SSE2 registers: there it is empty.
#if !defined(__i386__)

class [[maybe_unused]] X87Precision {};

#else

class X87Precision {
 public:
  X87Precision() { Enter(environment_); }
  ~X87Precision() { Leave(environment_); }
  X87Precision(const X87Precision&) = delete;
  X87Precision& operator=(const X87Precision&) = delete;

 private:
  // The x87 environment as FNSTENV writes it: control, status and tag word, last instruction.
  using Environment = unsigned[7];

  // Calls, not inline, since at a call no value lies on the register stack, whose height is part of
  // what is stored and put back.
  static QV_HIDDEN void Enter(Environment& environment);
  static QV_HIDDEN void Leave(const Environment& environment);

  Environment environment_;
};

#endif

}  // namespace qv

#endif
