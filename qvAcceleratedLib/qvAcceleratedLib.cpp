// Loading and unloading of the library.
#include "dispatch/ProcessorInfo.h"
#include "qvAcceleratedLib/BandTeam.h"
#include "qvAcceleratedLib/HostCounts.h"
#include "qvAcceleratedLib/Settings.h"
#include "qvAcceleratedLib/Startup.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

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

#if defined(_WIN32)

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID);

#if defined(__i386__)
// A 32-bit host may load the library with a stack aligned to 4 bytes only.
__attribute__((force_align_arg_pointer))
#endif
BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(module);
    qv::LibraryStartup();
    qv::PrepareTeam();
    // Threads of the team sleep between calls, and would lose their code together with this library: so
    // the library stays. If that fails, a host that never unloads the library misses nothing.
    HMODULE pinned;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(&DllMain), &pinned);
  }
  return TRUE;
}

#else

namespace {

__attribute__((constructor)) void Load() {
  qv::LibraryStartup();
  qv::PrepareTeam();
}

}  // namespace

#endif
