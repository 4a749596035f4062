#include "support/Levels.h"

#include <algorithm>

#include "dispatch/Levels.h"
#include "dispatch/VariantIndex.h"
#include "qvAcceleratedLib/BandTeam.h"
#include "qvAcceleratedLib/FloatEnvironment.h"
#include "qvAcceleratedLib/Settings.h"
#include "qvAcceleratedLib/Startup.h"

namespace qv::test {

namespace {

void Set(const Level& level) {
  VariantIndex = level.variantIndex;
  WideLevel = level.wideLevel;
  CarrylessLevel = level.carrylessLevel;
}

Level Machine() {
#if defined(_WIN32)
  LibraryStartup();  // on Windows the loader of the DLL would have called them
  PrepareTeam();
#endif
  return {"machine", VariantIndex, WideLevel, CarrylessLevel};
}

// What start-up found, before any test changed it.
const Level kMachine = Machine();

// Tests call kernels and planning directly, where the operations would have set this.
const FloatEnvironment kEnvironment;

}  // namespace

const std::vector<Level>& BuiltLevels() {
  static const std::vector<Level> levels = [] {
    std::vector<Level> built;
    for (const LevelInfo& level : kLevels) {
      if (!BuiltLevelSet().Has(level.id)) continue;
      // A level uses no carry-less multiplication that the machine or the level lacks.
      built.push_back({level.name, level.slot, level.wide,
                       std::min(CarrylessLevelFor(level), kMachine.carrylessLevel)});
    }
    return built;
  }();
  return levels;
}

const std::vector<Level>& AvailableLevels() {
  static const std::vector<Level> levels = [] {
    std::vector<Level> available;
    for (const Level& level : BuiltLevels())
      if (level.variantIndex <= kMachine.variantIndex && level.wideLevel <= kMachine.wideLevel)
        available.push_back(level);
    return available;
  }();
  return levels;
}

UseLevel::UseLevel(const Level& level)
    : old_{"", VariantIndex, WideLevel, CarrylessLevel} {
  Set(level);
}

UseLevel::~UseLevel() { Set(old_); }

UseBudget::UseBudget(int budget, Sharing sharing) : old_(ThreadBudget), oldSharing_(BandSharing) {
  ThreadBudget = budget;
  BandSharing = sharing;
}

UseBudget::~UseBudget() {
  ThreadBudget = old_;
  BandSharing = oldSharing_;
}

}  // namespace qv::test
