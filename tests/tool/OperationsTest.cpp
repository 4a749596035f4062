// What the sub-commands do to pixels, on headerless frames through pipes, against plain formulas.
#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "Program.h"

namespace tooltest {
namespace {

constexpr int kWidth = 37;
constexpr int kHeight = 21;

// One frame of packed pixels: `bytes` bytes each.
struct Pixels {
  std::string data;
  int bytes;
  char& At(int x, int y, int c) {
    return data[static_cast<std::size_t>((y * kWidth + x) * bytes + c)];
  }
};

Pixels Empty(int bytes) { return {std::string(kWidth * kHeight * bytes, '\0'), bytes}; }

// The pixel function: byte c of destination pixel (x, y).
using Formula = std::function<int(Pixels& source, int x, int y, int c)>;

struct Operation {
  const char* name;
  const char* command;  // without what describes the frames
  const char* layout;
  int sourceBytes;
  int resultBytes;
  Formula formula;
};

int At(Pixels& pixels, int x, int y, int c) {
  return static_cast<unsigned char>(pixels.At(x, y, c));
}

class OperationTest : public testing::TestWithParam<Operation> {};

TEST_P(OperationTest, FollowsItsFormula) {
  const Operation& operation = GetParam();
  Workplace place;
  Pixels source{Noise(kWidth * kHeight * static_cast<std::size_t>(operation.sourceBytes), 7),
                operation.sourceBytes};
  place.Write("own.txt", "#010203\n#ff8000\n");
  const std::string size = " --size 37x21 --layout ";
  ASSERT_EQ(place.Run("fill other.png --colour 66" + size + "bgr").exitCode, 0);
  ASSERT_EQ(place.Run("fill mask.png --colour 51" + size + "grey").exitCode, 0);
  const Outcome outcome =
      place.Run(operation.command + (" - -" + size) + operation.layout, source.data);
  ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  Pixels expected = Empty(operation.resultBytes);
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x)
      for (int c = 0; c < operation.resultBytes; ++c)
        expected.At(x, y, c) = static_cast<char>(operation.formula(source, x, y, c));
  EXPECT_TRUE(outcome.out == expected.data);
}

bool InRegion(int x, int y) { return x >= 3 && x < 20 && y >= 4 && y < 13; }

const Operation kOperations[] = {
    {"copy", "copy", "bgr", 3, 3, At},
    {"greyToBgr", "copy --to bgr", "grey", 1, 3,
     [](Pixels& s, int x, int y, int) { return At(s, x, y, 0); }},
    {"bgrToBgra", "copy --to bgra", "bgr", 3, 4,
     [](Pixels& s, int x, int y, int c) { return c == 3 ? 255 : At(s, x, y, c); }},
    {"bgraWithMask", "copy --to bgra --alpha mask.png", "bgr", 3, 4,
     [](Pixels& s, int x, int y, int c) { return c == 3 ? 51 : At(s, x, y, c); }},
    {"bgraToBgr", "copy --to bgr", "bgra", 4, 3, At},
    {"bgraStays", "copy", "bgra", 4, 4, At},
    {"intoGreen", "copy --to green", "grey", 1, 3,
     [](Pixels& s, int x, int y, int c) { return c == 1 ? At(s, x, y, 0) : 0; }},
    {"intoRedOfPicture", "copy --to red --onto other.png", "grey", 1, 3,
     [](Pixels& s, int x, int y, int c) { return c == 2 ? At(s, x, y, 0) : 66; }},
    {"mirrorTopBottom", "mirror --axis top-bottom", "bgr", 3, 3,
     [](Pixels& s, int x, int y, int c) { return At(s, x, kHeight - 1 - y, c); }},
    {"mirrorLeftRight", "mirror", "bgra", 4, 4,
     [](Pixels& s, int x, int y, int c) { return At(s, kWidth - 1 - x, y, c); }},
    {"mirrorBoth", "mirror --axis both", "grey", 1, 1,
     [](Pixels& s, int x, int y, int c) { return At(s, kWidth - 1 - x, kHeight - 1 - y, c); }},
    {"scale", "scale --by 77", "bgr", 3, 3,
     [](Pixels& s, int x, int y, int c) { return At(s, x, y, c) * 77 / 255; }},
    {"scaleLeavesAlpha", "scale --by 200", "bgra", 4, 4,
     [](Pixels& s, int x, int y, int c) {
       return c == 3 ? At(s, x, y, c) : At(s, x, y, c) * 200 / 255;
     }},
    {"scaleAlphaAlone", "scale --by 200 --alpha", "bgra", 4, 4,
     [](Pixels& s, int x, int y, int c) {
       return c == 3 ? At(s, x, y, c) * 200 / 255 : At(s, x, y, c);
     }},
    {"fillRegion", "fill --colour #102030 --region 3,4,17,9", "bgr", 3, 3,
     [](Pixels& s, int x, int y, int c) {
       return InRegion(x, y) ? 0x30 - 0x10 * c : At(s, x, y, c);
     }},
    {"fillAll", "fill --colour 1,2,3", "bgra", 4, 4,
     [](Pixels&, int, int, int c) { return c == 3 ? 255 : c + 1; }},
    {"palette", "palette --name grey", "grey", 1, 3,
     [](Pixels& s, int x, int y, int) { return At(s, x, y, 0); }},
    {"rotateHalf", "rotate --angle 180", "bgr", 3, 3,
     [](Pixels& s, int x, int y, int c) { return At(s, kWidth - 1 - x, kHeight - 1 - y, c); }},
    {"rotateByNothing", "rotate --angle -360 --fit --method linear", "bgra", 4, 4, At},
    {"rotateCutsCorners", "rotate --angle 90 --background 66", "grey", 1, 1,
     [](Pixels& s, int x, int y, int) {  // the middle of 37x21 is (18, 10)
       const int sx = 18 - (y - 10), sy = 10 + (x - 18);
       return sy < 0 || sy >= kHeight ? 66 : At(s, sx, sy, 0);
     }},
    {"warpMirrors", "warp --quad 36,0,0,0,0,20,36,20", "bgra", 4, 4,
     [](Pixels& s, int x, int y, int c) { return At(s, kWidth - 1 - x, y, c); }},
    {"warpMovesOverNothing", "warp --quad 3,4,39,4,39,24,3,24 --method nearest", "bgra", 4, 4,
     [](Pixels& s, int x, int y, int c) { return x < 3 || y < 4 ? 0 : At(s, x - 3, y - 4, c); }},
    {"unwarpOfAllIsACopy", "warp --unwarp --quad 0,0,36,0,36,20,0,20 --method linear", "grey", 1,
     1, At},
    {"ownPaletteOfOneBit", "palette --palette own.txt --bits 1", "grey", 1, 3,
     [](Pixels& s, int x, int y, int c) {
       constexpr int kEntries[2][3] = {{3, 2, 1}, {0x00, 0x80, 0xff}};
       return kEntries[At(s, x, y, 0) & 1][c];
     }},
};

INSTANTIATE_TEST_SUITE_P(All, OperationTest, testing::ValuesIn(kOperations),
                         [](const auto& info) { return info.param.name; });

// Planar video: each plane on its own grid. 6x4 in 4:2:0 has chroma of 3x2.
TEST(PlanarVideo, PlanesAreWorkedOnEachOnItsOwnGrid) {
  struct Case {
    const char* line;
    std::string expected;
  };
  const std::string header = "YUV4MPEG2 W6 H4 C420jpeg F25:1\nFRAME\n";
  const std::string luma = "abcdefghijklmnopqrstuvwx", cb = "ABCDEF", cr = "123456";
  const Case cases[] = {
      {"mirror - -", header + "fedcba" "lkjihg" "rqponm" "xwvuts" "CBAFED" "321654"},
      {"mirror - - --axis both",
       header + "xwvutsrqponmlkjihgfedcba" "FEDCBA" "654321"},
      {"scale - - --by 0", header + std::string(24, '\0') + cb + cr},
      {"fill - - --colour 48,49,50 --region 1,1,2,1",
       header + "abcdef" "g00jkl" "mnopqrstuvwx" "11CDEF" "223456"},
      {"copy - - --region 2,2,3,2",
       "YUV4MPEG2 W3 H2 C420jpeg F25:1\nFRAME\n" "opquvw" "EF" "56"},
      // 12x8 has chroma of 6x4, 3x3 of the lower right has chroma of 2x2.
      {"resize - - --factor 2 --method nearest",
       "YUV4MPEG2 W12 H8 C420jpeg F25:1\nFRAME\n"
       "aabbccddeeff" "aabbccddeeff" "gghhiijjkkll" "gghhiijjkkll"
       "mmnnooppqqrr" "mmnnooppqqrr" "ssttuuvvwwxx" "ssttuuvvwwxx"
       "AABBCC" "AABBCC" "DDEEFF" "DDEEFF" "112233" "112233" "445566" "445566"},
      {"resize - - --to 3x3 --exact-api --region 2,0,4,4 --method nearest",
       "YUV4MPEG2 W3 H3 C420jpeg F25:1\nFRAME\n" "cef" "oqr" "uwx" "BCEF" "2356"},
      {"resize - - --to 3x3 --region 2,0,4,4 --method nearest",
       "YUV4MPEG2 W3 H3 C420jpeg F25:1\nFRAME\n" "cef" "oqr" "uwx" "BCEF" "2356"},
      // Chroma turns about the middle of the frame, as luma does.
      {"rotate - - --angle 90 --fit",
       "YUV4MPEG2 W4 H6 C420jpeg F25:1\nFRAME\n"
       "flrx" "ekqw" "djpv" "ciou" "bhnt" "agms" "CF" "BE" "AD" "36" "25" "14"},
      {"warp - - --unwarp --quad 5,3,0,3,0,0,5,0 --method linear",
       header + "xwvutsrqponmlkjihgfedcba" "FEDCBA" "654321"},
      {"warp - - --quad 2,0,7,0,7,3,2,3 --to 6x4 --method nearest --background 48,49,50",
       header + "00abcd" "00ghij" "00mnop" "00stuv" "1AB1DE" "212245"},
      {"copy - - --format raw", luma + cb + cr},
      {"palette - - --name grey --format raw",
       [&] {
         std::string bgr;
         for (char c : luma) bgr += std::string(3, c);
         return bgr;
       }()},
  };
  for (const Case& test : cases) {
    Workplace place;
    const Outcome outcome = place.Run(test.line, header + luma + cb + cr);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.out, test.expected) << test.line;
  }
}

// A slope of 3 across and 4 down goes on in the result, in chroma as in luma, wherever it lies.
TEST(Resize, KeepsChromaAtItsPlace) {
  constexpr int kColumns = 32, kRows = 24;
  const struct {
    const char* field;
    double x, y;  // of the first chroma sample
  } sitings[] = {{"C420jpeg", .5, .5}, {"C420mpeg2", 0, .5}, {"C420paldv", 0, 0}};
  for (const auto& siting : sitings)
    for (const auto& [to, width, height] : {std::tuple("64x48", 64, 48), {"16x12", 16, 12},
                                            {"47x31", 47, 31}}) {
      const auto slope = [](double x, double y) { return 20 + 3 * x + 4 * y; };
      std::string stream =
          std::string("YUV4MPEG2 W32 H24 F25:1 ") + siting.field + " XA\nFRAME\n";
      for (int y = 0; y < kRows; ++y)
        for (int x = 0; x < kColumns; ++x) stream += static_cast<char>(slope(x, y));
      for (int i = 0; i < kColumns * kRows / 2; ++i)
        stream += static_cast<char>(
            slope(i % 16 * 2 + siting.x, i / 16 % (kRows / 2) * 2 + siting.y) + .5);
      Workplace place;
      const Outcome outcome =
          place.Run(std::string("resize - - --method linear --to ") + to, stream);
      ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
      const std::string planes = outcome.out.substr(outcome.out.find("FRAME\n") + 6);
      std::size_t at = 0;
      for (int plane = 0; plane < 3; ++plane) {
        const int unit = plane == 0 ? 1 : 2;
        const int columns = (width + unit - 1) / unit, rows = (height + unit - 1) / unit;
        for (int v = 0; v < rows; ++v)
          for (int u = 0; u < columns; ++u, ++at) {
            const double x = u * unit + (plane == 0 ? 0 : siting.x) + .5;
            const double y = v * unit + (plane == 0 ? 0 : siting.y) + .5;
            const double sx = x * kColumns / width - .5, sy = y * kRows / height - .5;
            if (sx < 4 || sx > kColumns - 5 || sy < 4 || sy > kRows - 5) continue;
            EXPECT_NEAR(Byte(planes, at), slope(sx, sy), 1.1)
                << siting.field << ' ' << to << ' ' << plane << ' ' << u << ',' << v;
          }
      }
    }
}

// Green that nobody sees, beside red: no trace of it in the result.
TEST(Pixels, CountByTheirAlpha) {
  std::string frame;
  for (int i = 0; i < 21 * 13; ++i)
    frame += i % 21 < 10 ? std::string("\0\xff\0\0", 4) : std::string("\0\0\xff\xff", 4);
  for (const std::string command :
       {"resize --to 8x17 --method linear", "resize --to 8x17 --method cubic",
        "resize --to 8x17 --method mitchell", "resize --to 8x17 --method area",
        "resize --to 8x17 --method lanczos", "rotate --angle 17 --fit",
        "rotate --angle -5 --method linear", "warp --quad 3,2,20,1,17,12,0,9",
        "warp --unwarp --quad 3,2,20,1,17,12,0,9 --method linear"}) {
    Workplace place;
    const std::string out = place.Run(command + " - - --layout bgra --size 21x13", frame).out;
    int between = 0;
    for (std::size_t i = 0; i < out.size(); i += 4) {
      if (out[i + 3] != 0) {
        EXPECT_EQ(out.substr(i, 3), std::string("\0\0\xff", 3)) << command;
      }
      between += out[i + 3] != 0 && out[i + 3] != '\xff';
    }
    EXPECT_GT(between, 5) << command;
  }
}

TEST(Fill, ColoursOfVideoAreConverted) {
  // ITU-R BT.601 studio range: red is Y 81, Cb 90, Cr 240; white is 235, 128, 128.
  Workplace place;
  const auto fill = [&](const std::string& layout, const std::string& colour) {
    return place.Run("fill - --size 2x2 --layout " + layout + " --colour " + colour).out;
  };
  EXPECT_EQ(fill("i420", "#ff0000"), "\x51\x51\x51\x51\x5a\xf0");
  EXPECT_EQ(fill("yv12", "#ff0000"), "\x51\x51\x51\x51\xf0\x5a");
  EXPECT_EQ(fill("nv21", "#ff0000"), "\x51\x51\x51\x51\xf0\x5a");
  EXPECT_EQ(fill("uyvy", "#ff0000"), "\x5a\x51\xf0\x51\x5a\x51\xf0\x51");
  EXPECT_EQ(fill("i444", "#ffffff"), std::string(4, '\xeb') + std::string(8, '\x80'));
}

}  // namespace
}  // namespace tooltest
