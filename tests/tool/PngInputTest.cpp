// PNG files of every kind, written here with libpng, become the samples that they stand for.
#include <gtest/gtest.h>
#include <png.h>

#include "Program.h"

namespace tooltest {
namespace {

constexpr int kWidth = 13;
constexpr int kHeight = 6;

struct Kind {
  const char* name;
  int colour;
  int depth;
  int interlace = PNG_INTERLACE_NONE;
  bool transparent = false;  // a transparent colour or palette entry
};

int Channels(int colour) {
  switch (colour) {
    case PNG_COLOR_TYPE_GRAY_ALPHA: return 2;
    case PNG_COLOR_TYPE_RGB: return 3;
    case PNG_COLOR_TYPE_RGB_ALPHA: return 4;
    default: return 1;
  }
}

// Sample c of pixel (x, y), in the depth of the file.
int Sample(const Kind& kind, int x, int y, int c) {
  const unsigned mixed = static_cast<unsigned>((y * kWidth + x) * 4 + c) * 40503u;
  return static_cast<int>((mixed >> 3) & ((1u << kind.depth) - 1));
}

png_color Entry(int index) {
  return {static_cast<png_byte>(index * 7), static_cast<png_byte>(255 - index),
          static_cast<png_byte>(index * index)};
}

std::string Write(const Kind& kind) {
  std::string bytes;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(
      png, &bytes,
      [](png_structp writer, png_bytep data, png_size_t count) {
        static_cast<std::string*>(png_get_io_ptr(writer))
            ->append(reinterpret_cast<const char*>(data), count);
      },
      nullptr);
  png_set_IHDR(png, info, kWidth, kHeight, kind.depth, kind.colour, kind.interlace,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  std::vector<png_color> palette;
  if (kind.colour == PNG_COLOR_TYPE_PALETTE) {
    for (int i = 0; i < 1 << kind.depth; ++i) palette.push_back(Entry(i));
    png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
  }
  if (kind.transparent) {
    png_byte alphas[2] = {10, 200};
    png_color_16 colour = {};
    colour.gray = static_cast<png_uint_16>(Sample(kind, 0, 0, 0));
    png_set_tRNS(png, info, alphas, 2, &colour);
  }
  // A gamma that must not be applied.
  if (kind.depth >= 8) png_set_gAMA(png, info, 1.0);
  png_write_info(png, info);
  std::vector<std::string> rows(kHeight);
  std::vector<png_bytep> pointers;
  for (int y = 0; y < kHeight; ++y) {
    std::string& row = rows[static_cast<std::size_t>(y)];
    for (int x = 0; x < kWidth; ++x)
      for (int c = 0; c < Channels(kind.colour); ++c) {
        const int sample = Sample(kind, x, y, c);
        if (kind.depth == 16) row += static_cast<char>(sample >> 8);
        row += static_cast<char>(sample);
      }
    pointers.push_back(reinterpret_cast<png_bytep>(row.data()));
  }
  if (kind.depth < 8) png_set_packing(png);
  png_set_interlace_handling(png);
  png_write_image(png, pointers.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return bytes;
}

// The bytes of the pixel that qvtool should see: grey, BGR or BGRA.
std::string Expected(const Kind& kind, int x, int y) {
  const auto eight = [&](int c) {
    const int most = (1 << kind.depth) - 1;
    return static_cast<char>((Sample(kind, x, y, c) * 255 + most / 2) / most);
  };
  const std::string alphaOfKey =
      kind.transparent
          ? std::string(1, Sample(kind, x, y, 0) == Sample(kind, 0, 0, 0) ? '\0' : '\xff')
          : "";
  switch (kind.colour) {
    case PNG_COLOR_TYPE_GRAY:
      return kind.transparent ? std::string(3, eight(0)) + alphaOfKey : std::string(1, eight(0));
    case PNG_COLOR_TYPE_GRAY_ALPHA: return std::string(3, eight(0)) + eight(1);
    case PNG_COLOR_TYPE_RGB: return {eight(2), eight(1), eight(0)};
    case PNG_COLOR_TYPE_RGB_ALPHA: return {eight(2), eight(1), eight(0), eight(3)};
    default: {
      const int index = Sample(kind, x, y, 0);
      const png_color entry = Entry(index);
      std::string pixel{static_cast<char>(entry.blue), static_cast<char>(entry.green),
                        static_cast<char>(entry.red)};
      if (kind.transparent)
        pixel += index == 0 ? static_cast<char>(10) : index == 1 ? static_cast<char>(200) : '\xff';
      return pixel;
    }
  }
}

class PngInput : public testing::TestWithParam<Kind> {};

TEST_P(PngInput, BecomesTheSamplesItStandsFor) {
  const Kind& kind = GetParam();
  Workplace place;
  place.Write("in.png", Write(kind));
  std::string expected;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) expected += Expected(kind, x, y);
  const Outcome direct = place.Run("copy in.png - --format raw");
  EXPECT_EQ(direct.exitCode, 0) << direct.err;
  EXPECT_TRUE(direct.out == expected);
  // And once more through a PNG that qvtool wrote.
  ASSERT_EQ(place.Run("copy in.png out.png").exitCode, 0);
  EXPECT_TRUE(place.Run("copy out.png - --format raw").out == expected);
}

constexpr Kind kKinds[] = {
    {"grey1", PNG_COLOR_TYPE_GRAY, 1},
    {"grey2", PNG_COLOR_TYPE_GRAY, 2},
    {"grey4", PNG_COLOR_TYPE_GRAY, 4},
    {"grey8", PNG_COLOR_TYPE_GRAY, 8},
    {"grey16", PNG_COLOR_TYPE_GRAY, 16},
    {"grey8Keyed", PNG_COLOR_TYPE_GRAY, 8, PNG_INTERLACE_NONE, true},
    {"greyAlpha8", PNG_COLOR_TYPE_GRAY_ALPHA, 8},
    {"rgb8", PNG_COLOR_TYPE_RGB, 8},
    {"rgb16", PNG_COLOR_TYPE_RGB, 16},
    {"rgb8Interlaced", PNG_COLOR_TYPE_RGB, 8, PNG_INTERLACE_ADAM7},
    {"rgba8", PNG_COLOR_TYPE_RGB_ALPHA, 8},
    {"rgba16", PNG_COLOR_TYPE_RGB_ALPHA, 16},
    {"palette1", PNG_COLOR_TYPE_PALETTE, 1},
    {"palette2", PNG_COLOR_TYPE_PALETTE, 2},
    {"palette4Interlaced", PNG_COLOR_TYPE_PALETTE, 4, PNG_INTERLACE_ADAM7},
    {"palette8", PNG_COLOR_TYPE_PALETTE, 8},
    {"palette8Transparent", PNG_COLOR_TYPE_PALETTE, 8, PNG_INTERLACE_NONE, true},
};

INSTANTIATE_TEST_SUITE_P(All, PngInput, testing::ValuesIn(kKinds),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace tooltest
