// qvtool overlay, blend and deinterlace.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "Program.h"

namespace tooltest {
namespace {

// ---- Overlay ------------------------------------------------------------------------------------

// Foreground f of alpha fa / 65025 over b of alpha ba / 255 (Porter and Duff 1984), exact.
int Over(int f, int fa, int b, int ba) {
  const double front = fa / 65025.0, back = ba / 255.0 * (1 - front);
  return static_cast<int>(std::floor((f * front + b * back) / (front + back) + 0.5));
}

TEST(Overlay, MergesThePartOfThePictureThatFallsOnTheFrame) {
  const int width = 37, height = 21, logoWidth = 19, logoHeight = 8;
  const struct {
    long long x, y;
    int opacity;
  } cases[] = {{0, 0, 255}, {5, 9, 128}, {-7, -3, 255}, {30, 15, 77}, {-4, 17, 255},
               {37, 0, 255}, {0, -8, 255}, {-2147483647, 2147483647, 255}, {3, 3, 0}};
  for (const std::string layout : {"bgr", "bgra"})
    for (const auto& c : cases) {
      const std::string at = std::to_string(c.x) + "," + std::to_string(c.y);
      const std::size_t bytes = layout.size();
      Workplace place;
      std::string logo = Noise(logoWidth * logoHeight * 4, 3);
      logo[3] = '\0';
      logo[7] = '\xff';
      std::string frame = Noise(width * height * bytes, 4);
      if (bytes == 4) frame[(width * 9 + 6) * 4 + 3] = '\xff';
      ASSERT_EQ(place.Run("copy - logo.png --layout bgra --size 19x8", logo).exitCode, 0);
      const Outcome outcome = place.Run("overlay - - --with logo.png --opacity " +
                                            std::to_string(c.opacity) + " --at=" + at +
                                            " --size 37x21 --layout " + layout,
                                        frame);
      ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
      for (int y = 0; y < logoHeight; ++y)
        for (int x = 0; x < logoWidth; ++x) {
          const long long fx = x + c.x, fy = y + c.y;
          if (fx < 0 || fx >= width || fy < 0 || fy >= height) continue;
          const std::size_t from = static_cast<std::size_t>((y * logoWidth + x) * 4);
          const std::size_t to = static_cast<std::size_t>(fy * width + fx) * bytes;
          const int fa = Byte(logo, from + 3) * c.opacity;
          const int ba = bytes == 4 ? Byte(frame, to + 3) : 255;
          if (fa == 0) continue;
          for (std::size_t k = 0; k < 3; ++k)
            frame[to + k] =
                static_cast<char>(Over(Byte(logo, from + k), fa, Byte(frame, to + k), ba));
          if (bytes == 4)
            frame[to + 3] = static_cast<char>(std::lround(fa / 255.0 + ba * (1 - fa / 65025.0)));
        }
      EXPECT_TRUE(outcome.out == frame) << layout << " at " << at;
    }
}

// And fills them like `fill` where it is opaque.
TEST(Overlay, LeavesFramesOfEveryLayoutUnderATransparentPicture) {
  Workplace place;
  ASSERT_EQ(place.Run("copy - clear.png --layout bgra --size 5x3", std::string(60, '\0')).exitCode,
            0);
  ASSERT_EQ(place.Run("fill red.png --layout bgr --size 4x2 --colour #ff0000").exitCode, 0);
  const std::pair<std::string, std::size_t> layouts[] = {  // and bytes of 9x7 pixels
      {"grey", 63},  {"bgr", 189},  {"bgra", 252}, {"yuyv", 140}, {"uyvy", 140}, {"i420", 103},
      {"yv12", 103}, {"nv21", 103}, {"nv12", 103}, {"i411", 105}, {"i422", 133}, {"i444", 189},
      {"i444a", 252}};
  for (const auto& [layout, bytes] : layouts) {
    const std::string frame = Noise(bytes, 8), shape = " --size 9x7 --layout " + layout;
    for (const std::string at : {"0,0", "1,1", "-3,4", "6,5"}) {
      const Outcome outcome = place.Run("overlay - - --with clear.png --at=" + at + shape, frame);
      EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
      EXPECT_TRUE(outcome.out == frame) << layout << ' ' << at;
    }
    const char* const colour = layout == "grey" ? "76" : "#ff0000";
    const std::string fill = std::string("fill - - --colour ") + colour;
    for (const std::string at : {"4,2", "0,4"})
      EXPECT_TRUE(place.Run("overlay - - --with red.png --at " + at + shape, frame).out ==
                  place.Run(fill + " --region " + at + ",4,2" + shape, frame).out)
          << layout << ' ' << at;
  }
}

// Opaque red arrives as Y 81, Cb 90, Cr 240 and shares the chroma samples at its edge with two or
// three pixels of the frame.
TEST(Overlay, SharesChromaWithPixelsBesideThePicture) {
  Workplace place;
  ASSERT_EQ(place.Run("fill red.png --layout bgr --size 3x3 --colour #ff0000").exitCode, 0);
  const std::string header = "YUV4MPEG2 W6 H4 F30:1 Ip C420jpeg\n";
  const std::string frame = "FRAME Xa\n" + std::string(24 + 6 + 6, 50);
  const Outcome outcome =
      place.Run("overlay - - --with red.png --at 1,0", header + frame + frame);
  ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
  std::string expected = "FRAME Xa\n";
  for (const int value : {50, 81, 81, 81, 50, 50, 50, 81, 81, 81, 50, 50,
                          50, 81, 81, 81, 50, 50, 50, 50, 50, 50, 50, 50,
                          (90 + 50) / 2, 90, 50, (90 + 3 * 50 + 2) / 4, (90 + 50) / 2, 50,
                          (240 + 50) / 2, 240, 50,
                          (240 + 3 * 50 + 2) / 4, (240 + 50) / 2, 50})
    expected += static_cast<char>(value);
  EXPECT_TRUE(outcome.out == header + expected + expected);
}

// ---- Blend --------------------------------------------------------------------------------------

// 200 of alpha 100 and 80 of alpha 180: weighted 78 and 56, of which others leave 34 (not the first
// one), 55 and 22 (the second one, not the second one); unweighted 48, 141 and 58.
TEST(Blend, NamesEveryOperation) {
  const std::pair<const char*, int> cases[] = {
      {"over", 78 + 34},      {"over-premultiplied", 200 + 48},
      {"in", 55},             {"in-premultiplied", 141},
      {"out", 22},            {"out-premultiplied", 58},
      {"atop", 55 + 34},      {"atop-premultiplied", 141 + 48},
      {"xor", 22 + 34},       {"xor-premultiplied", 58 + 48},
      {"plus", 78 + 56},      {"plus-premultiplied", 255},
  };
  for (const std::string layout : {"grey", "bgr", "bgra"}) {
    Workplace place;
    const std::string frame = " --layout " + layout + " --size 31x9";
    const std::size_t bytes = 31 * 9 * (layout == "grey" ? 1 : layout.size());
    const std::string a(bytes, '\xc8'), b(bytes, '\x50');
    ASSERT_EQ(place.Run("copy - b.png" + frame, b).exitCode, 0);
    for (const auto& [name, expected] : cases) {
      const Outcome outcome =
          place.Run("blend - - --with b.png --alpha1 100 --alpha2 180 --operation " +
                        std::string(name) + frame, a);
      EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
      EXPECT_TRUE(outcome.out == std::string(bytes, static_cast<char>(expected)))
          << name << ' ' << layout;
    }
  }
}

// ---- Deinterlace --------------------------------------------------------------------------------

// Rows of `rowBytes` bytes; modes 4 and 16 filter the first row with itself above.
std::string Filtered(const std::string& plane, int rowBytes, int weight, int mode) {
  const int rows = static_cast<int>(plane.size()) / rowBytes, side = (256 - weight) / 2;
  std::string result = plane;
  const int first = mode == 4 || mode == 16 ? 0 : 1;
  for (int y = first; y < rows - 1; ++y)
    for (int x = 0; x < rowBytes; ++x) {
      const auto at = [&](int row) {
        return Byte(plane, static_cast<std::size_t>(std::max(row, 0) * rowBytes + x));
      };
      result[static_cast<std::size_t>(y * rowBytes + x)] =
          static_cast<char>(((at(y - 1) + at(y + 1)) * side + at(y) * weight) >> 8);
    }
  return rows < 3 ? plane : result;
}

TEST(Deinterlace, FiltersEveryPlaneByItself) {
  for (const auto& [name, mode, weight] : {std::tuple("0", 0, 100), {"inner", 1, 0}, {"1", 1, 99},
                                           {"4", 4, 128}, {"16", 16, 256}, {"upper", 16, 30}}) {
    Workplace place;
    const std::string how = std::string("deinterlace - - --mode ") + name + " --centre-weight " +
                            std::to_string(weight);
    const std::string bgr = Noise(std::size_t{37} * 3 * 11, 5);
    EXPECT_TRUE(place.Run(how + " --layout bgr --size 37x11", bgr).out ==
                Filtered(bgr, 111, weight, mode)) << how;

    // 6x7 in 4:2:0 has chroma of 3x4, 6x4 has chroma of 3x2, which is too low to be filtered.
    for (const std::size_t height : {7, 4}) {
      std::string clip = "YUV4MPEG2 W6 H" + std::to_string(height) + " C420jpeg F25:1 It\n";
      std::string expected = clip;
      expected.replace(expected.find("It"), 2, "Ip");
      const std::size_t luma = 6 * height, chroma = 3 * ((height + 1) / 2);
      for (unsigned frame = 1; frame < 4; ++frame) {
        clip += "FRAME\n";
        expected += "FRAME\n";
        for (const std::size_t size : {luma, chroma, chroma}) {
          const std::string plane = Noise(size, frame);
          clip += plane;
          expected += Filtered(plane, size == luma ? 6 : 3, weight, mode);
        }
      }
      const Outcome outcome = place.Run(how, clip);
      EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
      EXPECT_TRUE(outcome.out == expected) << how << ", " << height;
    }
  }
}

}  // namespace
}  // namespace tooltest
