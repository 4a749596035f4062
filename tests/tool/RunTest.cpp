// Chains of sub-commands, and what each makes of what a stream says of itself.
#include <gtest/gtest.h>

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
