// qvtool convert: layouts, odd sizes, clips to pictures.
#include <gtest/gtest.h>

#include "Program.h"

namespace tooltest {
namespace {

std::string Size(std::size_t width, std::size_t height) {
  return " --size " + std::to_string(width) + "x" + std::to_string(height);
}

// Red of ITU-R BT.601 studio range: Y 81, Cb 90, Cr 240.
TEST(Convert, MakesRedOfEveryLayout) {
  Workplace place;
  const std::string red("\0\0\xfe\0\0\xfe\0\0\xfe\0\0\xfe", 12);
  for (const auto& [layout, bytes] :
       {std::pair("yuyv", "\x51\x5a\x51\xf0\x51\x5a\x51\xf0"), {"i420", "\x51\x51\x51\x51\x5a\xf0"},
        {"yv12", "\x51\x51\x51\x51\xf0\x5a"}, {"nv12", "\x51\x51\x51\x51\x5a\xf0"}})
    EXPECT_EQ(place.Run("convert - - --size 2x2 --layout " + std::string(layout), bytes).out, red)
        << layout;
}

// One picture in all layouts, of any size: the same pixels as BGR, and its planes again. An odd
// last column or row goes away, but for packed pixels as BGR.
TEST(Convert, FindsTheSamplesOfEveryLayout) {
  const std::pair<std::size_t, std::size_t> sizes[] = {{38, 20}, {37, 21}, {3, 3}};
  for (const auto& [width, height] : sizes) {
    const std::size_t half = (width + 1) / 2, low = (height + 1) / 2;
    const std::string y = Noise(width * height, 1), cb = Noise(half * low, 2),
                      cr = Noise(half * low, 3);
    std::string pairs, packed, planes[3];
    for (std::size_t i = 0; i < half * low; ++i) pairs += {cb[i], cr[i]};
    for (std::size_t v = 0; v < height; ++v)
      for (std::size_t u = 0; u < 2 * half; ++u) {
        const std::size_t place = v / 2 * half + u / 2;
        packed += {u < width ? y[v * width + u] : '\0', u % 2 ? cr[place] : cb[place]};
        if (u >= (width & ~1u) || v >= (height & ~1u)) continue;
        planes[0] += y[v * width + u];
        if (u % 2 || v % 2) continue;
        planes[1] += cb[place];
        planes[2] += cr[place];
      }
    Workplace place;
    const auto convert = [&, size = Size(width, height)](const char* from, const char* to,
                                                         const std::string& bytes) {
      return place.Run(std::string("convert - - --layout ") + from + " --to " + to + size, bytes);
    };
    const std::string bgr = convert("i420", "bgr", y + cb + cr).out;
    EXPECT_EQ(bgr.size(), planes[0].size() * 3);
    EXPECT_EQ(convert("yv12", "bgr", y + cr + cb).out, bgr);
    EXPECT_EQ(convert("nv12", "bgr", y + pairs).out, bgr);
    EXPECT_EQ(convert("yuyv", "bgr", packed).out.size(), width * height * 3);
    const std::string cbFirst = planes[0] + planes[1] + planes[2];
    const std::string crFirst = planes[0] + planes[2] + planes[1];
    for (const auto& [from, bytes] : {std::pair("nv12", y + pairs), {"yuyv", packed}}) {
      EXPECT_TRUE(convert(from, "i420", bytes).out == cbFirst) << from << width;
      EXPECT_TRUE(convert(from, "yv12", bytes).out == crFirst) << from << width;
    }
  }
}

TEST(Convert, MakesAClipIntoPicturesAndPackedFramesIntoAClip) {
  Workplace place;
  std::string clip = "YUV4MPEG2 W6 H4 C420jpeg F25:1\n";
  for (unsigned i = 1; i < 4; ++i) clip += "FRAME\n" + Noise(36, i);
  ASSERT_EQ(place.Run("convert - frame-%02d.png", clip).exitCode, 0);
  EXPECT_EQ(place.Files(),
            (std::vector<std::string>{"frame-01.png", "frame-02.png", "frame-03.png"}));
  for (unsigned i = 1; i < 4; ++i)
    EXPECT_TRUE(place.Run("copy frame-0" + std::to_string(i) + ".png - --format raw").out ==
                place.Run("convert - - --layout i420 --size 6x4", Noise(36, i)).out);

  const std::string packed = Noise(48, 5);
  const std::string planes =
      place.Run("convert - - --to i420 --layout yuyv --size 6x4", packed).out;
  const Outcome outcome = place.Run(
      "convert - - --format y4m --to i420 --layout yuyv --size 6x4 --rate 30:1", packed + packed);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_TRUE(outcome.out.ends_with("FRAME\n" + planes + "FRAME\n" + planes));
  EXPECT_TRUE(outcome.out.starts_with("YUV4MPEG2 W6 H4 F30:1"));
}

}  // namespace
}  // namespace tooltest
