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

AskRuntime FindInRuntime(const char* function) {
  for (const wchar_t* name : {L"vcomp140.dll", L"vcomp140d.dll", L"libomp140.x86_64.dll",
                              L"libomp140.i386.dll", L"libgomp-1.dll", L"libomp.dll",
                              L"libiomp5md.dll", L"libguide40.dll", L"vcomp120.dll",
                              L"vcomp110.dll", L"vcomp100.dll", L"vcomp90.dll"}) {
    HMODULE module;  // with a reference of our own, so that it stays
    if (!GetModuleHandleExW(0, name, &module)) continue;
    if (const FARPROC found = GetProcAddress(module, function))
      return reinterpret_cast<AskRuntime>(reinterpret_cast<void (*)()>(found));
    FreeLibrary(module);
  }
  return nullptr;
}

#else

AskRuntime FindInRuntime(const char* function) {
  void* const found = dlsym(RTLD_DEFAULT, function);
  Dl_info module;
  // With a reference of our own, so that it stays; the program itself is there anyway.
  if (found && dladdr(found, &module)) dlopen(module.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
  return reinterpret_cast<AskRuntime>(found);
}

#endif

constinit std::atomic<AskRuntime> levelOf{nullptr};
constinit std::atomic<bool> asked{false};
constinit std::atomic<Ticks> askedAt{0};

}  // namespace

bool IsInHostRegion(Ticks now) {
  AskRuntime level = levelOf.load(memory_order_relaxed);
  if (!level) {
    if (asked.load(memory_order_relaxed) &&
        now - askedAt.load(memory_order_relaxed) < TicksOfMicroseconds(10000))
      return false;
    level = FindInRuntime("omp_get_level");
    if (!level) level = FindInRuntime("omp_in_parallel");
    askedAt.store(now, memory_order_relaxed);
    asked.store(true, memory_order_relaxed);
    if (!level) return false;
    levelOf.store(level, memory_order_relaxed);
  }
  return level() != 0;
}

int HostRuntimeProcessors() {
  const AskRuntime processors = FindInRuntime("omp_get_num_procs");
  return processors ? processors() : 0;
}

}  // namespace qv
