#include "qvAcceleratedLib/HostCounts.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#elif defined(__linux__)
#include <dirent.h>
#include <sched.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "qvAcceleratedLib/CpuQuota.h"
#include "qvAcceleratedLib/HostRegion.h"
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

// The system refuses a mask smaller than its own largest number of CPUs, which is 8192 at most as
// of today.
struct CpuMask {
  static constexpr int kWords = 65536 / (8 * sizeof(unsigned long));
  unsigned long words[kWords];

  int Count() const { return CPU_COUNT_S(sizeof words, reinterpret_cast<const cpu_set_t*>(words)); }
  bool ReadThread(int id) {
    memset(words, 0, sizeof words);
    return sched_getaffinity(id, sizeof words, reinterpret_cast<cpu_set_t*>(words)) == 0;
  }
};

// The CPUs of all threads of the process together, and their number; 0 if the system does not tell.
int CpusOfThreads(CpuMask* all) {
  if (!all->ReadThread(0)) return 0;
  DIR* const threads = opendir("/proc/self/task");
  if (!threads) return all->Count();
  while (const dirent* thread = readdir(threads)) {
    CpuMask one;
    if (thread->d_name[0] == '.' || !one.ReadThread(atoi(thread->d_name))) continue;
    for (int i = 0; i < CpuMask::kWords; ++i) all->words[i] |= one.words[i];
  }
  closedir(threads);
  return all->Count();
}

constinit bool boundByRuntime = false;

}  // namespace

void CPUCount(int* first, int* second) {
  CpuMask mask;
  int cpus = CpusOfThreads(&mask);
  if (cpus == 0) return;
  // An OpenMP runtime binds the first thread while it is loaded, if its settings say so.
  if (cpus < sysconf(_SC_NPROCESSORS_ONLN)) {
    const int found = HostRuntimeProcessors();
    boundByRuntime = found > cpus;
    if (boundByRuntime) cpus = found;
  }
  *first = SmallerLimit(cpus, QuotaCpus(ReadFile));
  *second = 1;
}

void RunWhereProcessMay() {
  CpuMask mask;
  if (CpusOfThreads(&mask) == 0) return;
  if (boundByRuntime) memset(mask.words, 0xFF, sizeof mask.words);  // wherever the system lets it
  sched_setaffinity(0, sizeof mask.words, reinterpret_cast<const cpu_set_t*>(mask.words));
}

#else

void CPUCount(int*, int*) {}

#endif

}  // namespace qv
