// Whether the host runs the calling thread in a parallel region of its own.
#ifndef QV_QVACCELERATEDLIB_HOSTREGION_H
#define QV_QVACCELERATEDLIB_HOSTREGION_H

#include "dispatch/Hidden.h"
#include "qvAcceleratedLib/Threads.h"

namespace qv {

// Whether the calling thread is in a parallel region, active or not, of an OpenMP runtime that the
// host has loaded. The runtime is asked by the names of its functions: on Linux in the global
// scope, on Windows in the modules that the usual runtimes come in (of those before OpenMP 3 only
// active regions are known). A runtime that is loaded later is found within some ten milliseconds,
// or a hundred times what looking for it takes, a second at most. `now` is the time, before and
// after.
QV_HIDDEN bool IsInHostRegion(Ticks* now);

// Processors that the host's OpenMP runtime found when it was loaded; 0 without one. It may have
// bound the threads of the process to fewer since.
QV_HIDDEN int HostRuntimeProcessors();

}  // namespace qv

#endif
