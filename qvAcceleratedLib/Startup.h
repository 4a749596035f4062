// What happens once, while the library is loaded.
#ifndef QV_QVACCELERATEDLIB_STARTUP_H
#define QV_QVACCELERATEDLIB_STARTUP_H

namespace qv {

// Chooses the kernels' variant, then sets ThreadBudget and HostProcessorInfo.
//
// `cpuCount` fills two integers, both 0 before the call, whose product is the number of CPUs;
// ThreadBudget becomes the product if that is at least what it was, so it never decreases.
// `processorInfo` returns the new HostProcessorInfo.
void LibraryStartup(void (*cpuCount)(int* first, int* second), unsigned (*processorInfo)());

// The same with this host's CPUCount, and a processor information that is nonzero when the
// processor has SSE2.
void LibraryStartup();

}  // namespace qv

#endif
