// Loading of the library.
#include "dispatch/ProcessorInfo.h"
#include "qvAcceleratedLib/BandTeam.h"
#include "qvAcceleratedLib/HostCounts.h"
#include "qvAcceleratedLib/Settings.h"
#include "qvAcceleratedLib/Startup.h"

namespace qv {
namespace {

unsigned ProcessorInformation() { return ProcessorInfoOf(ReadCpuidLeaves()).hasSse2; }

}  // namespace

void LibraryStartup(void (*cpuCount)(int* first, int* second), unsigned (*processorInfo)()) {
  // Its status only says that the processor is of another vendor; the variant holds regardless.
  SelectProcessorVariant();
  int first = 0;
  int second = 0;
  cpuCount(&first, &second);
  // Unsigned, so that counts beyond all reason wrap instead of being undefined.
  const int cpus = static_cast<int>(static_cast<unsigned>(first) * static_cast<unsigned>(second));
  if (cpus >= ThreadBudget) ThreadBudget = cpus;
  HostProcessorInfo = processorInfo();
}

void LibraryStartup() { LibraryStartup(CPUCount, ProcessorInformation); }

}  // namespace qv

#if !defined(_WIN32)  // where DllEntry.cpp does it

namespace {

__attribute__((constructor)) void Load() {
  qv::LibraryStartup();
  qv::PrepareTeam();
}

}  // namespace

#endif
