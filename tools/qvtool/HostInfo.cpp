#include "HostInfo.h"

#if defined(__linux__)
#include <sched.h>
#endif

#include "dispatch/ProcessorInfo.h"
#include "dispatch/VariantIndex.h"
#include "qvAcceleratedLib/qv.h"

namespace qvtool {
namespace {

constexpr KernelLevels kKernels[] = {
#define QV_KERNEL(name, ...) {#name, QV_LEVEL_SET(__VA_ARGS__)},
#include "kernels/Kernels.def"
};

std::string ClassName(int cpuCode) {
  switch (cpuCode) {
    case 0x00: return "not recognised";
    case 0x01: return "family 5";
    case 0x02: return "family 5 with MMX";
    case 0x03: return "family 6 without MMX";
    case 0x04: return "family 6 with MMX";
    case 0x05: return "family 6 with SSE";
    case 0x06: return "family 15 with SSE2, one logical processor";
    case 0x07: return "family 15 with SSE2, several logical processors";
    case 0x08: return "family 15 with SSE3, 32-bit";
    case 0x09: return "family 6 with SSE2";
    case 0x0A: return "family 6 with SSE3, one core";
    case 0x0B: return "family 6 with SSE3, several cores";
    case 0x10: return "family 7";
    case 0x11: return "family 15 without SSE2";
    case 0x20: return "family 15 with SSE3, 64-bit";
    case 0x21: return "SSSE3, up to two cores";
    case 0x22: return "SSSE3, more than two cores";
    case 0x40: return "another vendor or family with SSE";
    case 0x41: return "another vendor or family with SSE2";
    case 0x42: return "another vendor or family with SSE3";
    case 0x43: return "family 15 with SSE2 and SSSE3";
    default: return "unknown";
  }
}

int AffinityProcessors() {
#if defined(__linux__)
  cpu_set_t set;
  if (sched_getaffinity(0, sizeof set, &set) == 0) return CPU_COUNT(&set);
#endif
  return 0;
}

}  // namespace

HostInfo DescribeHost() {
  constexpr const char* kVariants[] = {"generic", "SSE", "SSE2", "SSE3", "SSSE3"};
  constexpr const char* kCarryless[] = {"none", "16-byte vectors", "64-byte vectors",
                                       "64-byte vectors, matrices"};

  HostInfo host;
  host.cpuCode = qv::DetectCpuCode(qv::ReadCpuidLeaves());
  host.cpuClass = ClassName(host.cpuCode);
  qv::SelectProcessorVariant();
  host.variantIndex = qv::VariantIndex;
  host.variant = kVariants[host.variantIndex];
  host.wideLevel = qv::WideLevel;
  host.carrylessLevel = qv::CarrylessLevel;
  host.carryless = kCarryless[host.carrylessLevel];
  host.threadBudget = qv_threads();
  host.processors = AffinityProcessors();
  host.level = qv::ServingLevel(qv::BuiltLevelSet(), host.variantIndex, host.wideLevel);
  return host;
}

std::span<const KernelLevels> AllKernels() { return kKernels; }

}  // namespace qvtool
