// The demo's page and pictures; check_page.sh looks at them in a browser.
#include <gtest/gtest.h>

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

std::string Attribute(const std::string& page, const std::string& name, std::size_t& at) {
  at = page.find(" " + name + "=\"", at);
  if (at == std::string::npos) return "";
  at += name.size() + 3;
  return page.substr(at, page.find('"', at) - at);
}

// `small`: the frame is too small for some operations.
void CheckPage(const Workplace& place, bool small = false) {
  const std::string page = place.Read("out/index.html");
  // Pictures are inside, nothing is fetched, every picture has its file.
  const std::size_t figures = Count(page, "<figure>");
  EXPECT_GE(figures, 28u);
  EXPECT_EQ(Count(page, " src=\"data:image/"), figures);
  EXPECT_EQ(Count(page, " src="), figures);
  // The first bytes of the formats, in base 64.
  EXPECT_EQ(Count(page, " src=\"data:image/png;base64,iVBORw0KGgo") +
                Count(page, " src=\"data:image/jpeg;base64,/9j/"),
            figures);
  for (const char* outside : {"http:", "https:", "@import", "url("})
    EXPECT_EQ(Count(page, outside), 0u) << outside;
  for (std::size_t at = 0;;) {
    const std::string file = Attribute(page, "data-file", at);
    if (at == std::string::npos) break;
    EXPECT_EQ(place.Read("out/" + file).substr(1, 3), "PNG") << file;
  }
  std::size_t shown = 0;
  for (const auto& operation : qv::kOperations) {
    const bool isShown = Count(page, operation.name + std::string("(")) > 0;
    EXPECT_TRUE(isShown || small) << operation.name;
    shown += isShown;
  }
  EXPECT_GE(shown, 14u);
  EXPECT_EQ(Count(page, "</b> ms<"), Count(page, "<article"));
}

TEST(Demo, ShowsTheTestCard) {
  Workplace place;
  const Outcome outcome = place.Run("demo out");
  ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
  CheckPage(place);
  // The pictures are those of the operations: the mirrored frame, mirrored, is the frame.
  ASSERT_EQ(place.Run("mirror out/mirror-both-after.png back.png --axis both").exitCode, 0);
  EXPECT_TRUE(place.Run("copy back.png - --format raw").out ==
              place.Run("copy out/frame-colour.png - --format raw").out);
}

TEST(Demo, ShowsTheUsersOwnFrames) {
  const struct {
    std::string name, make, input;
  } cases[] = {
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
