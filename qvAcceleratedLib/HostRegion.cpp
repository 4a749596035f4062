#include "qvAcceleratedLib/HostRegion.h"

#include <atomic>
#include <initializer_list>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace qv {
namespace {

using std::memory_order_relaxed;

using AskRuntime = int (*)();

#if defined(_WIN32)

// One round through the names, as each may be looked for in folders, too (Wine does). Those that
// know of inactive regions come first.
AskRuntime FindInRuntime(const char* function, const char* otherwise) {
  for (const wchar_t* name : {L"libomp140.x86_64.dll", L"libomp140.i386.dll", L"libgomp-1.dll",
                              L"libomp.dll", L"libiomp5md.dll", L"vcomp140.dll", L"vcomp140d.dll",
                              L"vcomp120.dll", L"vcomp110.dll", L"vcomp100.dll", L"vcomp90.dll",
                              L"libguide40.dll"}) {
    HMODULE module;  // with a reference of our own, so that it stays
    if (!GetModuleHandleExW(0, name, &module)) continue;
    FARPROC found = GetProcAddress(module, function);
    if (!found) found = GetProcAddress(module, otherwise);
    if (found) return reinterpret_cast<AskRuntime>(reinterpret_cast<void (*)()>(found));
    FreeLibrary(module);
  }
  return nullptr;
}

#else

AskRuntime FindInRuntime(const char* function, const char* otherwise) {
  void* found = dlsym(RTLD_DEFAULT, function);
  if (!found) found = dlsym(RTLD_DEFAULT, otherwise);
  Dl_info module;
  // With a reference of our own, so that it stays; the program itself is there anyway.
  if (found && dladdr(found, &module)) dlopen(module.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
  return reinterpret_cast<AskRuntime>(found);
}

#endif

// Looking in vain is to take a hundredth of the time.
constexpr Ticks kShortestPause = TicksOfMicroseconds(10000);
constexpr Ticks kLongestPause = TicksOfMicroseconds(1000000);

Ticks PauseAfter(Ticks took) {
  return took < kShortestPause / 100  ? kShortestPause
         : took < kLongestPause / 100 ? took * 100
                                      : kLongestPause;
}

constinit std::atomic<AskRuntime> levelOf{nullptr};
constinit std::atomic<bool> asked{false};
constinit std::atomic<Ticks> askedAt{0}, pause{0};

}  // namespace

bool IsInHostRegion(Ticks* now) {
  AskRuntime level = levelOf.load(memory_order_relaxed);
  if (!level) {
    if (asked.load(memory_order_relaxed)) {
      const Ticks since = *now - askedAt.load(memory_order_relaxed);
      if (since < pause.load(memory_order_relaxed)) return false;
      askedAt.store(*now, memory_order_relaxed);  // one thread is enough
    }
    level = FindInRuntime("omp_get_level", "omp_in_parallel");
    const Ticks end = Now();
    pause.store(PauseAfter(end - *now), memory_order_relaxed);
    askedAt.store(end, memory_order_relaxed);
    *now = end;
    asked.store(true, memory_order_relaxed);
    if (!level) return false;
    levelOf.store(level, memory_order_relaxed);
  }
  return level() != 0;
}

int HostRuntimeProcessors() {
  const AskRuntime processors = FindInRuntime("omp_get_num_procs", "omp_get_num_procs");
  return processors ? processors() : 0;
}

}  // namespace qv
