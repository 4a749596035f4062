// The built levels, and how a test makes the library run one of them.
#ifndef QV_SUPPORT_LEVELS_H
#define QV_SUPPORT_LEVELS_H

#include <vector>

#include "qvAcceleratedLib/Settings.h"

namespace qv::test {

struct Level {
  const char* name;
  int variantIndex;
  int wideLevel;
  int carrylessLevel;
};

// All levels that this processor can run, the plain one first.
const std::vector<Level>& AvailableLevels();

// All levels that are built.
const std::vector<Level>& BuiltLevels();

// Makes the kernels run at a level, and puts the old one back at the end of the scope.
class UseLevel {
 public:
  explicit UseLevel(const Level& level);
  ~UseLevel();
  UseLevel(const UseLevel&) = delete;
  UseLevel& operator=(const UseLevel&) = delete;

 private:
  Level old_;
};

// Sets ThreadBudget for a scope, and has every call cut and shared accordingly, however short it
// is.
class UseBudget {
 public:
  explicit UseBudget(int budget, Sharing sharing = Sharing::Always);
  ~UseBudget();
  UseBudget(const UseBudget&) = delete;
  UseBudget& operator=(const UseBudget&) = delete;

 private:
  const int old_;
  const Sharing oldSharing_;
};

}  // namespace qv::test

#endif
