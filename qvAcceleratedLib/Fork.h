// Threads of the OpenMP team do not follow a process into its forked children.
#ifndef QV_FORK_H
#define QV_FORK_H

#include "dispatch/Hidden.h"

namespace qv {

#if defined(_WIN32)

constexpr bool IsForkedThread = false;  // there is no fork

#else

// True on the thread of a child process that is the copy of the one that called fork. GCC's OpenMP
// runtime would have it wait forever for the team that it had in the parent, be that through this
// library or through the host itself. Other threads of the child may form teams as ever.
extern QV_HIDDEN constinit thread_local bool IsForkedThread;

// Called once, while the library is loaded. If the system refuses, children are as without it.
QV_HIDDEN void WatchForks();

#endif

}  // namespace qv

#endif
