// Fast operations on raw 8-bit pixel buffers, as static functions of one class.
//
// Conventions of every operation:
//   - All images are 8 bits a channel. A pointer points at the first byte of the top-left pixel of
//     the region worked on; rows lie below each other, `step` bytes from one row's first byte to
//     the next one's. Steps are in bytes; unless an operation says otherwise they are not checked,
//     may be padded and may be negative. Any alignment will do.
//   - Exactly the bytes that an operation names are written. Bytes between the end of a row and the
//     next row are neither read nor written. Rows of a destination must not overlap each other
//     unless an operation says what they then hold.
//   - Large images are cut into bands that threads of the library's own work on, as many as the
//     process may use processors, less the calling one, for the whole process, whoever calls; the
//     result does not depend on the number of bands unless an operation says so. A call stays on
//     the calling thread where sharing does not pay, where no other thread is free or can be had,
//     and inside a parallel region of the host's OpenMP runtime.
//   - Nothing throws and nothing but those threads is kept between calls; operations may run on
//     several threads at once, and in a child process after a fork.
//   - Every operation returns an IppStatus: 0 for success, below 0 for an error, above 0 for a
//     warning. The statuses of an operation are listed in the order in which they are checked.
#ifndef QVACCELERATEDLIB_CQVACCLIB_H
#define QVACCELERATEDLIB_CQVACCLIB_H

#define QVACCELERATEDLIB_VERSION "0.1.0"

#if defined(_WIN32)
#if defined(QVACCELERATEDLIB_BUILD)
#define QVACCELERATEDLIB_API
#else
#define QVACCELERATEDLIB_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define QVACCELERATEDLIB_API __attribute__((visibility("default")))
#else
#define QVACCELERATEDLIB_API
#endif

// A width in pixels and a height in rows.
struct IppiSize {
  int width;
  int height;
};

// A region of an image in pixels; its far corner is the pixel (x + width - 1, y + height - 1).
struct IppiRect {
  int x;
  int y;
  int width;
  int height;
};

// What an operation returns.
enum IppStatus : int {
  StatusEmptyOutputErr = -201,    // a scaled destination extent rounds to nothing
  StatusQuadErr = -58,            // the quadrilateral is degenerate or not convex
  StatusRectErr = -57,            // a region is too small, or (warps) has no pixel inside its image
  StatusCoeffErr = -56,           // the transform cannot be inverted
  StatusChannelErr = -53,         // a channel count other than 1, 3 or 4
  StatusAlphaTypeErr = -50,       // a composition code other than 0 to 11
  StatusResizeFactorErr = -23,    // a scale factor not above 0, or area averaging asked to enlarge
  StatusInterpolationErr = -22,   // an interpolation code that the operation does not accept
  StatusAxisErr = -21,            // a mirror axis other than 0, 1 or 2
  StatusStepErr = -14,            // a row step below 1, where steps are checked
  StatusOutOfRangeErr = -11,      // a palette bit size below 1 or above 8
  StatusMemAllocErr = -9,         // work memory could not be obtained
  StatusNullPtrErr = -8,          // a required pointer is null, or a band of qvResize lacks memory
  StatusSizeErr = -6,             // a width or height below 1
  StatusBadArgErr = -5,           // three corners of a quadrilateral lie on one line (internal)
  StatusQuadSignErr = -4,         // the corners of a quadrilateral turn both ways (internal)
  StatusDataTypeErr = -2,         // a data type that the operation does not handle
  StatusOk = 0,                   // success
  StatusNothingToDoWarning = 1,   // the last band of a resize has no pixel to write
  StatusCpuUnknown = 20,          // start-up did not recognise the processor (internal)
  StatusNoOverlapWarning = 29,    // a region is outside its image or misses the destination
  StatusOddSizeWarning = 35       // an odd last column or row was left unwritten
};

// How resizing, rotation and warping make a pixel from those around its place in the source. Which
// of these an operation takes is said there; its parameter is an int.
enum IppiInterpolation : int {
  InterpolateNearest = 1,
  InterpolateLinear = 2,
  InterpolateCubic = 4,
  InterpolateArea = 8,
  InterpolateLanczos = 16
};

// Which way qvMirror flips.
enum IppiAxis : int {
  AxisHorizontal = 0,   // about the horizontal axis: top to bottom
  AxisVertical = 1,     // about the vertical axis: left to right
  AxisBoth = 2          // both: a turn by 180 degrees
};

// The compositions of qvAlphaCompC (Porter and Duff 1984), for plain and for premultiplied colours.
enum IppiAlphaType : int {
  AlphaOver = 0,
  AlphaIn = 1,
  AlphaOut = 2,
  AlphaAtop = 3,
  AlphaXor = 4,
  AlphaPlus = 5,
  AlphaOverPremul = 6,
  AlphaInPremul = 7,
  AlphaOutPremul = 8,
  AlphaAtopPremul = 9,
  AlphaXorPremul = 10,
  AlphaPlusPremul = 11
};

class QVACCELERATEDLIB_API CqvAccLib {
 public:
  // Layout of the pixels that an operation works on. Operations that handle one fixed layout
  // ignore it.
  enum qvDataType : int {
    OneChannel = 2,            // one byte a pixel
    ThreeChannels = 4,         // three interleaved bytes a pixel
    PlaneToThreeChannels = 9,  // one byte a pixel into the first of three (qvCopy)
    FourToThreeChannels = 13,  // four bytes a pixel to three, the fourth dropped (qvCopy)
    ThreeToFourChannels = 14,  // three bytes a pixel to four, the fourth kept (qvCopy)
    ScalePlane = 16            // bytes scaled in place (qvMulCScale)
  };

  // ---- Copy, fill, mirror, palette, scale -------------------------------------------------------

  // Copies an image, either as it is or while changing its layout. With k the pixel of a row:
  //   type 2   dst[k] = src[k]
  //   type 4   dst[3k + c] = src[3k + c], c = 0, 1, 2
  //   type 9   dst[3k] = src[k]; the other two bytes of a destination pixel are not stored to, so
  //            that three calls with dst, dst + 1 and dst + 2 merge three planes into one image
  //   type 13  dst[3k + c] = src[4k + c], c = 0, 1, 2; src[4k + 3] is dropped
  //   type 14  dst[4k + c] = src[3k + c], c = 0, 1, 2; dst[4k + 3] is not stored to
  // The last byte stored in a row is the last one named above. Source and destination must not
  // overlap.
  // Returns StatusDataTypeErr (-2) for any other type; StatusNullPtrErr (-8) if src or dst is null;
  // StatusSizeErr (-6) if width or height is below 1.
  static IppStatus qvCopy(qvDataType type, const unsigned char* src, int srcStep,
                          unsigned char* dst, int dstStep, IppiSize size);

  // Makes a grey plane into a three-byte image: dst[3k] = dst[3k + 1] = dst[3k + 2] = src[k].
  // `type` is ignored. Source and destination must not overlap.
  // Returns StatusNullPtrErr (-8) if src or dst is null; StatusSizeErr (-6) if width or height is
  // below 1.
  static IppStatus qvDup(qvDataType type, const unsigned char* src, int srcStep, unsigned char* dst,
                         int dstStep, IppiSize size);

  // Fills an image with one pixel value.
  //   type 2   dst[k] = value[0]
  //   type 4   dst[3k + c] = value[c], c = 0, 1, 2
  // Returns StatusDataTypeErr (-2) for any other type; StatusNullPtrErr (-8) if dst is null or, for
  // type 4, value is null (for type 2 a null value must not be passed: it is read before anything
  // is checked); StatusSizeErr (-6) if width or height is below 1.
  static IppStatus qvSet(qvDataType type, const unsigned char* const value, unsigned char* dst,
                         int dstStep, IppiSize size);

  // Writes the mirror image of a source of width W and height H (type 2: one byte a pixel, type 4:
  // three bytes a pixel, kept in order). With (x, y) a source pixel:
  //   axis 0   goes to (x, H - 1 - y)          top to bottom
  //   axis 1   goes to (W - 1 - x, y)          left to right
  //   axis 2   goes to (W - 1 - x, H - 1 - y)  both
  // Source and destination must not overlap.
  // Returns 0 with nothing looked at or written for any other axis; StatusDataTypeErr (-2) for any
  // other type; StatusNullPtrErr (-8) if src or dst is null; StatusSizeErr (-6) if width or height
  // is below 1.
  static IppStatus qvMirror(qvDataType type, const unsigned char* src, int srcStep,
                            unsigned char* dst, int dstStep, IppiSize size, IppiAxis axis);

  // Looks every byte of an index image up in a palette of 2^bitSize three-byte entries:
  //   dst[3k + c] = palette[3 * (src[k] & (2^bitSize - 1)) + c], c = 0, 1, 2
  // `type` is ignored. Exactly the 3 * 2^bitSize bytes of the palette may be read.
  // Returns StatusNullPtrErr (-8) if src, dst or palette is null; StatusSizeErr (-6) if width or
  // height is below 1; StatusOutOfRangeErr (-11) if bitSize is below 1 or above 8.
  static IppStatus qvLUTPalette(qvDataType type, const unsigned char* src, int srcStep,
                                unsigned char* dst, int dstStep, IppiSize size,
                                const unsigned char* palette, int bitSize);

  // Scales every byte in place by value / 255, truncated: x = floor(x * value / 255). size.width
  // counts bytes. Returns StatusDataTypeErr (-2) if type is not 16; StatusNullPtrErr (-8) if srcDst
  // is null; StatusStepErr (-14) if srcDstStep is below 1; StatusSizeErr (-6) if width or height is
  // below 1.
  static IppStatus qvMulCScale(qvDataType type, unsigned char value, unsigned char* srcDst,
                               int srcDstStep, IppiSize size);

  // ---- Checksums --------------------------------------------------------------------------------

  // A checksum is a running value: pass the value of fresh data (0 for CRC-32, 1 for Adler-32) in
  // before the first piece of a message and the result of one call into the next. The value after
  // the last piece is the checksum of the whole message, however it was cut. `type` is ignored; src
  // points at `length` bytes, of any alignment. One thread does the work.

  // CRC-32 of ITU-T V.42 and ISO 3309: the remainder modulo
  //   x^32 + x^26 + x^23 + x^22 + x^16 + x^12 + x^11 + x^10 + x^8 + x^7 + x^5 + x^4 + x^2 + x + 1
  // with the low bit of each byte first, register set to ones at the start and complemented at the
  // end. The value is the finished CRC of the bytes so far: *crc is complemented, fed the bytes
  // (r = (r >> 8) ^ T[(r ^ byte) & 255], T[128] = 0xEDB88320) and complemented again. Fresh: 0. The
  // nine characters "123456789" give 0xCBF43926.
  // Returns StatusNullPtrErr (-8) if src or crc is null; StatusSizeErr (-6) if length is below 1.
  // *crc is kept then.
  static IppStatus qvCRC32(qvDataType type, const unsigned char* src, int length,
                           unsigned int* crc);

  // Adler-32 of RFC 1950: *adler = b * 65536 + a, and each byte d makes
  //   a = (a + d) mod 65521, b = (b + a) mod 65521
  // Fresh: 1. The three characters "abc" give 0x024D0127. A starting value may have halves of 65521
  // and above; those of a result are below 65521.
  // Returns StatusSizeErr (-6), and sets *adler to 0, if src is null; 0, and keeps *adler, if
  // length is below 1. adler must not be null: it is read before anything is checked.
  static IppStatus qvAdler32(qvDataType type, const unsigned char* src, int length,
                             unsigned int* adler);

  // ---- Colour-format conversion -----------------------------------------------------------------

  // Samples are 8-bit BT.601 in studio range: Y 16 to 235, Cb and Cr 16 to 240 around 128; every
  // byte value is accepted. Packed 4:2:2 lies in memory as Y0, Cb, Y1, Cr for two pixels side by
  // side; a 4:2:0 chroma sample serves a block of 2 x 2 pixels. Chroma is repeated, never
  // interpolated. `type` is ignored. >> is the arithmetic shift, clamp() limits to 0 .. 255. Bands
  // have an even height. Source and destination must not overlap.

  // Splits two-plane 4:2:0 into three planes: a luma plane (width x height bytes) and a plane of
  // height / 2 rows of width / 2 pairs Cb, Cr become dst[0] = Y, dst[1] = Cb, dst[2] = Cr, with
  // steps dstStep[0 .. 2]. An odd last column or row is left unwritten without a warning.
  //   dst[1][k][j] = srcCbCr[k][2j]
  //   dst[2][k][j] = srcCbCr[k][2j + 1]
  // Returns StatusNullPtrErr (-8) if srcY, srcCbCr, dst, dstStep or one of the three planes is
  // null; StatusSizeErr (-6) if width or height is below 2.
  static IppStatus qvYCbCr420(qvDataType type, const unsigned char* srcY, int srcYStep,
                              const unsigned char* srcCbCr, int srcCbCrStep,
                              unsigned char** const dst, int* const dstStep, IppiSize size);

  // Splits packed 4:2:2 into planar 4:2:0, in the order dst[0] = Y, dst[1] = Cr, dst[2] = Cb. The
  // chroma of each two rows is that of the upper one; the lower one's is dropped, not averaged. An
  // odd last column or row is left unwritten without a warning.
  //   dst[0][y][2j] = src[y][4j]         dst[0][y][2j + 1] = src[y][4j + 2]
  //   dst[1][k][j]  = src[2k][4j + 3]    dst[2][k][j]      = src[2k][4j + 1]
  // Returns StatusNullPtrErr (-8) if src, dst, dstStep or one of the three planes is null;
  // StatusSizeErr (-6) if width or height is below 2.
  static IppStatus qvYCbCr422ToYCrCb420(qvDataType type, const unsigned char* src, int srcStep,
                                        unsigned char** const dst, int* const dstStep,
                                        IppiSize size);

  // Converts planar 4:2:0, src[0] = Y, src[1] = Cb, src[2] = Cr with steps srcStep[0 .. 2], to
  // pixels B, G, R. With u = Cb - 128 and v = Cr - 128:
  //   B = clamp((76284 Y + 132186 u - 1187776) >> 16)
  //   G = clamp((76284 Y - 25690 u - 53281 v - 1187776) >> 16)
  //   R = clamp((76284 Y + 104595 v - 1187776) >> 16)
  // which is ITU-R BT.601 in 16.16 fixed point, rounded half up (1187776 = 16 * 76284 - 32768). An
  // odd last column or row is left unwritten; the planes need not have samples for it.
  // Returns StatusNullPtrErr (-8) if src, srcStep or dst is null; StatusSizeErr (-6) if width or
  // height is below 1; StatusNullPtrErr (-8) if one of the three planes is null;
  // StatusOddSizeWarning (35) if width or height is odd (all the rest is converted).
  static IppStatus qvYCbCr420ToBGR(qvDataType type, unsigned char** const src, int* const srcStep,
                                   unsigned char* dst, int dstStep, IppiSize size);

  // Converts packed 4:2:2 to pixels B, G, R:
  //   B = clamp((76284 Y + 132186 Cb - 18140365) >> 16)
  //   G = clamp((76284 Y - 53281 Cr - 25690 Cb + 8887730) >> 16)
  //   R = clamp((76284 Y + 104595 Cr - 14608761) >> 16)
  // which is ITU-R BT.601 in 16.16 fixed point, rounded down, with offsets 13, 14 and 57 below the
  // exact ones of Y - 16, Cb - 128 and Cr - 128, so that whole numbers come out one lower. The last
  // pixel of an odd width has the first two bytes of a group alone: it takes its Cr from the group
  // before, and nothing past its Cb is read.
  // Returns StatusNullPtrErr (-8) if src or dst is null; StatusSizeErr (-6) if width is below 2 or
  // height below 1.
  static IppStatus qvYCbCr422ToBGR(qvDataType type, const unsigned char* src, int srcStep,
                                   unsigned char* dst, int dstStep, IppiSize size);

  // ---- Resizing ---------------------------------------------------------------------------------

  // Scales the region srcRoi of an image of srcSize pixels into dst, by xFactor and yFactor
  // (destination size over source size). src points at the image's first pixel, not the region's;
  // dst points at the first pixel written. Pixels of type 2 have one byte, of type 4 three.
  // Interpolation:
  //   1   nearest neighbour
  //   2   linear
  //   4   cubic, Keys' kernel with a = -0.5 (Keys 1981)
  //   8   area averaging, the mean over the part of the source that a pixel covers; with a factor
  //       above 1 it is done as 16
  //   16  Lanczos, three lobes: six taps, weights scaled to sum 1
  // The filters are not widened when reducing: 8 is the method for strong reductions.
  //
  // The region is clipped to the image; let W x H be what is left of it. Written are trunc(W *
  // xFactor + 1e-07) columns and trunc(H * yFactor + 1e-07) rows, but at least one and at most
  // dstRoiSize; the rest of dst is left alone. Pixels outside the clipped region are never read:
  // taps that fall there take its nearest edge pixel.
  //
  // Where destination pixel i of an axis of L source pixels with factor F lies in the region, a
  // whole number being the middle of a pixel:
  //   code 1          (i + 0.5) / F - 0.5, rounded:  pixel centres
  //   codes 2, 4, 16  i * (L - 1) / (L * F - 1):     corner-aligned
  //   code 8          covers (i / F - 0.5, (i + 1) / F - 0.5)
  // Five pixels from three (F = 5/3), source pixels as |, destination pixels as o:
  //   source            |---------|---------|
  //   code 1          o-----o-----o-----o-----o
  //   codes 2 to 16     o----o----o----o----o
  // Positions are accumulated, in double precision: code 1 starts at 0.5 / F and adds 1 / F, the
  // others start at 0 and add the step.
  //
  // Code 2 has the arithmetic p0 * (16384 - w) + p1 * w, p0 being the pixel at the whole part of
  // the position and w = trunc(f * 16384 + 1e-07), f its fraction, in double precision and then
  // rounded to single precision; on the region's last pixel p1 is that pixel and w = 16384. Along x
  // h = (sum + 128) >> 8, then along y out = (h0 * (16384 - w) + h1 * w + 524288) >> 20. Codes 4, 8
  // and 16 round the exact value to nearest and limit it to 0 .. 255; each byte is within one unit
  // of it, and on average within 0.26 (0.25 is a perfect rounding).
  //
  // Bands. With a budget of several threads, and more than 64 rows of both srcSize and dstRoiSize a
  // band, codes 1, 2, 4 and 16 run in bands (unless a band of dstRoiSize took more work memory than
  // an int can count), which lie differently: all codes use pixel centres, in coordinates of the
  // whole image,
  //   code 1  trunc((i + 0.5) / F + 1e-10);  codes 2, 4, 16  (i + 0.5) / F - 0.5,
  // and written is what the region becomes there: from trunc(srcRoi.x * xFactor + 0.4999999999) to
  // before trunc((srcRoi.x + W) * xFactor + 0.4999999999), rows likewise, as far as it lies in
  // dstRoiSize. So a region that does not start at 0 is displaced in dst by its origin times the
  // factor. The number of bands makes no difference to the bytes; whether there are several does.
  //
  // If dstRoiSize differs from srcSize by at most one pixel each way and srcRoi is the whole image,
  // code 1 is used whatever is asked for. If the source image is narrower or lower than 8 pixels,
  // code 16 becomes 4; than 4 pixels, code 4 becomes 2; than 2 pixels, all but 8 become 1 (not in
  // bands).
  //
  // Source and destination must not overlap. Returns StatusDataTypeErr (-2) for any other type;
  // StatusNullPtrErr (-8) if src or dst is null; StatusSizeErr (-6) if srcSize or srcRoi has a
  // width or height below 1 or srcRoi an origin below 0; StatusNoOverlapWarning (29), with nothing
  // written, if srcRoi's origin is outside the image; StatusSizeErr (-6) if dstRoiSize has a width
  // or height below 1; StatusResizeFactorErr (-23) if a factor is not above 0;
  // StatusInterpolationErr (-22) for any other interpolation; StatusEmptyOutputErr (-201) if W *
  // xFactor or H * yFactor, plus 1e-07, is below 0.5; StatusMemAllocErr (-9) if work memory cannot
  // be had. Nothing is written unless the status is 0.
  //
  // In bands StatusResizeFactorErr comes before StatusNoOverlapWarning, there is no
  // StatusEmptyOutputErr, and the status is that of the last band, which has the lowest rows of
  // dstRoiSize:
  //   StatusNothingToDoWarning (1): what the region becomes has no part in that band. All of it may
  //     have been written by the others, and on another number of bands the same call may return 0.
  //   StatusNullPtrErr or StatusMemAllocErr: that band lacked memory. A band that does leaves its
  //     rows as they were; the others write theirs, and if it is not the last one, no status tells.
  static IppStatus qvResize(qvDataType type, const unsigned char* src, IppiSize srcSize,
                            int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                            IppiSize dstRoiSize, double xFactor, double yFactor,
                            int interpolation);

  // Scales a region of a packed 4:2:2 image: pairs of pixels of four bytes, Y0 Cb Y1 Cr. Arguments
  // are those of qvResize, sizes and coordinates in pixels; `type` is ignored. Interpolation is 1
  // (nearest neighbour), 2 (linear) or 4 (cubic); every number above 4 is done as 4. Runs on the
  // calling thread.
  //
  // Luma is resized on its grid of pixels, Cb and Cr each on the grid of pairs, with the positions
  // of qvResize outside bands and each byte within one unit of the exact value.
  //
  // The region's first byte is src + 4 * srcRoi.x + srcStep * srcRoi.y: four bytes for each pixel
  // of srcRoi.x, which is twice what pixels take. 2 * W bytes from there must be readable in every
  // row of the region, W being srcRoi.width clipped to srcSize.width - srcRoi.x. Written are w / 2
  // pairs (an odd last pixel is not), w = trunc(W * xFactor + 1e-07), at most dstRoiSize.width and
  // at least 2, and trunc(H * yFactor + 1e-07) rows, at most dstRoiSize.height and at least one. If
  // the source image is narrower than 8 pixels or lower than 4, code 4 becomes 2; narrower than 4
  // or lower than 2, all become 1.
  //
  // Returns StatusNullPtrErr (-8) if src or dst is null; StatusSizeErr (-6) if srcSize or srcRoi
  // has a width or height below 1 or srcRoi an origin below 0; StatusNoOverlapWarning (29), with
  // nothing written, if srcRoi's origin is outside the image; StatusSizeErr (-6) if dstRoiSize has
  // a width or height below 1, if srcSize.width, srcRoi.width or srcRoi.x is odd, or if
  // dstRoiSize.width is below 2; StatusResizeFactorErr (-23) if a factor is not above 0;
  // StatusInterpolationErr (-22) for an interpolation of 3 or of less than 1; StatusEmptyOutputErr
  // (-201) if W * xFactor + 1e-07 is below 1.5 or H * yFactor + 1e-07 below 0.5; StatusMemAllocErr
  // (-9) if work memory cannot be had.
  static IppStatus qvResizeYUV422(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                  int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                                  IppiSize dstRoiSize, double xFactor, double yFactor,
                                  int interpolation);

  // ---- Rotation and perspective -----------------------------------------------------------------

  // Rotation and warping. Pointers point at pixel (0, 0) of the whole image, never at a region;
  // regions and positions are in pixels of the whole images, and pixel (x, y) is a sample at
  // exactly that position. Every destination pixel asks where it comes from: it is mapped back
  // through the transform to a source position (X, Y). It is written if (X, Y) lies inside the
  // rectangle of corner pixels of srcRoi's part inside the image, its edges and 1e-6 pixel beyond
  // included, and keeps its value otherwise. All channels of a pixel are sampled at one position,
  // from pixels of that part only; taps beyond take its nearest edge pixel:
  //   interpolation 1   nearest neighbour: pixel (floor(X + 0.5), floor(Y + 0.5))
  //   interpolation 2   linear: two taps an axis, weights 1 - |d|
  //   interpolation 4   cubic (Keys 1981, a = -0.5): four taps an axis, with weights
  //                     1.5 |d|^3 - 2.5 |d|^2 + 1 below 1,
  //                     -0.5 |d|^3 + 2.5 |d|^2 - 4 |d| + 2 below 2
  // d being the distance of the tap. Bit 31 of the interpolation is ignored. Positions are exact
  // to better than 2^-11 pixel, weights have 14 fractional bits, and the rounded and saturated
  // result is within one unit of the exact one. Source and destination must not overlap.
  // A region may reach beyond pixel 2147483647 of a row or column; nothing is there.
  //
  // Statuses, in this order: StatusDataTypeErr (-2) for a type other than 2 and 4; StatusNullPtrErr
  // (-8) if src or dst is null; StatusSizeErr (-6) if a width or height of srcSize, srcRoi or
  // dstRoi is below 1 or an origin of a region is negative; StatusStepErr (-14) if a step is below
  // 1; StatusInterpolationErr (-22) for another interpolation. Then, of a warp: StatusCoeffErr
  // (-56) if the matrix's upper-left 2 x 2 block is singular (relative to its diagonal, to 1e-12)
  // or if it carries the corner pixels of srcRoi onto a quadrilateral that is degenerate, as that
  // of a single row or column is, or not convex; StatusRectErr (-57) if srcRoi has no pixel inside
  // the image. Of a rotation: StatusCoeffErr (-56) if its angle or a shift is infinite or not a
  // number; StatusNoOverlapWarning (29) if srcRoi has no pixel inside the image. Of both:
  // StatusNoOverlapWarning (29) if what becomes of srcRoi misses dstRoi. Nothing is written unless
  // the status is 0 (on several bands of a warp: see there).

  // Rotates about pixel (0, 0) by `angle` degrees, counter-clockwise as seen on the screen, and
  // shifts by (xShift, yShift) pixels. With a the angle in radians, source (x, y) goes to
  //   x' = cos a * x + sin a * y + xShift,   y' = -sin a * x + cos a * y + yShift
  // Runs on the calling thread. Statuses: see above. Quarter turns (90, 180 or 270 degrees plus
  // whole turns) with whole shifts, however large, move pixels without sampling: they do not look
  // at the interpolation, and have neither StatusInterpolationErr nor StatusCoeffErr.
  static IppStatus qvRotate(qvDataType type, const unsigned char* src, IppiSize srcSize,
                            int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                            IppiRect dstRoi, double angle, double xShift, double yShift,
                            int interpolation);

  // Warps through a matrix that carries source (X, Y) to the destination, such as
  // qvGetPerspectiveTransform gives:
  //   x' = (c00 X + c01 Y + c02) / (c20 X + c21 Y + c22)
  //   y' = (c10 X + c11 Y + c12) / (c20 X + c21 Y + c22)
  // Statuses: see above. On several bands (dstRoi higher than 64 rows a band) the status is the
  // last band's: StatusNoOverlapWarning (29) if that one was missed, whatever the others have
  // written, and 0 if it was not. Of a dstRoi with a negative y only the bands that begin there are
  // refused.
  static IppStatus qvWarpPerspective(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                     int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                                     IppiRect dstRoi, const double coeffs[3][3],
                                     int interpolation);

  // qvWarpPerspective on a three-channel image and, if src2 and dst2 are both non-null, on a
  // one-channel image of the same size and regions with its own steps and matrix, for instance a
  // mask. `type` is ignored.
  // Returns the status of the last warp made. On one band the second image is warped only if the
  // first warp returned 0; on several bands it always is, and its status replaces the first one's.
  static IppStatus qvWarpPerspectiveEx(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                       int srcStep, IppiRect srcRoi, unsigned char* dst,
                                       int dstStep, IppiRect dstRoi, const double coeffs[3][3],
                                       int interpolation, const unsigned char* src2, int src2Step,
                                       unsigned char* dst2, int dst2Step,
                                       const double coeffs2[3][3]);

  // Derives the matrix that carries a region onto a quadrilateral:
  //   x' = (c00 X + c01 Y + c02) / (c20 X + c21 Y + c22)
  //   y' = (c10 X + c11 Y + c12) / (c20 X + c21 Y + c22)
  // quad[0..3] are the (x, y) images, in pixels, of the centres of the region's top-left,
  // top-right, bottom-right and bottom-left pixels; they may turn either way round. `type` is
  // ignored; no pointer is checked. The result fits qvWarpPerspective.
  // Returns StatusSizeErr (-6) if roi.x or roi.y is negative or its width or height is below 1;
  // StatusQuadErr (-58) if three corners lie on one line or the quadrilateral is not convex;
  // StatusRectErr (-57) if width or height is 1. Nothing is written then.
  static IppStatus qvGetPerspectiveTransform(qvDataType type, IppiRect roi, const double quad[4][2],
                                             double coeffs[3][3]);

  // The smallest upright rectangle around a region after qvRotate by `angle` degrees and a shift in
  // pixels. With the centres of the region's corner pixels at (x, y) and a = angle in radians:
  //   x' = cos a * x + sin a * y + xShift,   y' = -sin a * x + cos a * y + yShift
  //   bound[0] = (smallest x', smallest y'), bound[1] = (largest x', largest y')
  // Multiples of 90 degrees are exact. `type` is ignored; no pointer is checked.
  // Returns StatusSizeErr (-6), with nothing written, if roi.x or roi.y is negative or its width or
  // height is below 1.
  static IppStatus qvGetRotateBound(qvDataType type, IppiRect roi, double bound[2][2], double angle,
                                    double xShift, double yShift);

  // ---- Compositing and deinterlacing ------------------------------------------------------------

  // Composes two images, each under one alpha for the whole image (Porter and Duff 1984). A and B
  // are the bytes of src1 and src2 at the same place, a1 and a2 their alphas, x / 255 is truncated:
  // with x * y = floor(xy / 255),
  //   0 over   A * a1 + B * a2 * (255 - a1)                6 premultiplied  A + B * (255 - a1)
  //   1 in     A * a1 * a2                                 7                A * a2
  //   2 out    A * a1 * (255 - a2)                         8                A * (255 - a2)
  //   3 atop   A * a1 * a2 + B * a2 * (255 - a1)           9                A * a2 + B * (255 - a1)
  //   4 xor    A * a1 * (255 - a2) + B * a2 * (255 - a1)  10  A * (255 - a2) + B * (255 - a1)
  //   5 plus   A * a1 + B * a2                            11                A + B
  // Products are worked out from left to right, each truncated before the next. Sums saturate at
  // 255. Codes 1, 2, 7 and 8 do not read src2. One byte a pixel for type 2, three for type 4, all
  // alike. dst may be src1 or src2 at the same step; otherwise the images must not overlap.
  // Returns StatusDataTypeErr (-2) for any other type; StatusNullPtrErr (-8) if src1, src2 or dst
  // is null (src2 also where it is not read); StatusSizeErr (-6) if width or height is below 1;
  // StatusAlphaTypeErr (-50) for an alphaType other than 0 to 11.
  static IppStatus qvAlphaCompC(qvDataType type, const unsigned char* src1, int src1Step,
                                unsigned char alpha1, const unsigned char* src2, int src2Step,
                                unsigned char alpha2, unsigned char* dst, int dstStep,
                                IppiSize size, IppiAlphaType alphaType);

  // Places a colour image (three bytes a pixel, alike) with an alpha plane over a second one, in
  // place: fg is replaced by the colours of the result, dstAlpha receives its alpha. Alpha planes
  // have one byte a pixel, 0 transparent to 255 opaque; dstAlpha's rows lie fgAlphaStep apart.
  //
  // Fill dstAlpha with a copy of fgAlpha before the call. The library has two paths: one for
  // processors without SSE2 reads the foreground alpha from fgAlpha alone, the other merges
  // dstAlpha in place; with the copy both mean the same. They round differently.
  //
  // With F and B a foreground and a background byte, fa and ba the alphas of their pixel:
  //   without SSE2, in integers, all quotients truncated
  //     a  = fa + (255 - fa) * ba / 256                       to dstAlpha
  //     F' = (F * fa + B * (255 - fa) * ba / 256) / (a + 1)   an opaque 255 becomes 254
  //     on width pixels a row; rowBytes is ignored
  //   with SSE2, on all rows first
  //     a  = min(255, d + (255 - d) * ba / 256)               d is dstAlpha's byte, replaced by a
  //   on width pixels a row, and then
  //     F' = (F * (fa / 255) + ((1 - fa / 255) * (ba / 255)) * B) / ((a + 1) / 255)
  //   in single precision, every operation rounded to nearest even in this order, the quotient
  //   rounded to nearest even and limited to 255, on rowBytes colour bytes a row: pass 3 * width.
  //   The host's rounding mode does not matter. If dstAlpha is fgAlpha, the colours are merged with
  //   the merged alpha.
  //
  // dstAlpha may be fgAlpha or, at the same step, bgAlpha; otherwise the five planes must not
  // overlap. `type` is ignored.
  // Returns 0. Nothing is checked: no pointer may be null. A height below 1 does nothing. With a
  // width below 1 no alpha is merged, but with SSE2 the colours are, on rowBytes bytes a row (none
  // if that is below 1) and with the alphas as they are.
  static IppStatus qvMergeAlphaOver(qvDataType type, unsigned char* fg, int fgStep,
                                    unsigned char* fgAlpha, int fgAlphaStep, unsigned char* bg,
                                    int bgStep, unsigned char* bgAlpha, int bgAlphaStep,
                                    unsigned char* dstAlpha, int rowBytes, int width, int height);

  // Mixes src into srcDst under an alpha plane of one byte a pixel. With S and D the bytes of src
  // and srcDst and a the alpha of their pixel,
  //   D = min(255, floor(a * S / 255) + floor(((255 - a) * D + 1) / 256))
  // on width bytes a row for type 2 and 3 * width for type 4. The shares are divided by different
  // numbers: where a is 0, a D of 255 becomes 254. src may be srcDst at the same step; otherwise
  // the images must not overlap.
  // Returns StatusDataTypeErr (-2) for any other type. Nothing else is checked: no pointer may be
  // null. A width or height below 1 does nothing.
  static IppStatus qvMergeAlphaPlus(qvDataType type, unsigned char* srcDst, int srcDstStep,
                                    unsigned char* src, int srcStep, unsigned char* alpha,
                                    int alphaStep, int width, int height);

  // Smooths the combing of an interlaced frame: a filtered row is a weighted mean of the source row
  // at the same place and its two neighbours. With w = min(centreWeight, 256), in 1/256, and
  // s = (256 - w) / 2 truncated,
  //   dst[r] = floor(((src[r - 1] + src[r + 1]) * s + src[r] * w) / 256)
  // An odd w darkens slightly (the weights add up to 255). `mode` says which of the rows 0 to H - 1
  // are written, H the height:
  //   mode 1    filtered 1 to H - 2, row 0 copied; row H - 1 is not written
  //   mode 4    filtered -1 to H - 2; row H - 1 is not written
  //   mode 16   filtered -1 to H - 2, row H - 1 copied
  //   other     filtered 1 to H - 2, rows 0 and H - 1 copied
  // Modes 4 and 16 begin one row before the pointers: they write row -1 of dst and read rows -2
  // and -1 of src, which must exist.
  // A row is size.width bytes for type 2. For type 4 it is the whole srcStep, whatever size.width
  // says: bytes between the pixels and the next row are filtered too, also into dst. Rows of dst
  // may overlap, as those of a dstStep shorter than srcStep then do: they are written from row -1
  // or 0 on, and a byte keeps what the last row that holds it writes. Source and destination must
  // not overlap. Large frames are cut into columns, not bands, unless rows of dst overlap.
  // Returns StatusDataTypeErr (-2) for any other type; StatusNullPtrErr (-8) if src or dst is null;
  // StatusSizeErr (-6) if height is below 3 or a row has fewer than 1 byte.
  static IppStatus qvDeinterlace(qvDataType type, const unsigned char* src, int srcStep,
                                 unsigned char* dst, int dstStep, IppiSize size,
                                 unsigned int centreWeight, unsigned int mode);

  // The class has no data: assignment does nothing and returns its left operand.
  CqvAccLib& operator=(const CqvAccLib&);
};

#endif
