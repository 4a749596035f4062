// What tests of the public interface expect whatever the type, the level and the number of bands.
#ifndef QV_TESTS_SUPPORT_STATUSES_H
#define QV_TESTS_SUPPORT_STATUSES_H

#include <gtest/gtest.h>

#include <functional>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Levels.h"

namespace qv::test {

// For operations that do not look at their type.
constexpr auto kAnyType = static_cast<CqvAccLib::qvDataType>(12345);

// Runs a test body at every level on one band, and on several.
inline void AtLevelsAndBudgets(const std::function<void()>& body) {
  for (const Level& level : AvailableLevels())
    for (const int budget : {1, 2, 7}) {
      const UseLevel useLevel(level);
      const UseBudget useBudget(budget);
      SCOPED_TRACE(testing::Message() << level.name << ", budget " << budget);
      body();
    }
}

}  // namespace qv::test

#endif
