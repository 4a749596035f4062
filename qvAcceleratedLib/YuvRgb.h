// Conversion between luma and chroma in eight layouts and pixels in five, by the matrices of ITU-R
// BT.601, BT.709 and BT.2020.
#ifndef QV_YUVRGB_H
#define QV_YUVRGB_H

#include "dispatch/Hidden.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Planes in the order in which they are passed; rows in bytes for a width w, all divisions rounded
// up. Chroma of an odd last column or row is counted too: (w + 1) / 2 and (h + 1) / 2.
enum YuvLayout : int {
  YuvI420 = 0,  // Y: h rows of w; Cb and Cr: h / 2 rows of w / 2
  YuvYV12 = 1,  // the same as Y, Cr, Cb
  YuvNV12 = 2,  // Y: h rows of w; h / 2 rows of w / 2 pairs Cb, Cr
  YuvNV21 = 3,  // the same with pairs Cr, Cb
  YuvYUYV = 4,  // one plane: h rows of w / 2 groups Y0, Cb, Y1, Cr
  YuvUYVY = 5,  // one plane: h rows of w / 2 groups Cb, Y0, Cr, Y1
  YuvI422 = 6,  // Y: h rows of w; Cb and Cr: h rows of w / 2
  YuvI444 = 7   // Y, Cb and Cr: h rows of w
};

// Bytes of a pixel in address order.
enum RgbLayout : int { RgbBGR = 0, RgbRGB = 1, RgbBGRA = 2, RgbRGBA = 3, RgbGrey = 4 };

enum YuvMatrix : int { MatrixBT601 = 0, MatrixBT709 = 1, MatrixBT2020 = 2 };

// Studio: Y 16 to 235, Cb and Cr 16 to 240. Full: 0 to 255 each (JFIF).
enum YuvRange : int { RangeStudio = 0, RangeFull = 1 };

// Where chroma samples lie in layouts that have one for two columns. With rows halved as well, they
// lie midway between two.
enum YuvSiting : int {
  SitingRepeat = 0,  // anywhere: pixels take the sample of their block, samples the block's mean
  SitingLeft = 1,    // on the left one of two pixels (MPEG-2 and later)
  SitingCentre = 2   // between two pixels (JPEG, MPEG-1)
};

// `planes` and `steps` have one, two or three entries, as the layout has planes. Any step will do,
// but rows that are written must not overlap. Nothing is written unless the status is 0.
//
// With Kr and Kb .299 and .114 (BT.601), .2126 and .0722 (BT.709) or .2627 and .0593 (BT.2020,
// non-constant luminance), Kg = 1 - Kr - Kb, and y = (Y - 16) / 219, u = (Cb - 128) / 224,
// v = (Cr - 128) / 224 in studio range or y = Y / 255, u = (Cb - 128) / 255, v = (Cr - 128) / 255
// in full range:
//   R = 255 (y + 2 (1 - Kr) v)
//   G = 255 (y - 2 (1 - Kb) Kb / Kg u - 2 (1 - Kr) Kr / Kg v)
//   B = 255 (y + 2 (1 - Kb) u)
// limited to 0 .. 255. Each byte is within 0.56 of the exact value; every grey is rounded
// correctly. Alpha is 255. Grey is 255 y; planes of chroma are not read then and may be null.
// Left: chroma of an odd column is the mean of the samples on both sides. Centre: it is 3 parts of
// the nearest sample and 1 of the next. Rows, of either siting, likewise 3 and 1. Beyond the edge
// lies the sample of the edge. What is interpolated is not rounded before it is converted.
//
// Returns -2 if a layout is none of these; -5 if matrix, range or siting is; -8 if `planes`,
// `steps`, a plane that is read or dst is null; -6 if width or height is below 1.
QV_HIDDEN IppStatus YuvToRgb(int yuvLayout, const unsigned char* const planes[], const int steps[],
                             int rgbLayout, unsigned char* dst, int dstStep, IppiSize size,
                             int matrix, int range, int siting);

// The other way:
//   y = (Kr R + Kg G + Kb B) / 255
//   u = (B / 255 - y) / (2 (1 - Kb)),  v = (R / 255 - y) / (2 (1 - Kr))
// limited to 0 .. 255; each byte is within 0.52 of the exact value, every grey is rounded correctly
// and has Cb = Cr = 128. Alpha is not looked at. Chroma is that of the mean over the pixels of a
// block; with Left, of columns 2 i - 1, 2 i and 2 i + 1 as 1 : 2 : 1. Beyond the edge lies the
// pixel of the edge. Of an odd width, the second luma of the last packed group repeats the first.
//
// Returns what the other direction returns: -2, -5, -8 for src, `planes`, `steps` or a plane, -6.
QV_HIDDEN IppStatus RgbToYuv(int rgbLayout, const unsigned char* src, int srcStep, int yuvLayout,
                             unsigned char* const planes[], const int steps[], IppiSize size,
                             int matrix, int range, int siting);

}  // namespace qv

#endif
