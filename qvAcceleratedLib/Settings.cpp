#include "qvAcceleratedLib/Settings.h"

#include "qvAcceleratedLib/Threads.h"

namespace qv {

constinit std::atomic<int> ThreadBudget = 1;
unsigned HostProcessorInfo = 0;
Sharing BandSharing = Sharing::Measured;

namespace {
// Most processes never ask for a limit, and are spared looking for one.
constinit std::atomic<bool> anyLimit = false;
}  // namespace

int CallBudget() {
  const int budget = ThreadBudget.load(std::memory_order_relaxed);
  if (!anyLimit.load(std::memory_order_relaxed)) return budget;
  const int limit = ThreadNumber();
  return limit > 0 && limit < budget ? limit : budget;
}

bool SetThreadLimit(int limit) {
  if (limit > 0) anyLimit.store(true, std::memory_order_relaxed);
  SetThreadNumber(limit);
  return ThreadNumber() == limit;
}

}  // namespace qv
