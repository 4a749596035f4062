#include "qvAcceleratedLib/HostCounts.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#elif defined(__linux__)
#include <sched.h>

#include "qvAcceleratedLib/CpuQuota.h"
#endif

namespace qv {

#if defined(_WIN32)

void CPUCount(int* first, int* second) {
  DWORD_PTR process = 0;
  DWORD_PTR system = 0;
  if (!GetProcessAffinityMask(GetCurrentProcess(), &process, &system)) return;
  int count = 0;
  for (; process != 0; process &= process - 1) ++count;
  if (count == 0) {
    // A process that spans several processor groups gets two empty masks.
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    count = static_cast<int>(info.dwNumberOfProcessors);
  }
  *first = count;
  *second = 1;
}

#elif defined(__linux__)

namespace {

// CPUs in the calling thread's affinity mask; 0 if the system does not tell.
int AffinityCpus() {
  // The system refuses a mask smaller than its own largest number of CPUs, which is 8192 at most as
  // of today.
  constexpr size_t maskCpus = 65536;
  unsigned long mask[maskCpus / (8 * sizeof(unsigned long))];
  cpu_set_t* set = reinterpret_cast<cpu_set_t*>(mask);
  if (sched_getaffinity(0, sizeof mask, set) != 0) return 0;
  return CPU_COUNT_S(sizeof mask, set);
}

}  // namespace

void CPUCount(int* first, int* second) {
  const int affinity = AffinityCpus();
  if (affinity == 0) return;
  *first = SmallerLimit(affinity, QuotaCpus(ReadFile));
  *second = 1;
}

#else

void CPUCount(int*, int*) {}

#endif

}  // namespace qv
