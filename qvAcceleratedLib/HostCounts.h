// How many CPUs this process may use: the affinity masks of its threads, what its OpenMP runtime
// found before it bound them, and the CPU quota of its container.
#ifndef QV_QVACCELERATEDLIB_HOSTCOUNTS_H
#define QV_QVACCELERATEDLIB_HOSTCOUNTS_H

#include "dispatch/Hidden.h"

namespace qv {

// Writes two counts whose product is the number of CPUs that the process can keep busy: the smaller
// of those that it may run on and its CPU quota, and 1. Writes nothing if the host tells nothing.
//
// A process may run on the CPUs of all its threads together, whatever thread loads the library; a
// host that pins its only thread looks like one that was started on one CPU.
QV_HIDDEN void CPUCount(int* first, int* second);

#if defined(__linux__)
// Lets the calling thread run on all these CPUs, if the system agrees.
QV_HIDDEN void RunWhereProcessMay();
#endif

}  // namespace qv

#endif
