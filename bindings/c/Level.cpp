// The level that calls run at, and how a host lowers it.
#include <string.h>

#include <atomic>

#include "dispatch/Levels.h"
#include "dispatch/ProcessorInfo.h"
#include "dispatch/VariantIndex.h"
#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/qv.h"

using namespace qv;

namespace {

LevelId LevelNow() {
  return ServingLevel(BuiltLevelSet(), Current(VariantIndex), Current(WideLevel));
}

void Lower(int* value, int most) {
  if (Current(*value) > most) __atomic_store_n(value, most, __ATOMIC_RELAXED);
}

// Held by the call that changes the level or writes the list of levels.
constinit std::atomic_flag busy;

struct Hold {
  Hold() {
    while (busy.test_and_set(std::memory_order_acquire)) {
    }
  }
  ~Hold() { busy.clear(std::memory_order_release); }
};

#define QV_LEVEL_NAME(name, slot, wide, argument) #name " "
char list[sizeof QV_EACH_LEVEL(QV_LEVEL_NAME, )];  // room for all, and empty
#undef QV_LEVEL_NAME

}  // namespace

const char* qv_level() { return InfoOf(LevelNow()).name; }

const char* qv_levels() {
  const Hold hold;
  if (list[0]) return list;
  const CpuidLeaves leaves = ReadCpuidLeaves();
  const int slot = VariantIndexOf(DetectCpuCode(leaves)), wide = WideLevelOf(leaves);
  for (const LevelInfo& level : kLevels) {
    if (!BuiltLevelSet().Has(level.id) || level.slot > slot || level.wide > wide) continue;
    if (list[0]) strcat(list, " ");
    strcat(list, level.name);
  }
  return list;
}

int qv_set_level(const char* level) {
  if (!level) return QV_STATUS_NULL_PTR_ERR;
  for (const LevelInfo& wanted : kLevels) {
    if (strcmp(wanted.name, level) != 0) continue;
    if (!BuiltLevelSet().Has(wanted.id)) break;
    const Hold hold;
    if (wanted.id > LevelNow()) break;
    Lower(&VariantIndex, wanted.slot);
    Lower(&WideLevel, wanted.wide);
    Lower(&CarrylessLevel, CarrylessLevelFor(wanted));
    return QV_STATUS_OK;
  }
  return QV_STATUS_OUT_OF_RANGE_ERR;
}
