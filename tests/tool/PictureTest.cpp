// Pictures of the formats that come with metadata, and several of them as one input.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include "Program.h"

namespace tooltest {
namespace {

std::string Number(std::size_t value, int bytes, bool bigEndian) {
  std::string number;
  for (int i = 0; i < bytes; ++i)
    number += static_cast<char>(value >> 8 * (bigEndian ? bytes - 1 - i : i));
  return number;
}

// A directory of one entry, and a thumbnail of four bytes in the next.
std::string Exif(int orientation, bool bigEndian) {
  const auto n = [&](std::size_t value, int bytes) { return Number(value, bytes, bigEndian); };
  const std::string orientationEntry =
      n(0x112, 2) + n(3, 2) + n(1, 4) + n(static_cast<std::size_t>(orientation), 2) + n(0, 2);
  return (bigEndian ? "MM" : "II") + n(42, 2) + n(8, 4) + n(1, 2) + orientationEntry + n(26, 4) +
         n(2, 2) + n(0x201, 2) + n(4, 2) + n(1, 4) + n(56, 4) + n(0x202, 2) + n(4, 2) + n(1, 4) +
         n(4, 4) + n(0, 4) + "NAIL";
}

// The JPEG with this segment after its first two bytes.
std::string With(const std::string& jpeg, char marker, const std::string& data) {
  return jpeg.substr(0, 2) + '\xff' + marker + Number(data.size() + 2, 2, true) + data +
         jpeg.substr(2);
}

std::string WithExif(const std::string& jpeg, const std::string& exif) {
  return With(jpeg, '\xe1', std::string("Exif\0\0", 6) + exif);
}

TEST(Orientation, IsAppliedUnlessItIsKept) {
  Workplace place;
  std::string blocks, slope;  // 3 x 2 flat blocks of 8 x 8 pixels; 27 x 19 pixels
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 24; ++x) blocks += static_cast<char>(40 + 40 * (y / 8 * 3 + x / 8));
  for (int y = 0; y < 19; ++y)
    for (int x = 0; x < 27; ++x) slope += static_cast<char>(6 * x + 4 * y);
  const std::string write = "copy - a.jpg --quality 100 --layout grey --size ";
  ASSERT_EQ(place.Run(write + "24x16", blocks).exitCode, 0);
  const std::string jpeg = place.Read("a.jpg");
  ASSERT_EQ(place.Run(write + "27x19", slope).exitCode, 0);
  const std::string sloping = place.Read("a.jpg");
  const char* const upright[] = {"ABCDEF", "ABCDEF", "CBAFED", "FEDCBA", "DEFABC",
                                 "ADBECF", "DAEBFC", "FCEBDA", "CFBEAD"};
  for (int orientation = 0; orientation <= 8; ++orientation) {
    const std::string exif = Exif(orientation, orientation % 2 == 1);
    place.Write("in.jpg", WithExif(jpeg, exif));
    const int columns = orientation < 5 ? 3 : 2;
    const std::string out = place.Run("copy in.jpg - --format raw").out;
    ASSERT_EQ(out.size(), blocks.size());
    for (int i = 0; i < 6; ++i) {
      const int at = ((i / columns * 8 + 4) * columns + i % columns) * 8 + 4;
      const int block = upright[orientation][i] - 'A';
      EXPECT_NEAR(Byte(out, static_cast<std::size_t>(at)), 40 + 40 * block, 2)
          << orientation << ' ' << i;
    }
    EXPECT_NEAR(Byte(place.Run("copy in.jpg - --format raw --keep-orientation").out, 0), 40, 2);
    const char* const size = columns == 3 ? "size    24x16" : "size    16x24";
    EXPECT_NE(place.Run("info in.jpg").out.find(size), std::string::npos) << orientation;

    // The tag goes with the pixels, and the picture of what they were is gone.
    ASSERT_EQ(place.Run("copy in.jpg kept.jpg --keep-orientation").exitCode, 0);
    EXPECT_NE(place.Read("kept.jpg").find(exif), std::string::npos);
    ASSERT_EQ(place.Run("copy in.jpg out.png").exitCode, 0);
    ASSERT_EQ(place.Run("copy out.png out.jpg").exitCode, 0);
    std::string said = Exif(1, orientation % 2 == 1);
    said.replace(22, 4, 4, '\0').replace(56, 4, 4, '\0');
    EXPECT_NE(place.Read("out.jpg").find(said), std::string::npos) << orientation;

    // Decoded at half the size, pixels are where they are in the whole picture.
    place.Write("in.jpg", WithExif(sloping, exif));
    ASSERT_EQ(place.Run("copy in.jpg whole.png").exitCode, 0);
    const std::string to = " - --format raw --method linear --fit 6x6";
    const std::string small = place.Run("resize in.jpg" + to).out;
    const std::string expected = place.Run("resize whole.png" + to).out;
    ASSERT_EQ(small.size(), 24u);
    for (std::size_t i = 0; i < small.size(); ++i)
      EXPECT_NEAR(Byte(small, i), Byte(expected, i), 3) << orientation << ' ' << i;
  }
  // Damaged data are as if there were none.
  for (std::size_t cut = 0; cut < Exif(6, false).size(); cut += 3) {
    place.Write("in.jpg", WithExif(jpeg, Exif(6, cut % 2 == 0).substr(0, cut)));
    EXPECT_EQ(place.Run("copy in.jpg - --format raw").out.size(), blocks.size()) << cut;
  }
}

TEST(Metadata, GoesFromPictureToPicture) {
  std::string profile = Number(352, 4, true) + std::string(8, '\0') + "mntrRGB XYZ ";
  profile += std::string(12, '\0') + "acsp" + std::string(28, '\0');
  profile += Number(0xf6d6, 4, true) + Number(0x10000, 4, true) + Number(0xd32d, 4, true);
  profile.resize(128);
  profile += Number(1, 4, true) + "cprt" + Number(144, 4, true) + Number(208, 4, true) + "text";
  profile += std::string(4, '\0') + Noise(200, 1);
  Workplace place;
  ASSERT_EQ(place.Run("fill a.jpg --size 9x7 --colour 9").exitCode, 0);
  std::string jpeg = place.Read("a.jpg");
  jpeg.replace(13, 5, std::string("\1\1\x2c\0\xc8", 5));  // 300 x 200 dots an inch
  const std::string icc = std::string("ICC_PROFILE\0\1\1", 14) + profile;
  place.Write("a.jpg", With(With(jpeg, '\xe2', icc), '\xfe', "who made it"));
  ASSERT_EQ(place.Run("rotate a.jpg b.png --angle 9").exitCode, 0);
  ASSERT_EQ(place.Run("resize b.png c.jpg --to 40x").exitCode, 0);
  const std::string out = place.Read("c.jpg");
  EXPECT_NE(out.find(icc), std::string::npos);
  EXPECT_NE(out.find("who made it"), std::string::npos);
  EXPECT_EQ(out.substr(13, 5), jpeg.substr(13, 5));
  ASSERT_EQ(place.Run("convert c.jpg grey.png --to grey").exitCode, 0);  // no profile for that
  EXPECT_EQ(place.Read("grey.png").find("iCCP"), std::string::npos);
}

TEST(Netpbm, IsReadAndWritten) {
  Workplace place;
  const std::pair<std::string, std::string> cases[] = {  // and grey or B, G, R
      {"P5 2 1 255\n\1\2", "\1\2"},
      {"P6\n# made by hand\n1\t2 # rows\n255\nabcdef", "cbafed"},
      {"P5 3 1 15\n" + std::string("\0\7\17", 3), std::string("\0\x77\xff", 3)},
      {"P5 2 1 65535\n" + std::string("\x7f\xff\x80\0", 4), "\x7f\x80"}};
  for (const auto& [file, pixels] : cases) {
    EXPECT_EQ(place.Run("copy - - --format raw", file).out, pixels);
    ASSERT_EQ(place.Run("copy - a.ppm", file).exitCode, 0);
    EXPECT_EQ(place.Run("copy a.ppm - --format raw").out, pixels);
  }
  const std::string two = "P5 2 1 255\nabP5 2 1 255\ncd";
  EXPECT_EQ(place.Run("copy - - --format raw", two).out, "abcd");
}

TEST(Pictures, AreAStreamWhereThereAreMore) {
  Workplace place;
  std::string png, jpeg;
  for (const std::string value : {"10", "20", "30"}) {
    ASSERT_EQ(place.Run("fill a.png --layout grey --size 8x1 --colour " + value).exitCode, 0);
    ASSERT_EQ(place.Run("copy a.png a.jpg").exitCode, 0);
    place.Write("n-0" + value + ".png", place.Read("a.png"));
    png += place.Read("a.png");
    jpeg += place.Read("a.jpg") + std::string(3, '\0');
  }
  for (const std::string number : {"1", "2", "3"})
    place.Write("k-" + number + ".png", place.Read("n-0" + number + "0.png"));
  const std::string a(8, '\12'), b(8, '\24'), c(8, '\36');
  const std::string raw = " - --format raw";
  EXPECT_EQ(place.Run("copy -" + raw, png).out, a + b + c);
  EXPECT_EQ(place.Run("copy -" + raw, jpeg + png).out, a + b + c + a + b + c);
  EXPECT_EQ(place.Run("copy -" + raw + " --frames 2-2", jpeg).out, b);
  EXPECT_EQ(place.Run("copy - x.png", png).exitCode, 1);
  EXPECT_EQ(place.Run("copy k-%d.png" + raw).out, a + b + c);
  EXPECT_EQ(place.Run("copy k-%d.png --frames 2-2" + raw).out, b);
  const Outcome cut = place.Run("copy -" + raw, png.substr(0, png.size() - 9));
  EXPECT_EQ(cut.exitCode, 1);
  EXPECT_NE(cut.err.find("standard input: picture 3: not a whole PNG"), std::string::npos);

  // On a sheet, each in the middle of its cell, without what cannot be read.
  const Outcome sheet = place.Run(
      "sheet a.jpg k-1.png nothing.png n-020.png sheet.ppm --cell 10x3 --gap 1 --background 0");
  EXPECT_EQ(sheet.exitCode, 1);
  EXPECT_NE(sheet.err.find("nothing.png: cannot open"), std::string::npos);
  const std::string pixels = place.Run("copy sheet.ppm" + raw).out;
  ASSERT_EQ(pixels.size(), 23u * 9 * 3);
  for (int y = 0; y < 9; ++y)
    for (int x = 0; x < 23; ++x) {
      const bool inside = x % 11 >= 2 && x % 11 < 10 && x < 21 && y % 4 == 2 && (x < 11 || y < 5);
      const int value = !inside ? 0 : y > 4 ? 20 : x < 11 ? 30 : 10;
      EXPECT_EQ(Byte(pixels, static_cast<std::size_t>(y * 23 + x) * 3), value) << x << ',' << y;
    }
}

// Inks of 4:4:4 samples, which are 255 less what is stored if there is an Adobe marker.
TEST(Jpeg, OfInksBecomesColours) {
  const std::pair<J_COLOR_SPACE, bool> cases[] = {
      {JCS_CMYK, true}, {JCS_CMYK, false}, {JCS_YCCK, true}};
  for (const auto& [space, adobe] : cases) {
    jpeg_compress_struct jpeg = {};
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* bytes = nullptr;
    unsigned long count = 0;
    jpeg_mem_dest(&jpeg, &bytes, &count);
    jpeg.image_width = jpeg.image_height = 8;
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_set_colorspace(&jpeg, space);
    jpeg_set_quality(&jpeg, 100, TRUE);
    jpeg.write_Adobe_marker = adobe;
    jpeg_start_compress(&jpeg, TRUE);
    std::string row;
    for (int x = 0; x < 8; ++x)
      for (const int ink : {0, 51, 102, 51}) row += static_cast<char>(adobe ? 255 - ink : ink);
    auto* rows = reinterpret_cast<JSAMPROW>(row.data());
    while (jpeg.next_scanline < 8) jpeg_write_scanlines(&jpeg, &rows, 1);
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    const std::string file(reinterpret_cast<char*>(bytes), count);
    std::free(bytes);
    const std::string out = Workplace().Run("copy - - --format raw", file).out;
    ASSERT_EQ(out.size(), 192u);
    EXPECT_NEAR(Byte(out, 0), 122, 2);  // 255 * (1 - 2/5) * (1 - 1/5)
    EXPECT_NEAR(Byte(out, 1), 163, 2);
    EXPECT_NEAR(Byte(out, 2), 204, 2);
  }
}

#ifdef QVTOOL_WEBP
TEST(Webp, IsRead) {
  // 2 x 1 pixels without loss: 1, 2, 3, 255 and 16, 32, 48, 128.
  const std::string file(
      "RIFF\x28\0\0\0WEBPVP8L\x1b\0\0\0\x2f\1\0\0\x10\x0f\x70\1\x0f\x82\x6c\xdb\xd0\xb6\xf3\x7c"
      "\x1f\x1e\xf8\x1f\xe6\x87\x0a\x44\xf4\x3f\0\0", 48);
  const std::string pixels = "\1\2\3\xff\x10\x20\x30\x80";
  EXPECT_EQ(Workplace().Run("copy - - --format raw", file).out, pixels);
  EXPECT_EQ(Workplace().Run("copy - - --format raw", file + file).out, pixels + pixels);
  EXPECT_EQ(Workplace().Run("copy - - --format raw", file.substr(0, 40)).exitCode, 1);
}
#endif

#ifdef QVTOOL_TIFF
TEST(Tiff, IsRead) {
  // 2 x 1 pixels of red, green, blue and an alpha of one of three meanings, as they are stored.
  const std::string pixels = "\3\2\1\xff\x30\x20\x10\x80";
  const std::pair<int, std::string> cases[] = {
      {1, "\1\2\3\xff\x20\x40\x60\x80"}, {2, "\1\2\3\xff\x10\x20\x30\x80"}};
  for (const auto& [kind, expected] : cases)
    for (const bool big : {false, true}) {
      const auto n = [&](std::size_t value, int bytes) { return Number(value, bytes, big); };
      const std::pair<int, std::size_t> entries[] = {
          {256, 2}, {257, 1}, {259, 1}, {262, 2}, {273, 8}, {277, 4}, {278, 1}, {279, 8},
          {338, static_cast<std::size_t>(kind)}};
      std::string file = (big ? "MM" : "II") + n(42, 2) + n(24, 4) + pixels +
                         n(8, 2) + n(8, 2) + n(8, 2) + n(8, 2) + n(10, 2);
      for (const auto& [tag, value] : entries) {
        if (tag == 259) file += n(258, 2) + n(3, 2) + n(4, 4) + n(16, 4);  // bits a sample
        file += n(static_cast<std::size_t>(tag), 2) + n(3, 2) + n(1, 4) + n(value, 2) + n(0, 2);
      }
      file += n(0, 4);
      const Outcome outcome = Workplace().Run("copy - - --format raw", file);
      EXPECT_EQ(outcome.out, expected) << outcome.err;
      EXPECT_EQ(Workplace().Run("copy - - --format raw", file.substr(0, 60)).exitCode, 1);
    }
}
#endif

}  // namespace
}  // namespace tooltest
