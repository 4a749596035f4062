// qvtool overlay, blend and deinterlace against their formulas.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "Program.h"

namespace tooltest {
namespace {

Arguments Joined(Arguments first, const Arguments& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Arguments Headerless(const std::string& layout, int width, int height) {
  return {"--layout", layout, "--size", std::to_string(width) + "x" + std::to_string(height)};
}

// ---- Overlay ------------------------------------------------------------------------------------

// Foreground f of alpha fa over b of alpha ba, in single precision.
int Over(int f, int fa, int b, int ba) {
  const int merged = fa + ((255 - fa) * ba >> 8);
  const float fw = static_cast<float>(fa) / 255.0f;
  const float bw = (1.0f - fw) * (static_cast<float>(ba) / 255.0f);
  const float quotient = (static_cast<float>(f) * fw + bw * static_cast<float>(b)) /
                         (static_cast<float>(merged + 1) / 255.0f);
  return std::min(255, static_cast<int>(std::nearbyint(quotient)));
}

TEST(Overlay, MergesThePartOfThePictureThatFallsOnTheFrame) {
  const int width = 37, height = 21, logoWidth = 19, logoHeight = 8;
  struct Case {
    int x, y, opacity;
  };
  const Case cases[] = {{0, 0, 255}, {5, 9, 128}, {-7, -3, 255}, {30, 15, 77}, {-4, 17, 255},
                        {37, 0, 255}, {0, -8, 255}, {-2147483647, 2147483647, 255}, {3, 3, 0}};
  for (const char* const layout : {"bgr", "bgra"})
    for (const Case& c : cases) {
      SCOPED_TRACE(layout + (" at " + std::to_string(c.x)) + "," + std::to_string(c.y));
      const int bytes = layout == std::string("bgra") ? 4 : 3;
      Workplace place;
      std::string logo = Noise(static_cast<std::size_t>(logoWidth * logoHeight * 4), 3);
      logo[3] = '\0';
      logo[7] = '\xff';
      std::string frame = Noise(static_cast<std::size_t>(width * height * bytes), 4);
      if (bytes == 4) frame[(width * 9 + 6) * 4 + 3] = '\xff';
      ASSERT_EQ(place.Run(Joined({"copy", "-", "logo.png"},
                                 Headerless("bgra", logoWidth, logoHeight)), logo).exitCode, 0);
      const Outcome outcome = place.Run(
          Joined({"overlay", "-", "-", "--with", "logo.png", "--opacity", std::to_string(c.opacity),
                  "--at=" + std::to_string(c.x) + "," + std::to_string(c.y)},
                 Headerless(layout, width, height)), frame);
      ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
      for (int y = 0; y < logoHeight; ++y)
        for (int x = 0; x < logoWidth; ++x) {
          const long long fx = x + static_cast<long long>(c.x);
          const long long fy = y + static_cast<long long>(c.y);
          if (fx < 0 || fx >= width || fy < 0 || fy >= height) continue;
          const std::size_t from = static_cast<std::size_t>((y * logoWidth + x) * 4);
          const std::size_t to = static_cast<std::size_t>((fy * width + fx) * bytes);
          const int fa = Byte(logo, from + 3) * c.opacity / 255;
          const int ba = bytes == 4 ? Byte(frame, to + 3) : 255;
          for (std::size_t k = 0; k < 3; ++k)
            frame[to + k] =
                static_cast<char>(Over(Byte(logo, from + k), fa, Byte(frame, to + k), ba));
          if (bytes == 4 && fa != 0 && ba != 255)
            frame[to + 3] = static_cast<char>(fa + ((255 - fa) * ba >> 8));
        }
      EXPECT_TRUE(outcome.out == frame);
    }
}

TEST(Overlay, LeavesFramesOfEveryLayoutUnderATransparentPicture) {
  Workplace place;
  ASSERT_EQ(place.Run(Joined({"copy", "-", "clear.png"}, Headerless("bgra", 5, 3)),
                      std::string(60, '\0')).exitCode, 0);
  struct Case {
    const char* layout;
    std::size_t bytes;  // of 9x7 pixels
  };
  for (const Case& c : {Case{"grey", 63}, {"bgr", 189}, {"yuyv", 140}, {"i420", 103}, {"yv12", 103},
                        {"nv12", 103}, {"i411", 105}, {"i422", 133}, {"i444", 189},
                        {"i444a", 252}})
    for (const char* const at : {"0,0", "1,1", "-3,4", "6,5"}) {
      const std::string frame = Noise(c.bytes, 8);
      const Outcome outcome =
          place.Run(Joined({"overlay", "-", "-", "--with", "clear.png", "--at=" + std::string(at)},
                           Headerless(c.layout, 9, 7)), frame);
      EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
      EXPECT_TRUE(outcome.out == frame) << c.layout << ' ' << at;
    }
}

// Opaque red, Y 81, Cb 90, Cr 240, becomes 81, 90, 239 (times 255 / 256) and shares the chroma
// samples at its edge with two or three pixels of the frame.
TEST(Overlay, SharesChromaWithPixelsBesideThePicture) {
  Workplace place;
  ASSERT_EQ(place.Run({"fill", "red.png", "--layout", "bgr", "--size", "3x3", "--colour",
                       "#ff0000"}).exitCode, 0);
  const std::string header = "YUV4MPEG2 W6 H4 F30:1 Ip C420jpeg\n";
  const std::string luma(24, 50), cb(6, 50), cr(6, 50);
  const std::string frame = "FRAME Xa\n" + luma + cb + cr;
  const Outcome outcome =
      place.Run({"overlay", "-", "-", "--with", "red.png", "--at", "1,0"}, header + frame + frame);
  ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
  const auto rows = [](std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) text += static_cast<char>(value);
    return text;
  };
  const std::string expected =
      "FRAME Xa\n" +
      rows({50, 81, 81, 81, 50, 50, 50, 81, 81, 81, 50, 50, 50, 81, 81, 81, 50, 50,
            50, 50, 50, 50, 50, 50}) +
      rows({(90 + 50) / 2, 90, 50, (90 + 3 * 50 + 2) / 4, (90 + 50) / 2, 50}) +
      rows({(239 + 50 + 1) / 2, 239, 50, (239 + 3 * 50 + 2) / 4, (239 + 50 + 1) / 2, 50});
  EXPECT_TRUE(outcome.out == header + expected + expected);
}

// ---- Blend --------------------------------------------------------------------------------------

TEST(Blend, FollowsTheFormulaOfEveryOperation) {
  const int a1 = 100, a2 = 180, r1 = 255 - a1, r2 = 255 - a2;
  const auto times = [](int x, int y) { return x * y / 255; };
  struct Case {
    const char* name;
    std::function<int(int, int)> formula;
  };
  const Case cases[] = {
      {"over", [&](int a, int b) { return times(a, a1) + times(times(b, a2), r1); }},
      {"in", [&](int a, int) { return times(times(a, a1), a2); }},
      {"out", [&](int a, int) { return times(times(a, a1), r2); }},
      {"atop", [&](int a, int b) { return times(times(a, a1), a2) + times(times(b, a2), r1); }},
      {"xor", [&](int a, int b) { return times(times(a, a1), r2) + times(times(b, a2), r1); }},
      {"plus", [&](int a, int b) { return times(a, a1) + times(b, a2); }},
      {"over-premultiplied", [&](int a, int b) { return a + times(b, r1); }},
      {"in-premultiplied", [&](int a, int) { return times(a, a2); }},
      {"out-premultiplied", [&](int a, int) { return times(a, r2); }},
      {"atop-premultiplied", [&](int a, int b) { return times(a, a2) + times(b, r1); }},
      {"xor-premultiplied", [&](int a, int b) { return times(a, r2) + times(b, r1); }},
      {"plus-premultiplied", [&](int a, int b) { return a + b; }},
  };
  for (const auto& [layout, bytes] : {std::pair("grey", 1), {"bgr", 3}, {"bgra", 4}}) {
    Workplace place;
    const std::string a = Noise(static_cast<std::size_t>(31 * 9 * bytes), 1),
                      b = Noise(static_cast<std::size_t>(31 * 9 * bytes), 2);
    ASSERT_EQ(place.Run(Joined({"copy", "-", "b.png"}, Headerless(layout, 31, 9)), b).exitCode, 0);
    for (const Case& test : cases) {
      const Outcome outcome =
          place.Run(Joined({"blend", "-", "b.png", "-", "--operation", test.name, "--alpha1", "100",
                            "--alpha2", "180"}, Headerless(layout, 31, 9)), a);
      ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
      std::string expected = a;
      for (std::size_t i = 0; i < a.size(); ++i)
        expected[i] = static_cast<char>(std::min(255, test.formula(Byte(a, i), Byte(b, i))));
      EXPECT_TRUE(outcome.out == expected) << test.name << ' ' << layout;
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
  for (const int mode : {0, 1, 4, 16})
    for (const int weight : {0, 100, 128, 256}) {
      SCOPED_TRACE("mode " + std::to_string(mode) + ", weight " + std::to_string(weight));
      Workplace place;
      const Arguments how = {"--mode", std::to_string(mode), "--centre-weight",
                             std::to_string(weight)};
      const std::string bgr = Noise(std::size_t{37} * 3 * 11, 5);
      EXPECT_TRUE(place.Run(Joined(Joined({"deinterlace", "-", "-"}, Headerless("bgr", 37, 11)),
                                   how), bgr).out == Filtered(bgr, 111, weight, mode));

      // 6x7 in 4:2:0 has chroma of 3x4, 6x4 has chroma of 3x2, which is too low to be filtered.
      for (const int height : {7, 4}) {
        const std::string header =
            "YUV4MPEG2 W6 H" + std::to_string(height) + " C420jpeg F25:1 It\n";
        const std::size_t lumaSize = static_cast<std::size_t>(6 * height),
                          chromaSize = static_cast<std::size_t>(3 * ((height + 1) / 2));
        std::string clip = header, expected = header;
        for (unsigned frame = 1; frame < 4; ++frame) {
          clip += "FRAME\n";
          expected += "FRAME\n";
          for (const std::size_t size : {lumaSize, chromaSize, chromaSize}) {
            const std::string plane = Noise(size, frame);
            clip += plane;
            expected += Filtered(plane, size == lumaSize ? 6 : 3, weight, mode);
          }
        }
        const Outcome outcome = place.Run(Joined({"deinterlace", "-", "-"}, how), clip);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_TRUE(outcome.out == expected) << height;
      }
    }
}

// ---- All ----------------------------------------------------------------------------------------

TEST(Compositing, SaysWhatItTakes) {
  Workplace place;
  for (const auto& [command, option] :
       {std::pair("overlay", "--opacity"), {"blend", "plus-premultiplied"},
        {"deinterlace", "--centre-weight"}}) {
    const Outcome outcome = place.Run({command, "--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.out.find(option), std::string::npos) << outcome.out;
  }
}

}  // namespace
}  // namespace tooltest
