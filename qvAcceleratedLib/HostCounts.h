// How many CPUs this process may use: its affinity mask, and the CPU quota of its container.
#ifndef QV_HOSTCOUNTS_H
#define QV_HOSTCOUNTS_H

namespace qv {

// Writes two counts whose product is the number of CPUs that the process can keep busy: the smaller
// of its affinity mask and its CPU quota, and 1. Writes nothing if the host tells nothing.
void CPUCount(int* first, int* second);

#if defined(__linux__)

// CPUs in the calling thread's affinity mask; 0 if the system does not tell.
int AffinityCpus();

// Whole CPUs that a quota of `quota` microseconds of CPU time in each `period` microseconds can keep
// busy, rounded up; 0, for no limit, unless both are positive.
int CpusOfQuota(long long quota, long long period);

// The same from the text of a cpu.max file ("QUOTA PERIOD" or "max PERIOD", control groups
// version 2), and from those of cpu.cfs_quota_us and cpu.cfs_period_us (version 1; a quota of -1 is
// none). A null or malformed text is no limit.
int CpusOfCpuMax(const char* cpuMax);
int CpusOfCfs(const char* quota, const char* period);

// The whole file as a string, to be released with delete[]; null if it cannot be read.
using FileReader = char* (*)(const char* path);
char* ReadFile(const char* path);

// The smallest CPU quota of the process's control group and of its parents, as far as they are
// mounted here, versions 1 and 2; 0 if there is none. Everything is read through `read`.
int QuotaCpus(FileReader read);

#endif

}  // namespace qv

#endif
