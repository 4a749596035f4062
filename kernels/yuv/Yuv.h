// Entry points of the conversions between luma and chroma in any of eight layouts and pixels of
// three or four bytes. Each forwards to the rows of this processor's level; all levels write the
// same bytes. Nothing is checked here.
//
// A frame is described by where its samples lie, so that all layouts are one: planes have their
// samples side by side, two planes or packed groups have other samples between them.
#ifndef QV_KERNELS_YUV_YUV_H
#define QV_KERNELS_YUV_YUV_H

#include <stdint.h>

#include "dispatch/Dispatched.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Sample i of a row lies `apart` * i bytes past its first one. `chroma[0]` is what the first byte
// of a pixel hangs on: Cb of B, G, R; Cr of R, G, B. A row of half the width has (width + 1) / 2
// samples, and a frame of half the height (height + 1) / 2 such rows.
template <class Byte>
struct YuvFrame {
  Byte* luma;
  int lumaStep;
  int lumaApart;  // 1, or 2 in packed groups
  Byte* chroma[2];
  int chromaStep[2];
  int chromaApart;  // 1, 2 in pairs, or 4 in packed groups
  bool halfWidth, halfHeight;
};

template <class Byte>
struct RgbFrame {
  Byte* pixels;
  int step;
  int channels;   // 3 or 4; RgbToYuv_8u also takes 1, a grey for all three
  bool redFirst;  // R, G, B; YuvToRgb_8u is given the two chroma samples exchanged instead
};

// Products of two 16-bit numbers, of which the upper halves are used. Samples are multiplied by
// 256, coefficients by 2^14, so that sums are in 64ths and stay within 16 bits.
struct YuvToRgbTerms {
  uint16_t luma;
  uint16_t first, third;  // of the chroma that the byte hangs on
  uint16_t second[2];     // subtracted
  int16_t offset[3];
};

// B, G and R are multiplied by small whole numbers, two products at a time. What that makes of a
// byte is in parts of which `unit` are one, and so is the luma that chroma is a difference to.
struct RgbToYuvTerms {
  uint8_t unit;
  uint8_t pair[2];     // of B and G, in luma; at most 128 together
  uint16_t ofPair;     // of their sum, in 65536ths
  uint16_t ofRed;      // and of `unit` times R
  int16_t lumaOffset;  // in parts
  int16_t toLuma;      // from parts, in 32768ths
  int16_t quarter[2];  // of a quarter of a difference to 32nds of chroma, in 65536ths
};

struct LumaMap {
  uint16_t factor;
  int16_t offset;
};

// Which chroma a pixel takes, and a sample is made of, where rows have half the width.
enum class ChromaSiting {
  Repeat,  // the nearest sample; the mean of a block
  Left,    // a sample lies on the left pixel of two
  Centre   // between the two
};

// Rows firstRow to firstRow + rows - 1 of a frame of `size`; firstRow is even. With L, P and Q in
// 64ths, p and q the pixel's chroma in 256ths, all >> floors:
//   L = luma * 256 * t.luma >> 16
//   first byte   clamp(L + (p * t.first >> 16) + t.offset[0] >> 6)
//   second       clamp(L - (p * t.second[0] >> 16) - (q * t.second[1] >> 16) + t.offset[1] >> 6)
//   third        clamp(L + (q * t.third >> 16) + t.offset[2] >> 6)
// and a fourth of 255. Chroma that is not repeated is linear interpolation, exact in 256ths:
// vertically by 3 : 1 between the two nearest rows (frames of half the height), horizontally by
// 3 : 1 (Centre) or, for odd pixels, 1 : 1 (Left); samples outside are those of the edge.
extern QV_HIDDEN const Dispatched<void(
    const YuvFrame<const unsigned char>* src, const RgbFrame<unsigned char>* dst,
    const YuvToRgbTerms* t, ChromaSiting siting, IppiSize size, int firstRow,
    int rows)> YuvToRgb_8u;

// The other way; `chroma` is Cb and Cr. With a, b, c a pixel's B, G and R, all >> floors:
//   Y           ((a * t.pair[0] + b * t.pair[1]) * t.ofPair >> 16) + (c * t.unit * t.ofRed >> 16)
//   luma        (Y + t.lumaOffset) * t.toLuma + 2^14 >> 15
// and of a column, with <> the mean of two rows that share their chroma, (x + y + 1) >> 1:
//   D[0], D[1]  <a * t.unit> - <Y>, <c * t.unit> - <Y>
//   chroma[i]   clamp(128 + ((sum of weight * t.quarter[i] * D[i] >> 16) + 16 >> 5))
// where weights are 4; for samples of two columns 2 and 2; with Left 1, 2, 1 for the columns
// 2 i - 1, 2 i, 2 i + 1. Columns and rows outside are those of the edge. In packed groups the
// second luma of an odd last one repeats the first. A fourth byte is not looked at.
extern QV_HIDDEN const Dispatched<void(
    const RgbFrame<const unsigned char>* src, const YuvFrame<unsigned char>* dst,
    const RgbToYuvTerms* t, ChromaSiting siting, IppiSize size, int firstRow,
    int rows)> RgbToYuv_8u;

// Luma as grey and grey as luma: dst[x] = clamp((src[apart * x] * 256 * map.factor >> 16)
// + map.offset >> 6).
extern QV_HIDDEN const Dispatched<void(
    const unsigned char* src, int srcStep, int apart, unsigned char* dst, int dstStep,
    IppiSize size, LumaMap map)> MapLuma_8u;

}  // namespace qv

#endif
