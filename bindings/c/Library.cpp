// What a host asks of the library itself.
#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/Settings.h"
#include "qvAcceleratedLib/qv.h"

using namespace qv;

const char* qv_version() { return QVACCELERATEDLIB_VERSION; }

int qv_threads() { return ThreadBudget.load(std::memory_order_relaxed); }

int qv_set_threads(int threads) {
  if (threads < 1 || threads > QV_MOST_THREADS) return QV_STATUS_OUT_OF_RANGE_ERR;
  ThreadBudget.store(threads, std::memory_order_relaxed);
  return QV_STATUS_OK;
}

int qv_set_thread_limit(int threads) {
  if (threads < 0) return QV_STATUS_OUT_OF_RANGE_ERR;
  const int limit = threads < QV_MOST_THREADS ? threads : QV_MOST_THREADS;
  return SetThreadLimit(limit) ? QV_STATUS_OK : QV_STATUS_MEM_ALLOC_ERR;
}
