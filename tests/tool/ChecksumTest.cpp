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
      {{"checksum", "--tag", "--algorithm", "adler32", "-"}, "abc", "ADLER32 (-) = 024d0127\n"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = place.Run(c.arguments, c.input);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.out, c.expected);
  }
}

// Longer than one piece, and not a multiple of it.
TEST(ChecksumCommand, OfALongInputIsTheSameFromFileAndPipe) {
  Workplace place;
  const std::string bytes = Noise(3000001, 5);
  place.Write("long", bytes);
  unsigned int crc = ~0u, a = 1, b = 0;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (crc & 1 ? 0xEDB88320u : 0);
    a = (a + byte) % 65521;
    b = (b + a) % 65521;
  }
  char expected[2][9];
  std::snprintf(expected[0], 9, "%08x", ~crc);
  std::snprintf(expected[1], 9, "%08x", b << 16 | a);
  const char* const names[] = {"crc32", "adler32"};
  for (int i = 0; i < 2; ++i) {
    const Arguments arguments = {"checksum", "--algorithm", names[i]};
    EXPECT_EQ(place.Run(arguments, bytes).out.substr(0, 8), expected[i]);
    Arguments ofFile = arguments;
    ofFile.push_back("long");
    EXPECT_EQ(place.Run(ofFile).out.substr(0, 8), expected[i]);
  }
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

TEST(ChecksumCommand, SaysWhatCannotBeDone) {
  Workplace place;
  place.Write("list", "cbf43926  list\nnot a line\n");
  const struct {
    Arguments arguments;
    int exitCode;
    const char* said;
  } cases[] = {
      {{"checksum", "nothing"}, 1, "nothing: cannot open"},
      {{"checksum", "."}, 1, "is a directory"},
      {{"checksum", "--algorithm", "md5", "list"}, 2, "crc32|adler32"},
      {{"checksum", "--check", "list"}, 1, "list: line 2:"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = place.Run(c.arguments);
    EXPECT_EQ(outcome.exitCode, c.exitCode);
    EXPECT_NE(outcome.err.find(c.said), std::string::npos) << outcome.err;
  }
}

}  // namespace
}  // namespace tooltest
