// The coefficients of the conversions in fixed point, from the Kr and Kb of ITU-R BT.601, BT.709
// and BT.2020 (non-constant luminance):
//   Y  = Kr R + (1 - Kr - Kb) G + Kb B
//   Cb = (B - Y) / (2 (1 - Kb)),  Cr = (R - Y) / (2 (1 - Kr))
// as bytes 16 + 219/255 Y and 128 + 224/255 C in studio range, Y and 128 + C in full range.
#ifndef QV_KERNELS_YUV_YUVTERMS_H
#define QV_KERNELS_YUV_YUVTERMS_H

#include <stdint.h>

#include "kernels/yuv/Yuv.h"

namespace qv {

// 10000 Kr and Kb.
struct ColorMatrix {
  int64_t red, blue;
};

constexpr ColorMatrix kColorMatrices[] = {{2990, 1140}, {2126, 722}, {2627, 593}};

namespace terms {

constexpr int64_t Rounded(int64_t dividend, int64_t divisor) {
  return (2 * dividend + divisor) / (2 * divisor);
}

// What is added to a sum in units of 1 / `one`: the offset of the byte's scale and a half.
struct Scale {
  int64_t luma, chroma;  // of 255
  int lumaOffset;
};

constexpr Scale ScaleOf(bool full) { return full ? Scale{255, 255, 0} : Scale{219, 224, 16}; }

constexpr int HighHalf(int a, int b) {
  return static_cast<int>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b) >> 16);
}

// For pixels B, G, R, or R, G, B if `swapped`.
constexpr YuvToRgbTerms MakeYuvToRgb(ColorMatrix k, bool full, bool swapped) {
  constexpr int64_t one = 1 << 14, all = 10000;
  const Scale scale = ScaleOf(full);
  const int64_t green = all - k.red - k.blue;
  const auto factor = [&](int64_t weight) {  // of 2 (1 - weight)
    return static_cast<uint16_t>(Rounded(2 * (all - weight) * 255 * one, all * scale.chroma));
  };
  const auto inGreen = [&](int64_t weight) {
    return static_cast<uint16_t>(
        Rounded(2 * weight * (all - weight) * 255 * one, all * green * scale.chroma));
  };
  const int64_t first = swapped ? k.red : k.blue, third = swapped ? k.blue : k.red;
  const auto luma = static_cast<uint16_t>(Rounded(255 * one, scale.luma));
  // Half a unit is 32. The luma offset is rounded up: a product loses up to a 64th.
  const int offset = 32 - (scale.lumaOffset * luma >> 8);
  return {luma,
          factor(first),
          factor(third),
          {inGreen(first), inGreen(third)},
          {static_cast<int16_t>(offset - (factor(first) >> 1)),
           static_cast<int16_t>(offset + (inGreen(first) >> 1) + (inGreen(third) >> 1)),
           static_cast<int16_t>(offset - (factor(third) >> 1))}};
}

constexpr RgbToYuvTerms MakeRgbToYuv(ColorMatrix k, bool full, bool swapped) {
  constexpr int64_t one = 1 << 16, all = 10000;
  const Scale scale = ScaleOf(full);
  const int64_t first = swapped ? k.red : k.blue, third = swapped ? k.blue : k.red;
  const auto weight = [&](int64_t of) { return Rounded(of * scale.luma * one, all * 255); };
  const int64_t sum = Rounded(scale.luma * one, 255), half = Rounded(scale.chroma * one, 510);
  // Of `other` in the chroma of `own`. The two subtracted ones add up to what they are taken from,
  // so that a grey leaves nothing.
  const auto less = [&](int64_t other, int64_t own) {
    return Rounded(other * scale.chroma * one, 2 * (all - own) * 255);
  };
  const auto word = [](int64_t value) { return static_cast<uint16_t>(value); };
  return {{word(weight(first)), word(sum - weight(first) - weight(third)), word(weight(third))},
          word(half),
          {{word(half - less(third, first)), word(less(third, first))},
           {word(half - less(first, third)), word(less(first, third))}},
          // A half, and half of what three products lose; 127 is the most that keeps the largest
          // chroma of full range, 255.5, within 16 bits.
          word(scale.lumaOffset * 256 + (full ? 128 : 129)),
          word(128 * 256 + 127)};
}

constexpr LumaMap MakeLumaToGrey(bool full) {
  const YuvToRgbTerms t = MakeYuvToRgb(kColorMatrices[0], full, false);
  return {t.luma, static_cast<int16_t>(t.offset[0] + (t.first >> 1))};
}

constexpr LumaMap MakeGreyToLuma(bool full) {
  const Scale scale = ScaleOf(full);
  return {static_cast<uint16_t>(Rounded(scale.luma << 14, 255)),
          static_cast<int16_t>(scale.lumaOffset * 64 + 32)};
}

}  // namespace terms

// By matrix, range (0 studio, 1 full) and order (0 B, G, R; 1 R, G, B).
template <class Terms>
struct TermTable {
  Terms at[3][2][2];
};

constexpr auto kYuvToRgb = [] {
  TermTable<YuvToRgbTerms> table{};
  for (int i = 0; i < 12; ++i)
    table.at[i / 4][i / 2 % 2][i % 2] =
        terms::MakeYuvToRgb(kColorMatrices[i / 4], i / 2 % 2 == 1, i % 2 == 1);
  return table;
}();

constexpr auto kRgbToYuv = [] {
  TermTable<RgbToYuvTerms> table{};
  for (int i = 0; i < 12; ++i)
    table.at[i / 4][i / 2 % 2][i % 2] =
        terms::MakeRgbToYuv(kColorMatrices[i / 4], i / 2 % 2 == 1, i % 2 == 1);
  return table;
}();

// By range.
constexpr LumaMap kLumaToGrey[2] = {terms::MakeLumaToGrey(false), terms::MakeLumaToGrey(true)};
constexpr LumaMap kGreyToLuma[2] = {terms::MakeGreyToLuma(false), terms::MakeGreyToLuma(true)};

namespace terms {

constexpr int Limited(int64_t x) { return x < 0 ? 0 : x > 255 ? 255 : static_cast<int>(x); }

// Every grey comes out correctly rounded and without a colour, both ways.
constexpr bool GreysAreExact(const YuvToRgbTerms& t, LumaMap map, bool full) {
  const Scale scale = ScaleOf(full);
  for (int y = 0; y < 256; ++y) {
    const int64_t exact = (y - scale.lumaOffset) * int64_t{255};
    const int grey = exact < 0 ? 0 : Limited(Rounded(exact, scale.luma));
    const auto part = [](int factor) { return HighHalf(128 << 8, factor); };
    const int chroma[] = {part(t.first), -part(t.second[0]) - part(t.second[1]), part(t.third)};
    for (int c = 0; c < 3; ++c)
      if (Limited((HighHalf(y << 8, t.luma) + chroma[c] + t.offset[c]) >> 6) != grey) return false;
    if (Limited((HighHalf(y << 8, map.factor) + map.offset) >> 6) != grey) return false;
  }
  return true;
}

constexpr bool GreysAreExact(const RgbToYuvTerms& t, LumaMap map, bool full) {
  const Scale scale = ScaleOf(full);
  for (int grey = 0; grey < 256; ++grey) {
    const int exact = static_cast<int>(scale.lumaOffset + Rounded(grey * scale.luma, 255));
    const auto part = [&](int factor) { return HighHalf(grey << 8, factor); };
    if ((part(t.luma[0]) + part(t.luma[1]) + part(t.luma[2]) + t.lumaOffset) >> 8 != exact ||
        (part(map.factor) + map.offset) >> 6 != exact)
      return false;
    for (const auto& less : t.less)
      if ((part(t.half) - part(less[0]) - part(less[1]) + t.chromaOffset) >> 8 != 128) return false;
  }
  return true;
}

// What is added fits what holds it: a term of chroma with its offset signed 16 bits (luma is added
// to it with saturation, which leaves a byte what it is), a sample's sum unsigned ones.
constexpr bool FitsWords(const YuvToRgbTerms& t) {
  const auto most = [](int factor) { return HighHalf(255 << 8, factor); };
  return most(t.luma) < 32768 && most(t.first) + t.offset[0] < 32768 &&
         most(t.third) + t.offset[2] < 32768 &&
         t.offset[1] - most(t.second[0]) - most(t.second[1]) >= -32768;
}

constexpr bool FitsWords(const RgbToYuvTerms& t) {
  const auto most = [](int factor) { return HighHalf(255 << 8, factor); };
  const int luma = most(t.luma[0]) + most(t.luma[1]) + most(t.luma[2]) + t.lumaOffset;
  return luma < 65536 && most(t.half) + t.chromaOffset < 65536 && t.half <= t.chromaOffset;
}

constexpr bool AllHold() {
  for (int i = 0; i < 12; ++i) {
    const int matrix = i / 4, range = i / 2 % 2, order = i % 2;
    const YuvToRgbTerms& toRgb = kYuvToRgb.at[matrix][range][order];
    const RgbToYuvTerms& toYuv = kRgbToYuv.at[matrix][range][order];
    if (!FitsWords(toRgb) || !FitsWords(toYuv) ||
        !GreysAreExact(toRgb, kLumaToGrey[range], range == 1) ||
        !GreysAreExact(toYuv, kGreyToLuma[range], range == 1))
      return false;
  }
  return true;
}

static_assert(AllHold());

}  // namespace terms

}  // namespace qv

#endif
