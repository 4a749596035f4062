// A host that loads the DLL while it runs: often, with its threads at odd stack addresses, and
// where the DLL cannot make itself stay.
//
//   loader DLL reload     load, run on several threads, unload; 100 times
//   loader DLL stack      calls from threads whose stacks are aligned to 4 bytes (32-bit) or are an
//                         odd multiple of 16 bytes (64-bit)
//   loader DLL unpinned   loads it where GetModuleHandleEx fails
//   loader DLL threads    calls from 100 threads one after another, which leave nothing behind
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/hosts/Mirrored.h"
#include "tests/support/ThreadCount.h"

namespace {

using hosts::Images;
using Mirror = decltype(CqvAccLib::qvMirror);

constexpr IppiSize kSize = {257, 301};  // of several bands

void Require(bool condition, const char* what) {
  if (condition) return;
  std::printf("FAILED: %s (error %lu)\n", what, GetLastError());
  std::exit(1);
}

HMODULE Load(const char* path) {
  const HMODULE library = LoadLibraryA(path);
  Require(library != nullptr, "the DLL cannot be loaded");
  return library;
}

Mirror* Find(HMODULE library) {
  const FARPROC found = GetProcAddress(
      library, "_ZN9CqvAccLib8qvMirrorENS_10qvDataTypeEPKhiPhi8IppiSize8IppiAxis");
  Require(found != nullptr, "the DLL has no qvMirror");
  Mirror* mirror;
  std::memcpy(&mirror, &found, sizeof mirror);
  return mirror;
}

void Run(Mirror* mirror) {
  Images images(kSize);
  Require(images.Call(*mirror) == StatusOk && images.IsMirrored(), "qvMirror");
}

void Reload(const char* path) {
  for (int i = 0; i < 100; ++i) {
    const HMODULE library = Load(path);
    Run(Find(library));
    Require(FreeLibrary(library), "FreeLibrary");
  }
  // The threads of the last team may still be about to go to sleep.
  Sleep(50);
}

// ---- Odd stacks ---------------------------------------------------------------------------------

Mirror* odd_mirror;
Images* odd_images;
IppStatus odd_status;

extern "C" void CallFromOddStack() {
  odd_status = odd_images->Call(*odd_mirror);
}

#if defined(__i386__)
constexpr std::size_t kOffsets[] = {0, 4, 8, 12};
#else
constexpr std::size_t kOffsets[] = {0, 16, 32, 48};
#endif

// Calls CallFromOddStack with a stack pointer that is `offset` above a multiple of 64 at the call.
void CallAt(std::size_t offset) {
#if defined(__i386__)
  __asm__ volatile(
      "movl %%esp, %%ebx\n\t"
      "andl $-64, %%esp\n\t"
      "subl $64, %%esp\n\t"
      "addl %0, %%esp\n\t"
      "call *%1\n\t"
      "movl %%ebx, %%esp"
      :
      : "S"(offset), "D"(&CallFromOddStack)
      : "ebx", "eax", "ecx", "edx", "cc", "memory");
#else
  __asm__ volatile(
      "movq %%rsp, %%rbx\n\t"
      "andq $-64, %%rsp\n\t"
      "subq $128, %%rsp\n\t"  // the callee's home area, and room to move up
      "addq %0, %%rsp\n\t"
      "call *%1\n\t"
      "movq %%rbx, %%rsp"
      :
      : "S"(offset), "D"(&CallFromOddStack)
      : "rbx", "rax", "rcx", "rdx", "r8", "r9", "r10", "r11", "xmm0", "xmm1", "xmm2", "xmm3",
        "xmm4", "xmm5", "cc", "memory");
#endif
}

DWORD WINAPI OddThread(void*) {
  for (const std::size_t offset : kOffsets) {
    odd_images->mirrored.assign(odd_images->mirrored.size(), 0);
    odd_status = StatusBadArgErr;
    CallAt(offset);
    if (odd_status != StatusOk || !odd_images->IsMirrored()) return static_cast<DWORD>(offset + 1);
  }
  return 0;
}

void CallFromOddStacks(const char* path) {
  odd_mirror = Find(Load(path));
  odd_images = new Images(kSize);
  for (int i = 0; i < 4; ++i) {
    const HANDLE thread = CreateThread(nullptr, 0, OddThread, nullptr, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    DWORD code = 1;
    Require(GetExitCodeThread(thread, &code) && code == 0, "a call from an odd stack");
  }
}

// ---- A system that cannot pin -------------------------------------------------------------------

void LoadUnpinned(const char* path) {
  // Makes the system's function return 0.
#if defined(__i386__)
  const unsigned char fail[] = {0x31, 0xC0, 0xC2, 0x0C, 0x00};  // xor eax, eax; ret 12
#else
  const unsigned char fail[] = {0x31, 0xC0, 0xC3};  // xor eax, eax; ret
#endif
  const FARPROC found = GetProcAddress(GetModuleHandleA("kernel32.dll"), "GetModuleHandleExW");
  void* code;
  std::memcpy(&code, &found, sizeof code);
  DWORD old;
  Require(VirtualProtect(code, sizeof fail, PAGE_EXECUTE_READWRITE, &old), "VirtualProtect");
  std::memcpy(code, fail, sizeof fail);
  FlushInstructionCache(GetCurrentProcess(), code, sizeof fail);
  HMODULE self;
  Require(!GetModuleHandleExW(0, nullptr, &self), "GetModuleHandleExW still works");
  Run(Find(Load(path)));
}

// ---- Threads that come and go -----------------------------------------------------------------

struct Caller {
  Mirror* mirror;
  Images images{{4096, 1024}};  // worth a team
};

DWORD WINAPI CallOnThread(void* argument) {
  Caller& caller = *static_cast<Caller*>(argument);
  for (int i = 0; i < 4; ++i)
    if (caller.images.Call(*caller.mirror) != StatusOk) return 1;
  return 0;
}

void RunOnThreads(Caller* caller, int count) {
  for (int i = 0; i < count; ++i) {
    const HANDLE thread = CreateThread(nullptr, 0, CallOnThread, caller, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    DWORD code = 1;
    Require(GetExitCodeThread(thread, &code) && code == 0, "a call on a thread");
    CloseHandle(thread);
  }
}

DWORD Handles() {
  DWORD count = 0;
  Require(GetProcessHandleCount(GetCurrentProcess(), &count), "GetProcessHandleCount");
  return count;
}

void CallFromManyThreads(const char* path) {
  DWORD_PTR cpus = 0, system = 0;
  Require(GetProcessAffinityMask(GetCurrentProcess(), &cpus, &system), "GetProcessAffinityMask");
  const int before = qv::test::ThreadsOfProcess();
  const HMODULE library = Load(path);
  // It fails for a DLL with thread-local storage.
  Require(DisableThreadLibraryCalls(library), "notifications of threads cannot be switched off");
  Require(qv::test::ThreadsOfProcess() == before, "loading starts a thread");
  Caller caller{Find(library)};
  RunOnThreads(&caller, 5);
  const DWORD handles = Handles();
  RunOnThreads(&caller, 100);
  Require(caller.images.IsMirrored(), "qvMirror on threads");
  Require(Handles() <= handles, "threads leave handles behind");
  const int team = qv::test::ThreadsOfProcess() - before, budget = __builtin_popcountll(cpus);
  std::printf("a team of %d threads on %d processors\n", team, budget);
  Require(team <= budget - 1, "threads leave threads behind");
  Require(budget == 1 || team >= 1, "there is no team");
}

}  // namespace

int main(int argc, char** argv) {
  setvbuf(stdout, nullptr, _IONBF, 0);
  if (argc != 3) return 2;
  if (!std::strcmp(argv[2], "reload")) Reload(argv[1]);
  else if (!std::strcmp(argv[2], "stack")) CallFromOddStacks(argv[1]);
  else if (!std::strcmp(argv[2], "unpinned")) LoadUnpinned(argv[1]);
  else if (!std::strcmp(argv[2], "threads")) CallFromManyThreads(argv[1]);
  else return 2;
  std::printf("done\n");
  ExitProcess(0);
}
