// How many CPUs this process may use: its affinity mask, and the CPU quota of its container.
#ifndef QV_HOSTCOUNTS_H
#define QV_HOSTCOUNTS_H

namespace qv {

// Writes two counts whose product is the number of CPUs that the process can keep busy: the smaller
// of its affinity mask and its CPU quota, and 1. Writes nothing if the host tells nothing.
void CPUCount(int* first, int* second);

}  // namespace qv

#endif
