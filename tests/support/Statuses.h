// What tests of the public interface ask of statuses: whatever the level and the number of bands.
#ifndef QV_TESTS_SUPPORT_STATUSES_H
#define QV_TESTS_SUPPORT_STATUSES_H

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <tuple>
#include <type_traits>
#include <utility>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Bytes.h"
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

// Tests of refusals, with a pointer that nothing may be written to and one that is null.
class Refusals : public testing::Test {
 protected:
  using Byte = unsigned char;
  ~Refusals() override { EXPECT_TRUE(image_ == Bytes(image_.size(), 5)); }

 private:
  Bytes image_ = Bytes(40000, 5);

 protected:
  Byte* const p = image_.data();
  Byte* const null = nullptr;
};

// The first fault in the documented order decides, whatever else is wrong: each case has the faults
// that would come later, too.
template <class... Arguments>
void ExpectStatuses(
    const std::function<IppStatus(Arguments...)>& call,
    std::initializer_list<std::pair<IppStatus, std::tuple<std::type_identity_t<Arguments>...>>>
        cases) {
  AtLevelsAndBudgets([&] {
    int number = 0;
    for (const auto& [expected, arguments] : cases)
      EXPECT_EQ(std::apply(call, arguments), expected) << "case " << number++;
  });
}

}  // namespace qv::test

#endif
