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
struct ColourMatrix {
  int64_t red, blue;
};

constexpr ColourMatrix kColourMatrices[] = {{2990, 1140}, {2126, 722}, {2627, 593}};

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
constexpr YuvToRgbTerms MakeYuvToRgb(ColourMatrix k, bool full, bool swapped) {
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

// Two whole numbers, together `least` + 1 to 128, whose proportion is nearly that of `first` to
// `second`.
struct Proportion {
  int64_t first, second;
};

constexpr Proportion NearestProportion(int64_t first, int64_t second, int64_t least) {
  Proportion best = {};
  int64_t bestError = 0;
  for (int64_t x = 1; x < 128; ++x) {
    const int64_t own = Rounded(first * x, second), off = own * second - first * x;
    const int64_t error = off < 0 ? -off : off;
    if (own + x <= least || own + x > 128) continue;
    if (best.second != 0 && error * best.second >= bestError * x) continue;
    best = {own, x};
    bestError = error;
  }
  return best;
}

constexpr int PartsOfLuma(const RgbToYuvTerms& t, int a, int b, int c) {
  return HighHalf(a * t.pair[0] + b * t.pair[1], t.ofPair) + HighHalf(c * t.unit, t.ofRed);
}

constexpr int GreyToLuma(int grey, bool full) {
  return static_cast<int>(ScaleOf(full).lumaOffset + Rounded(grey * ScaleOf(full).luma, 255));
}

// Every grey comes out correctly rounded and without a colour.
constexpr bool GreysAreExact(const RgbToYuvTerms& t, bool full) {
  for (int grey = 0; grey < 256; ++grey) {
    const int parts = PartsOfLuma(t, grey, grey, grey);
    if (((parts + t.lumaOffset) * t.toLuma + (1 << 14)) >> 15 != GreyToLuma(grey, full))
      return false;
    for (int quarter : t.quarter)
      if ((((grey * t.unit - parts) * 4 * quarter >> 16) + 16) >> 5 != 0) return false;
  }
  return true;
}

// Some greys lie so near to a half that factors of 16 bits decide: those next to the nearest.
constexpr RgbToYuvTerms WithExactGreys(const RgbToYuvTerms& t, bool full) {
  constexpr int nudges[] = {0, 1, -1};
  for (int third : nudges)
    for (int pair : nudges) {
      RgbToYuvTerms nudged = t;
      nudged.ofPair = static_cast<uint16_t>(t.ofPair + pair);
      nudged.ofRed = static_cast<uint16_t>(t.ofRed + third);
      if (GreysAreExact(nudged, full)) return nudged;
    }
  return t;
}

// What a byte is multiplied by where chroma is the difference of a byte and luma, and what brings
// such luma back to its scale. Whole numbers that are nearly exact together: the product of both,
// times 255 / scale.luma, is 32766 for 32768.
struct LumaParts {
  int64_t unit, toLuma;
};

constexpr LumaParts LumaPartsOf(bool full) {
  return full ? LumaParts{86, 381} : LumaParts{84, 335};
}

constexpr RgbToYuvTerms MakeRgbToYuv(ColourMatrix k, bool full) {
  constexpr int64_t all = 10000;
  const Scale scale = ScaleOf(full);
  const LumaParts parts = LumaPartsOf(full);
  // A factor of their sum stays below 65536.
  const Proportion pair =
      NearestProportion(k.blue, all - k.blue - k.red, parts.unit * (all - k.red) / all + 1);
  // Of `weight` in what is made of `from`.
  const auto factor = [&](int64_t weight, int64_t from) {
    return static_cast<uint16_t>(
        Rounded((weight * scale.luma) << 31, all * 255 * parts.toLuma * from));
  };
  const auto quarter = [&](int64_t weight) {
    return static_cast<int16_t>(
        Rounded((all * scale.chroma) << 19, 2 * (all - weight) * 255 * parts.unit));
  };
  // A part more for luma is half of what two products lose.
  const int64_t offset = Rounded(int64_t{scale.lumaOffset} << 15, parts.toLuma) + 1;
  return WithExactGreys({static_cast<uint8_t>(parts.unit),
                         {static_cast<uint8_t>(pair.first), static_cast<uint8_t>(pair.second)},
                         factor(all - k.red, pair.first + pair.second),
                         factor(k.red, parts.unit),
                         static_cast<int16_t>(offset),
                         static_cast<int16_t>(parts.toLuma),
                         {quarter(k.blue), quarter(k.red)}},
                        full);
}

constexpr LumaMap MakeLumaToGrey(bool full) {
  const YuvToRgbTerms t = MakeYuvToRgb(kColourMatrices[0], full, false);
  return {t.luma, static_cast<int16_t>(t.offset[0] + (t.first >> 1))};
}

constexpr LumaMap MakeGreyToLuma(bool full) {
  const Scale scale = ScaleOf(full);
  return {static_cast<uint16_t>(Rounded(scale.luma << 14, 255)),
          static_cast<int16_t>(scale.lumaOffset * 64 + 32)};
}

}  // namespace terms

// By matrix, range (0 studio, 1 full) and order (0 B, G, R; 1 R, G, B).
struct YuvToRgbTable {
  YuvToRgbTerms at[3][2][2];
};

constexpr auto kYuvToRgb = [] {
  YuvToRgbTable table{};
  for (int i = 0; i < 12; ++i)
    table.at[i / 4][i / 2 % 2][i % 2] =
        terms::MakeYuvToRgb(kColourMatrices[i / 4], i / 2 % 2 == 1, i % 2 == 1);
  return table;
}();

// By matrix and range.
struct RgbToYuvTable {
  RgbToYuvTerms at[3][2];
};

constexpr auto kRgbToYuv = [] {
  RgbToYuvTable table{};
  for (int i = 0; i < 6; ++i)
    table.at[i / 2][i % 2] = terms::MakeRgbToYuv(kColourMatrices[i / 2], i % 2 == 1);
  return table;
}();

// By range.
constexpr LumaMap kLumaToGrey[2] = {terms::MakeLumaToGrey(false), terms::MakeLumaToGrey(true)};
constexpr LumaMap kGreyToLuma[2] = {terms::MakeGreyToLuma(false), terms::MakeGreyToLuma(true)};

namespace terms {

constexpr int Limited(int64_t x) { return x < 0 ? 0 : x > 255 ? 255 : static_cast<int>(x); }

// The same the other way, and of the map of luma alone.
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

// And the maps of greys alone.
constexpr bool IsExact(LumaMap map, bool full) {
  for (int grey = 0; grey < 256; ++grey)
    if ((HighHalf(grey << 8, map.factor) + map.offset) >> 6 != GreyToLuma(grey, full)) return false;
  return true;
}

// What is computed fits what holds it: a term of chroma with its offset signed 16 bits (luma is
// added to it with saturation, which leaves a byte what it is), and so parts of luma, sums of two
// products of bytes, differences and their factors; what bytes are multiplied by signed 8 bits.
constexpr bool FitsWords(const YuvToRgbTerms& t) {
  const auto most = [](int factor) { return HighHalf(255 << 8, factor); };
  return most(t.luma) < 32768 && most(t.first) + t.offset[0] < 32768 &&
         most(t.third) + t.offset[2] < 32768 &&
         t.offset[1] - 32 - most(t.second[0]) - most(t.second[1]) >= -32768;
}

constexpr bool FitsWords(const RgbToYuvTerms& t) {
  const int most = 255 * t.unit;
  return t.pair[0] + t.pair[1] <= 128 && t.unit < 128 && PartsOfLuma(t, 255, 255, 255) < 32768 &&
         most - PartsOfLuma(t, 255, 0, 0) < 32768 && most - PartsOfLuma(t, 0, 0, 255) < 32768 &&
         4 * t.quarter[0] < 32768 && 4 * t.quarter[1] < 32768;
}

constexpr bool AllHold() {
  for (int i = 0; i < 12; ++i) {
    const int matrix = i / 4, range = i / 2 % 2, order = i % 2;
    const YuvToRgbTerms& toRgb = kYuvToRgb.at[matrix][range][order];
    const RgbToYuvTerms& toYuv = kRgbToYuv.at[matrix][range];
    if (!FitsWords(toRgb) || !FitsWords(toYuv) ||
        !GreysAreExact(toRgb, kLumaToGrey[range], range == 1) ||
        !GreysAreExact(toYuv, range == 1) || !IsExact(kGreyToLuma[range], range == 1))
      return false;
  }
  return true;
}

static_assert(AllHold());

}  // namespace terms

}  // namespace qv

#endif
