// What the library finds on this host. The library keeps the level to itself: the tool asks the
// processor once more, with the same code. The thread budget is the library's own.
#ifndef QVTOOL_HOSTINFO_H
#define QVTOOL_HOSTINFO_H

#include <span>
#include <string>

namespace qvtool {

// The levels that rows are built for.
inline constexpr int kBuiltLevels = 5;
inline constexpr const char* kLevelNames[kBuiltLevels] = {"generic", "sse2", "ssse3", "avx2",
                                                          "avx512"};

struct HostInfo {
  int cpuCode;
  std::string cpuClass;
  int variantIndex;
  std::string variant;
  int wideLevel;
  std::string wide;
  int carrylessLevel;
  std::string carryless;
  int threadBudget;
  int processors;  // in this process's affinity mask; 0 if that is not known
  int builtLevel;  // the level that kernels run at here, an index into kLevelNames
};

HostInfo DescribeHost();

// For every built level, the name of the level whose rows serve it.
struct KernelLevels {
  const char* name;
  const char* level[kBuiltLevels];
};

std::span<const KernelLevels> AllKernels();

}  // namespace qvtool

#endif
