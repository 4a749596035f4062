// The demo's page and pictures; check_page.sh looks at them in a browser.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "Program.h"
#include "qvAcceleratedLib/Operations.h"

namespace tooltest {
namespace {

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

// The functions that C has and the class has not, as the header declares them.
std::vector<std::string> BeyondTheClass() {
  std::ifstream file(QV_HEADER);
  const std::string header{std::istreambuf_iterator<char>(file), {}};
  std::vector<std::string> names;
  const std::string mark = "QV_API(int) ";
  for (std::size_t at = header.find("---- Beyond the class");
       (at = header.find(mark, at)) != std::string::npos;) {
    at += mark.size();
    names.push_back(header.substr(at, header.find('(', at) - at));
  }
  return names;
}

// `small`: the frame is too small for some operations.
void CheckPage(const Workplace& place, bool small = false) {
  const std::string page = place.Read("out/index.html");
  EXPECT_LT(page.size(), 3000000u);
  // Pictures are inside, and nothing is fetched; one that is shown again refers to the first.
  const std::size_t figures = Count(page, "<figure"), again = Count(page, " data-same=\"");
  EXPECT_GE(figures, 50u);
  EXPECT_EQ(Count(page, " src="), figures - again);
  // The first bytes of the formats, in base 64.
  EXPECT_EQ(Count(page, " src=\"data:image/png;base64,iVBORw0KGgo") +
                Count(page, " src=\"data:image/jpeg;base64,/9j/"),
            figures - again);
  EXPECT_EQ(Count(page, " alt=\"\""), 1u) << "that of the enlarged picture, which is set later";
  for (const char* outside : {"http:", "https:", "@import", "url("})
    EXPECT_EQ(Count(page, outside), 0u) << outside;
  std::vector<std::string> names = BeyondTheClass();
  EXPECT_GE(names.size(), 8u);
  for (const auto& operation : qv::kOperations) names.push_back(operation.name);
  std::size_t shown = 0;
  for (const std::string& name : names) {
    const bool isShown = Count(page, name + "(") > 0;
    EXPECT_TRUE(isShown || small) << name;
    shown += isShown;
  }
  EXPECT_GE(shown, 14u);
  EXPECT_GE(Count(page, "<tr><th scope"), Count(page, "<article"));
  EXPECT_LT(page.rfind("</article>"), page.find("<table>"));
}

TEST(Demo, ShowsTheTestCard) {
  Workplace place;
  const Outcome outcome = place.Run("demo out --pictures");
  ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
  CheckPage(place);
  // The pictures are those of the operations: the mirrored frame, mirrored, is the frame.
  ASSERT_EQ(place.Run("mirror out/mirror-both-after.png back.png --axis both").exitCode, 0);
  EXPECT_TRUE(place.Run("copy back.png - --format raw").out ==
              place.Run("copy out/frame.png - --format raw").out);
}

TEST(Demo, ShowsTheUsersOwnFrames) {
  const struct {
    std::string name, make, input;
  } cases[] = {
      // As many bytes as a page can have: no picture of noise can be made small.
      {"noise.png", "copy - noise.png --layout bgr --size 800x700", Noise(800 * 700 * 3, 2)},
      {"photo.jpg", "copy - photo.jpg --layout bgr --size 61x43", Noise(61 * 43 * 3, 2)},
      {"tiny.png", "fill tiny.png --layout grey --size 1x1 --colour 9", ""},
      {"tall.png", "fill tall.png --size 3x4000 --colour 9", ""},
      {"clip.y4m", "copy - clip.y4m",
       "YUV4MPEG2 W9 H5 C420\nFRAME\n" + Noise(75, 3) + "FRAME\n" + Noise(75, 4)},
  };
  for (const auto& c : cases) {
    Workplace place;
    ASSERT_EQ(place.Run(c.make, c.input).exitCode, 0);
    const Outcome outcome = place.Run("demo out --input " + c.name);
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    CheckPage(place, c.name == "tiny.png");
    EXPECT_NE(place.Read("out/index.html").find(c.name), std::string::npos);
  }
}

}  // namespace
}  // namespace tooltest
