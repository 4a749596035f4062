// Formats in and out: nothing is lost on the way.
#include <gtest/gtest.h>

#include <cstdlib>

#include "Program.h"

namespace tooltest {
namespace {

TEST(Y4m, StreamsPassUnchanged) {
  struct Case {
    const char* fields;
    const char* frame;
    std::size_t bytes;  // of a 5x3 frame
  };
  const Case cases[] = {
      {"F25:1 Ip A1:1 C420jpeg", "FRAME", 27},
      {"F30000:1001 It A10:11 C420mpeg2 XYSCSS=420MPEG2 XCOLORRANGE=LIMITED", "FRAME", 27},
      {"F25:1 Ib A59:54 C420paldv", "FRAME", 27},
      {"F50:1 Im A0:0 C420", "FRAME It", 27},
      {"F25:1", "FRAME", 27},
      {"F25:1 C411", "FRAME", 27},
      {"F25:1 C422", "FRAME Ib XNOTE=1", 33},
      {"F25:1 C444", "FRAME", 45},
      {"F25:1 C444alpha", "FRAME", 60},
      {"F25:1 Cmono", "FRAME", 15},
  };
  for (const Case& test : cases) {
    Workplace place;
    std::string stream = std::string("YUV4MPEG2 W5 H3 ") + test.fields + "\n";
    for (unsigned i = 0; i < 3; ++i)
      stream += std::string(test.frame) + "\n" + Noise(test.bytes, i);
    const Outcome piped = place.Run("copy - -", stream);
    EXPECT_EQ(piped.exitCode, 0) << piped.err;
    EXPECT_TRUE(piped.out == stream) << test.fields;
    // Two mirrors are none, in files as well.
    place.Write("in.y4m", stream);
    ASSERT_EQ(place.Run("mirror in.y4m half.y4m --axis both").exitCode, 0);
    ASSERT_EQ(place.Run("mirror half.y4m back.y4m --axis both").exitCode, 0);
    EXPECT_FALSE(place.Read("half.y4m") == stream);
    EXPECT_TRUE(place.Read("back.y4m") == stream) << test.fields;
  }
}

TEST(Raw, EveryLayoutPassesUnchanged) {
  const std::pair<std::string, std::size_t> cases[] = {  // and bytes of a 5x3 frame
      {"grey", 15}, {"bgr", 45},  {"bgra", 60}, {"yuyv", 36}, {"uyvy", 36}, {"i420", 27},
      {"yv12", 27},
      {"nv12", 27}, {"nv21", 27}, {"i411", 27}, {"i422", 33}, {"i444", 45}, {"i444a", 60}};
  for (const auto& [layout, bytes] : cases) {
    Workplace place;
    const std::string frames = Noise(bytes * 2, 5), copy = "copy - - --size 5x3 --layout " + layout;
    const Outcome outcome = place.Run(copy, frames);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_TRUE(outcome.out == frames) << layout;
    EXPECT_EQ(place.Run(copy, frames.substr(1)).exitCode, 1) << layout;
  }
}

// Samples of more bits become 8, rounded: in studio range 235 is 940, in full range 255 is 1023.
TEST(Y4m, DeepSamplesAreRounded) {
  const struct {
    const char* fields;
    int samples[3];
    const char* eight;
  } cases[] = {{"C444p10", {940, 513, 514}, "\xeb\x80\x81"},
               {"C444p10 XCOLORRANGE=FULL", {1023, 513, 514}, "\xff\x80\x80"},
               {"C444p12", {3760, 2055, 2056}, "\xeb\x80\x81"},
               {"C444p16", {65535, 0x7f7f, 0x7f80}, "\xff\x7f\x80"}};
  for (const auto& test : cases) {
    std::string stream = std::string("YUV4MPEG2 W1 H1 F25:1 ") + test.fields + "\nFRAME\n";
    for (const int sample : test.samples) {
      stream += static_cast<char>(sample & 255);
      stream += static_cast<char>(sample >> 8);
    }
    const std::string out = Workplace().Run("copy - -", stream).out;
    EXPECT_NE(out.find(" C444"), std::string::npos);
    EXPECT_EQ(out.find("p1"), std::string::npos) << out;
    EXPECT_EQ(out.substr(out.size() - 3), test.eight) << test.fields;
  }
}

// One colour, whatever the frames and the file: the tool converts by itself.
TEST(Files, HoldFramesOfEveryLayout) {
  const std::pair<std::string, std::string> cases[] = {  // and the field of Y4M
      {"bgr", "C444"},       {"BGRA", "C444alpha"}, {"yuyv", "C422"},     {"UYVY", "C422"},
      {"i420", "C420mpeg2"}, {"yv12", "C420mpeg2"}, {"nv12", "C420mpeg2"}, {"Nv21", "C420mpeg2"},
      {"i411", "C411"},      {"i422", "C422"},      {"i444", "C444"},     {"i444a", "C444alpha"}};
  const auto isNear = [](const std::string& a, const std::string& b) {
    bool near = a.size() == b.size();
    for (std::size_t i = 0; near && i < a.size(); ++i)
      near = std::abs(Byte(a, i) - Byte(b, i)) <= 3;
    return near;
  };
  for (const auto& [layout, field] : cases) {
    Workplace place;
    const std::string as = " --size 7x5 --layout " + layout;
    const std::string frame = place.Run("fill - --colour #c08040" + as).out;
    const std::string bgr = place.Run("convert - -" + as, frame).out;
    ASSERT_EQ(bgr.size(), 7u * 5 * 3) << layout;
    EXPECT_TRUE(isNear(bgr.substr(0, 3), "\x40\x80\xc0")) << layout;
    for (const std::string file : {"a.png", "a.jpg", "a.y4m"}) {
      const Outcome outcome = place.Run("copy - " + file + as, frame);
      ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
      EXPECT_TRUE(isNear(place.Run("convert " + file + " - --format raw").out, bgr))
          << file << ' ' << layout;
      const Outcome back = place.Run("convert " + file + " - --format RAW --to " + layout);
      EXPECT_TRUE(isNear(back.out, frame)) << file << ' ' << layout;
    }
    EXPECT_NE(place.Read("a.y4m").find(field + "\n"), std::string::npos) << layout;
  }
}

// What is transparent is black in files without alpha.
TEST(Files, WithoutAlphaHoldPicturesOverBlack) {
  Workplace place;
  std::string logo;
  for (int i = 0; i < 64; ++i) logo += std::string("\xff\xff\xff", 3) + '\x80';
  ASSERT_EQ(place.Run("copy - a.jpg --layout bgra --size 8x8", logo).exitCode, 0);
  EXPECT_NEAR(Byte(place.Run("copy a.jpg - --format raw").out, 0), 128, 1);
}

TEST(Raw, BecomesY4mWithItsRate) {
  Workplace place;
  const char* const copy = "copy - - --layout i422 --size 2x1 --rate 30000:1001 --format y4m";
  EXPECT_EQ(place.Run(copy, "abcd").out, "YUV4MPEG2 W2 H1 F30000:1001 Ip A1:1 C422\nFRAME\nabcd");
}

TEST(Y4m, ColourFieldFollowsTheFrames) {
  // A grey picture as Y4M, and a frame each of a mono stream as pictures.
  Workplace place;
  ASSERT_EQ(place.Run("fill grey.png --layout grey --size 3x2 --colour 65").exitCode, 0);
  EXPECT_EQ(place.Run("copy grey.png - --format y4m").out,
            "YUV4MPEG2 W3 H2 F25:1 Cmono\nFRAME\nAAAAAA");
  ASSERT_EQ(place.Run("copy - out-%03d.png", "YUV4MPEG2 W2 H1 Cmono\nFRAME\nab\nFRAME\ncd")
                .exitCode,
            1);  // a byte too much
  const Outcome outcome =
      place.Run("copy - out-%03d.png", "YUV4MPEG2 W2 H1 Cmono\nFRAME\nabFRAME\ncd");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_EQ(place.Run("copy out-002.png - --format raw").out, "cd");
}

TEST(Jpeg, KeepsThePictureAndItsChannels) {
  for (const std::string layout : {"grey", "bgr"}) {
    const int bytes = layout == "grey" ? 1 : 3;
    Workplace place;
    std::string source;
    for (int y = 0; y < 24; ++y)
      for (int x = 0; x < 40; ++x)
        for (int c = 0; c < bytes; ++c)
          source += static_cast<char>(c == 0 ? 6 * x : c == 1 ? 9 * y : 200 - 2 * x - 2 * y);
    const std::string copy = "copy - a.jpg --size 40x24 --quality 100 --layout " + layout;
    ASSERT_EQ(place.Run(copy, source).exitCode, 0);
    EXPECT_EQ(place.Read("a.jpg").substr(0, 3), "\xff\xd8\xff");
    const Outcome back = place.Run("copy a.jpg - --format raw");
    ASSERT_EQ(back.out.size(), source.size()) << back.err;
    int worst = 0;
    for (std::size_t i = 0; i < source.size(); ++i)
      worst = std::max(worst, std::abs(Byte(source, i) - Byte(back.out, i)));
    EXPECT_LE(worst, 3) << layout;
    // The quality is heard.
    ASSERT_EQ(place.Run("copy a.jpg b.jpeg --quality 10").exitCode, 0);
    EXPECT_LT(place.Read("b.jpeg").size(), place.Read("a.jpg").size());
  }
}

TEST(Inputs, AreRecognisedByContentAlsoFromPipes) {
  Workplace place;
  ASSERT_EQ(place.Run("fill a.jpg --size 9x5 --colour 9").exitCode, 0);
  ASSERT_EQ(place.Run("fill a.png --size 9x5 --colour 9").exitCode, 0);
  place.Write("wrong.txt", place.Read("a.png"));
  EXPECT_NE(place.Run("info wrong.txt").out.find("format  PNG"), std::string::npos);
  EXPECT_NE(place.Run("info -", place.Read("a.jpg")).out.find("format  JPEG"), std::string::npos);
  // Headers are enough.
  place.Write("cut.png", place.Read("a.png").substr(0, 60));
  EXPECT_NE(place.Run("info cut.png").out.find("size    9x5"), std::string::npos);
  EXPECT_EQ(place.Run("copy - -", place.Read("a.png")).out.substr(1, 3), "PNG");
  const std::string info = place.Run("info -", "YUV4MPEG2 W2 H1 F24:1 Cmono\nFRAME\nab").out;
  for (const char* part :
       {"format  Y4M", "layout  grey", "size    2x1", "frames  1", "F24:1 Cmono"})
    EXPECT_NE(info.find(part), std::string::npos) << part << " is not in\n" << info;
}

}  // namespace
}  // namespace tooltest
