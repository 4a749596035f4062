// Process-wide settings, written while the library is loaded; a host may change the thread budget
// later, whatever calls run meanwhile.
#ifndef QV_QVACCELERATEDLIB_SETTINGS_H
#define QV_QVACCELERATEDLIB_SETTINGS_H

#include <atomic>

#include "dispatch/Hidden.h"

namespace qv {

// How many bands an operation may be cut into: the number of CPUs that the process may use.
// Initially 1, never less.
extern QV_HIDDEN std::atomic<int> ThreadBudget;

// The budget of a call that the calling thread makes: ThreadBudget, or its own limit if that is
// lower. An operation asks once.
QV_HIDDEN int CallBudget();

// The limit of the calling thread; 0 for none. False if the system has no place for it.
QV_HIDDEN bool SetThreadLimit(int limit);

// What the host says of its processor: 0 keeps qvMergeAlphaOver on its plain path, anything else
// selects the accelerated one. Initially 0.
extern QV_HIDDEN unsigned HostProcessorInfo;

// How the bands of a call are shared. Only tests set it, to see every cut whatever the machine does
// meanwhile.
enum class Sharing {
  Measured,    // with threads for which it is worth it; without any, as one piece
  Always,      // with as many threads as there are bands, one band each at a time
  OnOneThread  // by the calling thread, one band after another
};
extern QV_HIDDEN Sharing BandSharing;

}  // namespace qv

#endif
