#include "qvAcceleratedLib/Threads.h"

#include <initializer_list>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <pthread.h>
#include <signal.h>
#include <time.h>
#endif

#if defined(__linux__)
#include <linux/futex.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "qvAcceleratedLib/HostCounts.h"
#endif

namespace qv {
namespace {

// Of a thread of the team. The deepest kernels keep some ten kilobytes of tables on the stack.
constexpr size_t kStackBytes = 512 << 10;

}  // namespace

#if defined(_WIN32)

namespace {

// Wake-ups by address, for Windows from Vista on, without a handle: sleepers share a few condition
// variables, and one that is woken for another looks at its word and sleeps on.
struct Bed {
  SRWLOCK lock = SRWLOCK_INIT;
  CONDITION_VARIABLE wake = CONDITION_VARIABLE_INIT;
};
constexpr int kBeds = 64;
constinit Bed beds[kBeds];

Bed& BedOf(const void* address) { return beds[reinterpret_cast<uintptr_t>(address) / 64 % kBeds]; }

constinit DWORD slot = TLS_OUT_OF_INDEXES;
constinit uint64_t countsPerSecond = 1;  // of the clock; never changes while the system runs

}  // namespace

void EnterThread() {
  using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);  // from Windows 10 on
  // Its first versions have it there alone.
  const HMODULE module = GetModuleHandleW(L"kernelbase.dll");
  if (!module) return;
  const auto set = reinterpret_cast<SetDescription>(
      reinterpret_cast<void (*)()>(GetProcAddress(module, "SetThreadDescription")));
  if (set) set(GetCurrentThread(), L"qvBandTeam");
}

bool StartThread(ThreadResult(QV_THREAD_CALL* entry)(void*), void* argument) {
  const HANDLE thread = CreateThread(nullptr, kStackBytes, entry, argument,
                                     STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  if (!thread) return false;
  CloseHandle(thread);
  return true;
}

void SleepWhile(const std::atomic<uint32_t>& word, uint32_t value) {
  Bed& bed = BedOf(&word);
  AcquireSRWLockExclusive(&bed.lock);
  if (word.load(std::memory_order_relaxed) == value)
    SleepConditionVariableSRW(&bed.wake, &bed.lock, INFINITE, 0);
  ReleaseSRWLockExclusive(&bed.lock);
}

void WakeSleepers(const std::atomic<uint32_t>* word) {
  Bed& bed = BedOf(word);
  AcquireSRWLockExclusive(&bed.lock);  // nobody is between looking at the word and sleeping
  ReleaseSRWLockExclusive(&bed.lock);
  WakeAllConditionVariable(&bed.wake);
}

Ticks Now() {
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  const auto counts = static_cast<uint64_t>(now.QuadPart);
  return static_cast<Ticks>(counts / countsPerSecond * kTicksPerSecond +
                            counts % countsPerSecond * kTicksPerSecond / countsPerSecond);
}

namespace {

// Twice the number, and one for the mark.
uintptr_t Slot() {
  return slot != TLS_OUT_OF_INDEXES ? reinterpret_cast<uintptr_t>(TlsGetValue(slot)) : 0;
}

void SetSlot(uintptr_t value) {
  if (slot != TLS_OUT_OF_INDEXES) TlsSetValue(slot, reinterpret_cast<void*>(value));
}

}  // namespace

bool IsMarked() { return Slot() & 1; }
void SetMark(bool marked) { SetSlot((Slot() & ~uintptr_t{1}) | marked); }
int ThreadNumber() { return static_cast<int>(Slot() >> 1); }
void SetThreadNumber(int number) { SetSlot(static_cast<uintptr_t>(number) << 1 | (Slot() & 1)); }

void PrepareThreads() {
  slot = TlsAlloc();
  LARGE_INTEGER frequency;
  if (QueryPerformanceFrequency(&frequency))
    countsPerSecond = static_cast<uint64_t>(frequency.QuadPart);
}

#else

namespace {
constinit thread_local bool mark = false;
constinit thread_local int number = 0;
}

#if defined(__linux__)

void EnterThread() {
  prctl(PR_SET_NAME, "qvBandTeam");
  RunWhereProcessMay();
}

bool StartThread(ThreadResult (*entry)(void*), void* argument) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_attr_setstacksize(&attributes, kStackBytes);
  // A signal for the process is the host's; what an instruction raises arrives where it stands.
  sigset_t blocked, old;
  sigfillset(&blocked);
  for (const int raised : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS})
    sigdelset(&blocked, raised);
  pthread_sigmask(SIG_SETMASK, &blocked, &old);
  pthread_t thread;
  const bool started = pthread_create(&thread, &attributes, entry, argument) == 0;
  pthread_sigmask(SIG_SETMASK, &old, nullptr);
  pthread_attr_destroy(&attributes);
  return started;
}

void SleepWhile(const std::atomic<uint32_t>& word, uint32_t value) {
  syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
}

void WakeSleepers(const std::atomic<uint32_t>* word) {
  syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, 0x7FFFFFFF, nullptr, nullptr, 0);
}

#else  // no threads, and so nobody who sleeps

void EnterThread() {}
bool StartThread(ThreadResult (*)(void*), void*) { return false; }
void SleepWhile(const std::atomic<uint32_t>&, uint32_t) {}
void WakeSleepers(const std::atomic<uint32_t>*) {}

#endif

Ticks Now() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<Ticks>(now.tv_sec) * kTicksPerSecond + static_cast<Ticks>(now.tv_nsec) / 64;
}

bool IsMarked() { return mark; }
void SetMark(bool marked) { mark = marked; }
int ThreadNumber() { return number; }
void SetThreadNumber(int newNumber) { number = newNumber; }
void PrepareThreads() {}

#endif

}  // namespace qv
