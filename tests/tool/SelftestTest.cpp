// qvtool selftest: its verdict, and that the digests it prints are those that it would have put
// into the tree.
#include <gtest/gtest.h>

#include "Program.h"
#include "qvAcceleratedLib/Operations.h"

namespace tooltest {
namespace {

TEST(SelftestCommand, MatchesTheReferenceDigests) {
  const Workplace place;
  const Outcome outcome = place.Run("selftest");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("all processors: matches the reference digests\n"), std::string::npos)
      << outcome.out;
  EXPECT_NE(outcome.out.find("one processor: matches the reference digests\n"), std::string::npos);
  const std::string print = place.Run("selftest --print").out;
  for (const auto& operation : qv::kOperations) {
    const std::size_t end = outcome.out.find(std::string("  ") + operation.name + ", ");
    ASSERT_TRUE(end >= 64 && end != std::string::npos) << operation.name;
    EXPECT_NE(print.find('"' + outcome.out.substr(end - 64, 64) + '"'), std::string::npos);
  }
}

}  // namespace
}  // namespace tooltest
