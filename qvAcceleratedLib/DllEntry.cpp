// What the DLL has in place of the compiler's start-up code and of its allocating functions. Both
// bring thread-local storage with them, and a DLL that has any is notified of each thread that the
// host makes or ends, whether it wants to know or not.
#include <stddef.h>
#include <stdlib.h>

#include <new>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "qvAcceleratedLib/BandTeam.h"
#include "qvAcceleratedLib/Startup.h"

// Memory of the C runtime, as the C++ library takes it; no new-handler can be set from outside.
void* operator new[](size_t bytes, const std::nothrow_t&) noexcept {
  return malloc(bytes != 0 ? bytes : 1);
}
void operator delete[](void* memory) noexcept { free(memory); }
void operator delete[](void* memory, size_t) noexcept { free(memory); }

// The linker's list: -1, constructors of the library's own statics, 0. There are none as of today.
extern "C" void (*const __CTOR_LIST__[])();

extern "C" BOOL WINAPI DllMainCRTStartup(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  DisableThreadLibraryCalls(module);
  int constructors = 0;
  while (__CTOR_LIST__[constructors + 1]) ++constructors;
  for (; constructors > 0; --constructors) __CTOR_LIST__[constructors]();
  qv::LibraryStartup();
  qv::PrepareTeam();
  // Threads of the team sleep between calls, and would lose their code together with this library:
  // so the library stays. If that fails, a host that never unloads the library misses nothing.
  HMODULE pinned;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<LPCWSTR>(&DllMainCRTStartup), &pinned);
  return TRUE;
}
