// Chains of sub-commands, many files in one go, and what they make of what a stream says of itself.
#include <gtest/gtest.h>

#include <algorithm>

#include "Program.h"

namespace tooltest {
namespace {

// The bytes of every step by itself, also for frames that steps hand on in place, and with a name
// that has a blank and a semicolon.
TEST(Run, IsItsStepsOneAfterTheOther) {
  Workplace place;
  ASSERT_EQ(place.Run("fill 'a logo;1.png' --size 3x2 --colour 9").exitCode, 0);
  std::string clip = "YUV4MPEG2 W12 H8 F25:1 It A1:1 C420jpeg\n";
  for (unsigned i = 0; i < 5; ++i) clip += "FRAME\n" + Noise(12 * 8 * 3 / 2, i);
  const std::string first = place.Run("crop 2,2,8,6 - -", clip).out;
  const std::string second = place.Run("scale - - --by 200", first).out;
  const std::string third = place.Run("convert - - --to i444", second).out;
  const std::string fourth = place.Run("resize - - --to 13x7", third).out;
  const std::string last =
      place.Run("overlay - - --at 5,-1 --with 'a logo;1.png'", fourth).out;
  ASSERT_GT(last.size(), 5 * 13 * 7 * 3u);
  const std::string steps = " crop 2,2,8,6;;scale --by 200; convert --to i444; resize --to 13x7;";
  for (const std::string name : {R"("a logo;1.png")", R"('a logo;1.png')", R"(a\ logo\;1.png)"}) {
    const std::string chain = steps + "overlay --with " + name + " --at '5',-1";
    const Outcome outcome = place.Run(Arguments{"run", chain, "-", "-"}, clip);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_TRUE(outcome.out == last) << name;
  }
}

// The pictures that single calls write, whatever the number of files at once; what fails leaves the
// others alone.
TEST(ManyFiles, AreWrittenIntoAFolder) {
  Workplace place;
  Arguments all{"run", "mirror; resize --factor 2", "--out", "new/many", "--jobs", ""};
  std::vector<std::string> expected;
  for (const std::string name : {"a.png", "b c.png", "d.jpg", "e.png", "f.png", "g.png"}) {
    const std::string noise = Noise(31 * 9 * 3, static_cast<unsigned>(name[0]));
    ASSERT_EQ(place.Run(Arguments{"copy", "-", name, "--layout", "bgr", "--size", "31x9"}, noise)
                  .exitCode, 0);
    ASSERT_EQ(place.Run(Arguments{"run", all[1], name, "one." + name}).exitCode, 0);
    expected.push_back(place.Read("one." + name));
    all.push_back(name);
  }
  place.Write("f.png", "damaged");
  all.push_back("nothing.png");
  for (const std::string jobs : {"0", "1", "3", "99"}) {
    all[5] = jobs;
    const Outcome outcome = place.Run(all);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 2) << outcome.err;
    EXPECT_NE(outcome.err.find("qvtool: f.png: "), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("qvtool: nothing.png: "), std::string::npos) << outcome.err;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const std::string name = "new/many/" + all[6 + i];
      EXPECT_TRUE(place.Read(name) == (i == 4 ? "" : expected[i])) << name;
    }
    std::filesystem::remove_all(place.Path("new"));
  }
  EXPECT_EQ(place.Run("copy a.png d.jpg --out new --format jpeg").exitCode, 0);
  EXPECT_EQ(place.Read("new/a.jpg").substr(0, 3), place.Read("new/d.jpg").substr(0, 3));
}

TEST(Fields, FollowTheOperation) {
  const struct {
    const char *steps, *before, *after;
  } cases[] = {
      {"deinterlace", "It A1:1", "Ip A1:1"},
      {"deinterlace", "I?", "Ip"},
      {"mirror", "It", "It"},
      {"mirror --axis both", "It", "Ib"},
      {"crop 0,1,4,3; mirror --axis top-bottom", "It", "Ib"},
      {"crop 0,1,4,2", "Ib", "It"},
      {"copy --region 0,1,4,2", "Im", "Im"},
      {"resize --to 8x2", "A16:15", "A4:15"},
      {"resize --to 3x3 --region 0,0,2,3", "A0:0", "A0:0"},
      {"resize --to 4x3 --region 0,0,2,3", "A1:1", "A1:2"},
      {"rotate --angle -270 --fit", "It A16:15", "I? A15:16"},
      {"rotate --angle 180", "It A16:15", "Ib A16:15"},
      {"rotate --angle 7; rotate --angle 360", "Ip A16:15", "Ip A16:15"},
      {"resize --factor 2; deinterlace; rotate --angle 90; resize --to 8x4", "Ib A2:1",
       "Ip A1:4"},
  };
  for (const auto& test : cases) {
    Workplace place;
    const std::string head = "YUV4MPEG2 W4 H4 F25:1 ", end = " C444\n";
    const Outcome outcome = place.Run(Arguments{"run", test.steps, "-", "-"},
                                      head + test.before + end + "FRAME\n" + Noise(48, 1));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_NE(outcome.out.find(std::string(" F25:1 ") + test.after + end), std::string::npos)
        << test.steps << ": " << outcome.out.substr(0, outcome.out.find('\n'));
  }
}

}  // namespace
}  // namespace tooltest
