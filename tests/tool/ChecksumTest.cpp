// qvtool checksum: values, forms of lines, pieces from pipes, lists to check.
#include <gtest/gtest.h>

#include "Program.h"

namespace tooltest {
namespace {

TEST(ChecksumCommand, PrintsALineForEachFile) {
  Workplace place;
  place.Write("digits", "123456789");
  place.Write("a b", "Wikipedia");
  place.Write("empty", "");
  const std::string pieces(3000001, 'a');  // longer than one piece, and not a multiple of it
  place.Write("pieces", pieces);
  const struct {
    Arguments arguments;
    std::string input;
    const char* expected;
  } cases[] = {
      {{"checksum", "digits", "empty"}, "", "cbf43926  digits\n00000000  empty\n"},
      {{"checksum", "--algorithm", "adler32", "a b", "empty"}, "",
       "11e60398  a b\n00000001  empty\n"},
      {{"checksum", "--tag", "digits"}, "", "CRC32 (digits) = cbf43926\n"},
      {{"checksum"}, "123456789", "cbf43926  -\n"},
      {{"checksum", "pieces", "-"}, pieces, "a8b40752  pieces\na8b40752  -\n"},
      {{"checksum", "--algorithm", "adler32", "pieces", "-"}, pieces,
       "32255359  pieces\n32255359  -\n"},
      {{"checksum", "--tag", "--algorithm", "adler32", "-"}, "abc", "ADLER32 (-) = 024d0127\n"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = place.Run(c.arguments, c.input);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.out, c.expected);
  }
}

// What cannot be read is said, and leaves its mark in the exit code alone.
TEST(ChecksumCommand, TakesFoldersAndGoesOn) {
  Workplace place;
  std::filesystem::create_directories(place.Path("folder/sub"));
  place.Write("folder/b", "123456789");
  place.Write("folder/sub/a", "");
  place.Write("last", "123456789");
  const std::string list = "cbf43926  folder/b\n00000000  folder/sub/a\n";
  EXPECT_EQ(place.Run("checksum folder").out, list);
  Outcome outcome = place.Run("checksum folder nothing last");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out, list + "cbf43926  last\n");
  EXPECT_EQ(outcome.err, "qvtool: nothing: cannot open: No such file or directory\n");
  outcome = place.Run("checksum --check", "cbf43926  nothing\ncbf43926  last\n");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out, "nothing: FAILED open or read\nlast: OK\n");
}

TEST(ChecksumCommand, ChecksItsOwnLists) {
  Workplace place;
  place.Write("one", Noise(1000, 1));
  place.Write("two (2)", Noise(2000, 2));
  std::string list = place.Run(Arguments{"checksum", "one", "two (2)"}).out;
  list += place.Run(Arguments{"checksum", "--tag", "--algorithm", "adler32", "one", "two (2)"}).out;
  place.Write("list", list);
  Outcome outcome = place.Run("checksum --check list");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "one: OK\ntwo (2): OK\none: OK\ntwo (2): OK\n");

  place.Write("one", Noise(1000, 3));
  outcome = place.Run("checksum --check", list);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out, "one: FAILED\ntwo (2): OK\none: FAILED\ntwo (2): OK\n");
  EXPECT_EQ(outcome.err, "qvtool: 2 of 4 checksums do not match\n");
}

}  // namespace
}  // namespace tooltest
