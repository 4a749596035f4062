// qvtool convert: layouts, odd sizes, clips to pictures, what it refuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "Program.h"

namespace tooltest {
namespace {

unsigned char ToByte(int sum) { return static_cast<unsigned char>(std::clamp(sum >> 16, 0, 255)); }

void AddPacked(std::string& bgr, int y, int cb, int cr) {
  bgr += static_cast<char>(ToByte(76284 * y + 132186 * cb - 18140365));
  bgr += static_cast<char>(ToByte(76284 * y - 53281 * cr - 25690 * cb + 8887730));
  bgr += static_cast<char>(ToByte(76284 * y + 104595 * cr - 14608761));
}

void AddPlanar(std::string& bgr, int y, int cb, int cr) {
  const int luma = 76284 * y - 1187776, u = cb - 128, v = cr - 128;
  bgr += static_cast<char>(ToByte(luma + 132186 * u));
  bgr += static_cast<char>(ToByte(luma - 25690 * u - 53281 * v));
  bgr += static_cast<char>(ToByte(luma + 104595 * v));
}

// A frame of width x height pixels in any layout that can be converted: where its samples lie.
struct Source {
  std::string bytes;
  int width, height;
  std::string layout;

  int Luma(int x, int y) const {
    return layout == "yuyv" ? At(y * 4 * HalfWidth() + 2 * x) : At(y * width + x);
  }
  int Cb(int x, int y) const { return Chroma(x, y, 0); }
  int Cr(int x, int y) const { return Chroma(x, y, 1); }

 private:
  int HalfWidth() const { return (width + 1) / 2; }
  int At(int index) const { return Byte(bytes, static_cast<std::size_t>(index)); }
  int Chroma(int x, int y, int which) const {
    if (layout == "yuyv") return At(y * 4 * HalfWidth() + x / 2 * 4 + 1 + 2 * which);
    const int place = y / 2 * HalfWidth() + x / 2;
    if (layout == "nv12") return At(width * height + 2 * place + which);
    if (layout == "yv12") which = 1 - which;
    return At(width * height + which * HalfWidth() * ((height + 1) / 2) + place);
  }
};

Source MakeSource(const std::string& layout, int width, int height) {
  const int half = (width + 1) / 2;
  const int bytes = layout == "yuyv" ? 4 * half * height
                                     : width * height + 2 * half * ((height + 1) / 2);
  return {Noise(static_cast<std::size_t>(bytes), 5), width, height, layout};
}

std::string ExpectedBgr(const Source& s) {
  std::string bgr;
  if (s.layout == "yuyv") {
    for (int y = 0; y < s.height; ++y)
      for (int x = 0; x < s.width; ++x) {
        const bool isAlone = x == s.width - 1 && x % 2 == 0;  // takes the Cr before its group
        AddPacked(bgr, s.Luma(x, y), s.Cb(x, y), s.Cr(isAlone ? x - 1 : x, y));
      }
    return bgr;
  }
  for (int y = 0; y < (s.height & ~1); ++y)
    for (int x = 0; x < (s.width & ~1); ++x) AddPlanar(bgr, s.Luma(x, y), s.Cb(x, y), s.Cr(x, y));
  return bgr;
}

std::string ExpectedPlanes(const Source& s, bool crFirst) {
  std::string planes[3];
  for (int y = 0; y < (s.height & ~1); ++y)
    for (int x = 0; x < (s.width & ~1); ++x) {
      planes[0] += static_cast<char>(s.Luma(x, y));
      if ((x | y) & 1) continue;
      planes[crFirst ? 2 : 1] += static_cast<char>(s.Cb(x, y));
      planes[crFirst ? 1 : 2] += static_cast<char>(s.Cr(x, y));
    }
  return planes[0] + planes[1] + planes[2];
}

TEST(Convert, MakesWhatTheFormulasSayOfEveryLayout) {
  for (const auto& [width, height] : {std::pair(38, 20), {37, 21}, {2, 2}, {3, 3}})
    for (const char* const layout : {"yuyv", "i420", "yv12", "nv12"})
      for (const char* const to : {"bgr", "i420", "yv12"}) {
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        SCOPED_TRACE(layout + std::string(" to ") + to + ", " + size);
        const Source source = MakeSource(layout, width, height);
        Workplace place;
        const Outcome outcome = place.Run(
            {"convert", "-", "-", "--layout", layout, "--size", size, "--to", to}, source.bytes);
        const bool isPossible = to == std::string("bgr") || layout == std::string("yuyv") ||
                                layout == std::string("nv12");
        ASSERT_EQ(outcome.exitCode, isPossible ? 0 : 1) << outcome.err;
        if (!isPossible) continue;
        EXPECT_TRUE(outcome.out == (to == std::string("bgr")
                                        ? ExpectedBgr(source)
                                        : ExpectedPlanes(source, to == std::string("yv12"))));
      }
}

TEST(Convert, MakesAClipIntoPicturesAndPackedFramesIntoAClip) {
  Workplace place;
  std::string clip = "YUV4MPEG2 W6 H4 C420jpeg F25:1\n";
  std::vector<Source> frames;
  for (int i = 0; i < 3; ++i) {
    frames.push_back(MakeSource("i420", 6, 4));
    std::rotate(frames.back().bytes.begin(), frames.back().bytes.begin() + i,
                frames.back().bytes.end());
    clip += "FRAME\n" + frames.back().bytes;
  }
  ASSERT_EQ(place.Run({"convert", "-", "frame-%02d.png"}, clip).exitCode, 0);
  EXPECT_EQ(place.Files(),
            (std::vector<std::string>{"frame-01.png", "frame-02.png", "frame-03.png"}));
  for (std::size_t i = 0; i < frames.size(); ++i)
    EXPECT_TRUE(place.Run({"copy", "frame-0" + std::to_string(i + 1) + ".png", "-", "--format",
                           "raw"})
                    .out == ExpectedBgr(frames[i]))
        << i;

  const Source packed = MakeSource("yuyv", 6, 4);
  const Outcome outcome = place.Run({"convert", "-", "-", "--format", "y4m", "--to", "i420",
                                     "--layout", "yuyv", "--size", "6x4", "--rate", "30:1"},
                                    packed.bytes + packed.bytes);
  const std::string frame = "FRAME\n" + ExpectedPlanes(packed, false);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_TRUE(outcome.out.ends_with(frame + frame));
  EXPECT_TRUE(outcome.out.starts_with("YUV4MPEG2 W6 H4 F30:1"));
}

TEST(Convert, RefusesWhatItCannotConvert) {
  struct Case {
    Arguments arguments;
    std::size_t bytes;
    int exitCode;
    const char* message;
  };
  const Case cases[] = {
      {{"--layout", "bgr", "--size", "2x2"}, 12, 1, "bgr frames given"},
      {{"--layout", "i422", "--size", "2x2"}, 8, 1, "i422 frames given"},
      {{"--layout", "i420", "--size", "2x2", "--to", "yv12"}, 6, 1, "made from yuyv and nv12"},
      {{"--layout", "yuyv", "--size", "1x2"}, 8, 1, "1 pixel wide"},
      {{"--layout", "nv12", "--size", "2x1"}, 4, 1, "2x1"},
      {{"--layout", "yuyv", "--size", "2x1", "--to", "i420"}, 4, 1, "2x1"},
      {{"--layout", "yuyv", "--size", "2x2", "--to", "grey"}, 8, 2, "--to"},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(testing::PrintToString(test.arguments));
    Workplace place;
    Arguments arguments = {"convert", "-", "out.raw"};
    arguments.insert(arguments.end(), test.arguments.begin(), test.arguments.end());
    const Outcome outcome = place.Run(arguments, Noise(test.bytes, 1));
    EXPECT_EQ(outcome.exitCode, test.exitCode);
    EXPECT_NE(outcome.err.find(test.message), std::string::npos) << outcome.err;
    EXPECT_TRUE(place.Files().empty());
  }
}

}  // namespace
}  // namespace tooltest
