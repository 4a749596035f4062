// The self-test's calls at every level and budget; its digest; its verdict.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "qvAcceleratedLib/Settings.h"
#include "support/Levels.h"
#include "tools/selftest/Calls.h"
#include "tools/selftest/Sha256.h"

namespace qv::test {
namespace {

TEST(Selftest, DigestOfExamples) {  // FIPS 180-4's own, and the lengths around a block's end
  const struct {
    std::string text;
    const char* digest;
  } cases[] = {
      {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
      {std::string(1000000, 'a'),
       "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
  };
  for (const auto& c : cases) {
    selftest::Sha256 sha;
    sha.Add(c.text.data(), c.text.size());
    char digest[65];
    sha.Finish(digest);
    EXPECT_STREQ(digest, c.digest);
  }
}

std::string Differing(const selftest::Results& results) {
  std::string names;
  ForEachDiffering(results, [&](Op op) { names += std::string(NameOf(op)) + " "; });
  return names;
}

selftest::Results MakeCalls() {
  selftest::Results results;
  selftest::MakeCalls(&results);
  return results;
}

TEST(Selftest, SameAtEveryLevelAndBudget) {
  for (const Level& level : AvailableLevels())
    for (const int budget : {1, 2, 3, 7}) {
      const UseLevel useLevel(level);
      const UseBudget useBudget(budget);
      EXPECT_EQ(Differing(MakeCalls()), "") << level.name << ", budget " << budget;
    }
}

// A failure on path 0 prints the digest that belongs below the list in Calls.cpp.
TEST(Selftest, KnowsBothPathsOfTheMerge) {
  const unsigned old = HostProcessorInfo;
  std::set<std::string> digests;
  for (const unsigned path : {0u, 1u}) {
    HostProcessorInfo = path;
    const selftest::Results results = MakeCalls();
    const char* const merge = results.of[static_cast<int>(Op::qvMergeAlphaOver)].digest;
    digests.insert(merge);
    EXPECT_EQ(Differing(results), "") << path << ": " << merge;
  }
  HostProcessorInfo = old;
  EXPECT_EQ(digests.size(), 2u);
}

// An operation of the roll without a call, or with another digest, is named.
TEST(Selftest, NamesTheOperationThatDiffers) {
  selftest::Results results = MakeCalls();
  results.of[3].digest[5] ^= 1;
  results.of[5] = {};
  EXPECT_EQ(Differing(results),
            std::string(kOperations[3].name) + " " + kOperations[5].name + " ");
}

}  // namespace
}  // namespace qv::test
