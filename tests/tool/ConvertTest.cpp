// qvtool convert: layouts, odd sizes, clips to pictures.
#include <gtest/gtest.h>

#include <algorithm>

#include "Program.h"

namespace tooltest {
namespace {

std::string Size(std::size_t width, std::size_t height) {
  return " --size " + std::to_string(width) + "x" + std::to_string(height);
}

// Red of ITU-R BT.601 studio range: Y 81, Cb 90, Cr 240.
TEST(Convert, MakesRedOfEveryLayoutByTheClass) {
  Workplace place;
  const std::string red("\0\0\xfe\0\0\xfe\0\0\xfe\0\0\xfe", 12);
  for (const auto& [layout, bytes] :
       {std::pair("yuyv", "\x51\x5a\x51\xf0\x51\x5a\x51\xf0"), {"i420", "\x51\x51\x51\x51\x5a\xf0"},
        {"yv12", "\x51\x51\x51\x51\xf0\x5a"}, {"nv12", "\x51\x51\x51\x51\x5a\xf0"}})
    EXPECT_EQ(
        place.Run("convert - - --exact-api --size 2x2 --layout " + std::string(layout), bytes).out,
        red)
        << layout;
}

// Red and white in Y, Cb, Cr by ITU-R BT.601, BT.709 and BT.2020, and what streams say of them.
TEST(Convert, FollowsMatrixAndRange) {
  const struct {
    const char* size;
    const char* said;
    const char* red;
    const char* white;
  } cases[] = {
      {"1x1", "", "\x51\x5a\xf0", "\xeb\x80\x80"},
      {"1x719", "", "\x51\x5a\xf0", "\xeb\x80\x80"},
      {"1x720", "", "\x3f\x66\xf0", "\xeb\x80\x80"},
      {"1x720", " --matrix BT601", "\x51\x5a\xf0", "\xeb\x80\x80"},
      {"1x1", " --matrix bt2020", "\x4a\x61\xf0", "\xeb\x80\x80"},
      {"1x1", " --range full", "\x4c\x55\xff", "\xff\x80\x80"},
      {"1x1", " --range full --matrix bt709", "\x36\x63\xff", "\xff\x80\x80"},
  };
  for (const auto& c : cases) {
    Workplace place;
    const std::string size = std::string(" --size ") + c.size;
    for (const auto& [colour, samples] : {std::pair("#ff0000", c.red), {"#ffffff", c.white}}) {
      const std::string picture = place.Run(std::string("fill - --colour ") + colour + size).out;
      for (const std::string& made :
           {place.Run("fill - --layout i444 --colour " + std::string(colour) + size + c.said).out,
            place.Run("convert - - --layout bgr --to i444" + size + c.said, picture).out}) {
        ASSERT_EQ(made.size(), picture.size());
        const std::size_t plane = made.size() / 3;
        for (std::size_t i = 0; i < 3; ++i)
          EXPECT_NEAR(Byte(made, i * plane), Byte(samples, i), 1) << c.said << c.size;
        const std::string back = place.Run("convert - - --layout i444" + size + c.said, made).out;
        for (std::size_t i = 0; i < 3; ++i)
          EXPECT_NEAR(Byte(back, i), Byte(picture, i), 2) << c.said << c.size;
      }
    }
  }
}

TEST(Convert, KeepsTheRangeThatAStreamStates) {
  Workplace place;
  const std::string start = "YUV4MPEG2 W2 H1 F25:1 C444 XCOLORRANGE=";
  const std::string full = start + "FULL\nFRAME\n\xff\xff\x80\x80\x80\x80";
  const std::string studio = start + "LIMITED\nFRAME\n\xeb\xeb\x80\x80\x80\x80";
  EXPECT_EQ(place.Run("convert - - --format raw", full).out, std::string(6, '\xff'));
  EXPECT_EQ(place.Run("convert - - --format raw", studio).out, std::string(6, '\xff'));
  EXPECT_EQ(place.Run("fill - - --colour #ffffff", full).out, full);
  EXPECT_EQ(place.Run("copy - - --to-range studio", full).out, studio);
  EXPECT_EQ(place.Run("copy - - --to-range full", studio).out, full);
  // The matrix is nowhere stated.
  const Outcome outcome = place.Run("copy - - --verbose", studio + "FRAME\nabcdef");
  EXPECT_EQ(outcome.err,
            "qvtool: standard input: taken for BT.601, studio range; --matrix and --range say "
            "otherwise\n");
  EXPECT_EQ(place.Run("copy - - --verbose --matrix bt601", studio).err, "");
}

// One picture in all layouts, of any size: the same pixels as BGR, and its planes again. The
// class's conversions leave out an odd last column or row, but for packed pixels as BGR.
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
        packed += {y[v * width + std::min(u, width - 1)], u % 2 ? cr[place] : cb[place]};
        if (u >= (width & ~1u) || v >= (height & ~1u)) continue;
        planes[0] += y[v * width + u];
        if (u % 2 || v % 2) continue;
        planes[1] += cb[place];
        planes[2] += cr[place];
      }
    Workplace place;
    std::string more = Size(width, height);
    const auto convert = [&](const char* from, const char* to, const std::string& bytes) {
      return place.Run(std::string("convert - - --layout ") + from + " --to " + to + more, bytes);
    };
    std::string bgr = convert("i420", "bgr", y + cb + cr).out, swapped = pairs;
    for (std::size_t i = 0; i < pairs.size(); ++i) swapped[i] = pairs[i ^ 1];
    EXPECT_EQ(bgr.size(), width * height * 3);
    EXPECT_TRUE(convert("yv12", "bgr", y + cr + cb).out == bgr);
    EXPECT_TRUE(convert("nv12", "bgr", y + pairs).out == bgr);
    EXPECT_TRUE(convert("nv21", "bgr", y + swapped).out == bgr);
    EXPECT_TRUE(convert("nv12", "i420", y + pairs).out == y + cb + cr);
    EXPECT_TRUE(convert("yv12", "nv21", y + cr + cb).out == y + swapped);
    const std::string uyvy = convert("yuyv", "uyvy", packed).out;
    const std::string i422 = convert("uyvy", "i422", uyvy).out;
    EXPECT_TRUE(convert("i422", "yuyv", i422).out == packed);
    EXPECT_TRUE(convert("uyvy", "bgr", uyvy).out == convert("i422", "bgr", i422).out);

    more += " --exact-api";
    bgr = convert("i420", "bgr", y + cb + cr).out;
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
                place.Run("convert - - --layout i420 --size 6x4 --siting centre", Noise(36, i))
                    .out);

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
