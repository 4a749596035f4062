#include "qvAcceleratedLib/Fork.h"

#if !defined(_WIN32)

#include <pthread.h>

namespace qv {

constinit thread_local bool IsForkedThread = false;

void WatchForks() {
  // Called in the child, on its only thread.
  pthread_atfork(nullptr, nullptr, [] { IsForkedThread = true; });
}

}  // namespace qv

#endif
