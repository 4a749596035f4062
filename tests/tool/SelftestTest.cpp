// qvtool selftest: its verdict, and that the digests it prints are those that it would have put
// into the tree.
#include <gtest/gtest.h>

#include "Program.h"

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
  int digests = 0;
  for (std::size_t at = 0, end; (end = outcome.out.find('\n', at)) != std::string::npos;
       at = end + 1) {
    if (end - at < 66 || outcome.out.compare(at + 64, 2, "  ") != 0) continue;
    ++digests;
    EXPECT_NE(print.find('"' + outcome.out.substr(at, 64) + '"'), std::string::npos);
  }
  EXPECT_EQ(digests, 24);  // 23 operations and all together
}

}  // namespace
}  // namespace tooltest
