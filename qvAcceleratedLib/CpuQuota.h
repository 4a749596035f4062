// How much CPU time the container of this process grants it. Linux only.
#ifndef QV_QVACCELERATEDLIB_CPUQUOTA_H
#define QV_QVACCELERATEDLIB_CPUQUOTA_H

namespace qv {

// The smaller of two counts of CPUs, of which 0 means no limit.
int SmallerLimit(int a, int b);

// Whole CPUs that `quota` microseconds of CPU time in each `period` microseconds can keep busy,
// rounded up; 0, for no limit, unless both are positive.
int CpusOfQuota(long long quota, long long period);

// The same from the text of a cpu.max file ("QUOTA PERIOD" or "max PERIOD", control groups
// version 2), and from those of cpu.cfs_quota_us and cpu.cfs_period_us (version 1; a quota of -1 is
// none). A null or malformed text is no limit.
int CpusOfCpuMax(const char* cpuMax);
int CpusOfCfs(const char* quota, const char* period);

// The whole file as a string, to be released with delete[]; null if it cannot be read.
using FileReader = char* (*)(const char* path);
char* ReadFile(const char* path);

// The smallest quota of the process's control group and of its parents, in whole CPUs, as far as
// they are mounted here, versions 1 and 2; 0 if there is none. Everything is read through `read`.
int QuotaCpus(FileReader read);

}  // namespace qv

#endif
