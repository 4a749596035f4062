// What the operating system has for a team of threads: starting one, sleeping, waking, a clock.
#ifndef QV_QVACCELERATEDLIB_THREADS_H
#define QV_QVACCELERATEDLIB_THREADS_H

#include <stdint.h>

#include <atomic>

#include "dispatch/Hidden.h"

namespace qv {

#if defined(_WIN32)
#define QV_THREAD_CALL __stdcall
using ThreadResult = unsigned long;
#else
#define QV_THREAD_CALL
using ThreadResult = void*;
#endif

// The body of a thread, as the operating system calls it.
template <void (*body)(void* argument)>
ThreadResult QV_THREAD_CALL ThreadEntry(void* argument) {
  body(argument);
  return {};
}

// Starts a detached thread with a ThreadEntry, which calls EnterThread first; false if it cannot be
// had. It receives none of the host's asynchronous signals.
QV_HIDDEN bool StartThread(ThreadResult(QV_THREAD_CALL* entry)(void*), void* argument);

// What a thread does for itself: takes a name for debuggers, and lets itself be run wherever the
// process may be, however narrowly the thread that started it is bound.
QV_HIDDEN void EnterThread();

// Sleeps in the operating system while `word` is `value`; may return earlier.
QV_HIDDEN void SleepWhile(const std::atomic<uint32_t>& word, uint32_t value);

// Wakes whoever sleeps on the word, which must have been changed before. Uses the address alone:
// the word itself may be gone.
QV_HIDDEN void WakeSleepers(const std::atomic<uint32_t>* word);

// A clock in ticks of 64 ns, which wraps in less than five minutes: only differences say something.
// In 32 bits because 64-bit atomics pass through floating-point registers on processors without
// SSE.
using Ticks = uint32_t;
constexpr Ticks kTicksPerSecond = 1000000000 / 64;
constexpr Ticks TicksOfMicroseconds(unsigned us) { return us * 1000 / 64; }
QV_HIDDEN Ticks Now();

// A mark and a number, 0 or above, that the calling thread carries; initially false and 0. On
// Windows they take a slot of the process that is asked for at start-up, not thread-local storage
// of the compiler's, which would need notifications of threads; without a slot they stay so.
QV_HIDDEN bool IsMarked();
QV_HIDDEN void SetMark(bool marked);
QV_HIDDEN int ThreadNumber();
QV_HIDDEN void SetThreadNumber(int number);

// Once, before anything else of this.
QV_HIDDEN void PrepareThreads();

}  // namespace qv

#endif
