// What the library finds on this host. The library keeps the level to itself: the tool asks the
// processor once more, with the same code. The thread budget is
// the C library's, which counts as the class's does.
#ifndef QV_TOOLS_QVTOOL_HOSTINFO_H
#define QV_TOOLS_QVTOOL_HOSTINFO_H

#include <span>
#include <string>

#include "dispatch/Levels.h"

namespace qvtool {

struct HostInfo {
  int cpuCode;
  std::string cpuClass;
  int variantIndex;
  std::string variant;
  int wideLevel;
  int carrylessLevel;
  std::string carryless;
  int threadBudget;
  int processors;  // in this process's affinity mask; 0 if that is not known
  qv::LevelId level;  // the highest one that kernels run at here
};

HostInfo DescribeHost();

// The levels that have rows of their own for a kernel.
struct KernelLevels {
  const char* name;
  qv::LevelSet own;
};

std::span<const KernelLevels> AllKernels();

}  // namespace qvtool

#endif
