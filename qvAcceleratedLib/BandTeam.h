// The threads that bands run on: a few for the whole process, whoever calls.
#ifndef QV_QVACCELERATEDLIB_BANDTEAM_H
#define QV_QVACCELERATEDLIB_BANDTEAM_H

#include <stdint.h>

#include "dispatch/Dispatched.h"
#include "dispatch/Hidden.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// What tells one kind of call from another, so that the team can know how long such a call takes:
// the pixels that it writes, and whatever else changes its speed a lot (the layout, the method of a
// resize).
struct Work {
  long long pixels;
  uintptr_t method;
};

// A method that is a kernel or a function, or one of them and a code.
template <class Result, class... Args>
uintptr_t MethodOf(Result (*function)(Args...), int code = 0) {
  return reinterpret_cast<uintptr_t>(function) + static_cast<uintptr_t>(code);
}
template <class Signature>
uintptr_t MethodOf(const Dispatched<Signature>& kernel, int code = 0) {
  return reinterpret_cast<uintptr_t>(&kernel) + static_cast<uintptr_t>(code);
}

// Does pieces `first` to first + n - 1 of a call.
using RunPieces = IppStatus(const void* call, int first, int n);

// Has the pieces 0 to count - 1 done, each once, by the calling thread and by threads of the team
// that have nothing else to do: one by one, or all at once on the calling thread. Returns the
// status of the last piece (StatusOk for a count of 0).
QV_HIDDEN IppStatus RunOnTeam(int count, const Work& work, RunPieces* run, const void* call);

// Once, while the library is loaded.
QV_HIDDEN void PrepareTeam();

}  // namespace qv

#endif
