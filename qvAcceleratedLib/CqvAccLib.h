// Fast operations on raw 8-bit pixel buffers, as static functions of one class.
//
// Conventions of every operation:
//   - All images are 8 bits a channel. A pointer points at the first byte of the top-left pixel of
//     the region worked on; rows lie below each other, `step` bytes from one row's first byte to
//     the next one's. Steps are in bytes; unless an operation says otherwise they are not checked,
//     may be padded and may be negative. Any alignment will do.
//   - Exactly the bytes that an operation names are written. Bytes between the end of a row and the
//     next row are neither read nor written.
//   - Large images are cut into bands that the threads of an OpenMP team work on; the result does
//     not depend on the number of bands unless an operation says so. A call made from inside a
//     parallel region stays on the calling thread.
//   - Nothing throws and nothing is kept between calls; operations may run on several threads at once.
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
  StatusRectErr = -57,            // a region is too small, or has no pixel inside its image
  StatusCoeffErr = -56,           // the transform cannot be inverted
  StatusChannelErr = -53,         // a channel count other than 1, 3 or 4
  StatusAlphaTypeErr = -50,       // a composition code other than 0 to 11
  StatusResizeFactorErr = -23,    // a scale factor not above 0, or area averaging asked to enlarge
  StatusInterpolationErr = -22,   // an interpolation code that the operation does not accept
  StatusAxisErr = -21,            // a mirror axis other than 0, 1 or 2
  StatusStepErr = -14,            // a row step below 1, where steps are checked
  StatusOutOfRangeErr = -11,      // a palette bit size below 1 or above 8
  StatusMemAllocErr = -9,         // work memory could not be obtained
  StatusNullPtrErr = -8,          // a required pointer is null
  StatusSizeErr = -6,             // a width or height below 1
  StatusBadArgErr = -5,           // three corners of a quadrilateral lie on one line (internal)
  StatusQuadSignErr = -4,         // the corners of a quadrilateral turn both ways (internal)
  StatusDataTypeErr = -2,         // a data type that the operation does not handle
  StatusOk = 0,                   // success
  StatusNothingToDoWarning = 1,   // a band of a resize has no pixel to write
  StatusCpuUnknown = 20,          // start-up did not recognise the processor (internal)
  StatusNoOverlapWarning = 29,    // source and destination regions do not meet; nothing written
  StatusOddSizeWarning = 35       // an odd last column or row was left unwritten
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
  // Returns -2 for any other type; -8 if src or dst is null; -6 if width or height is below 1.
  static IppStatus qvCopy(qvDataType type, const unsigned char* src, int srcStep,
                          unsigned char* dst, int dstStep, IppiSize size);

  // Makes a grey plane into a three-byte image: dst[3k] = dst[3k + 1] = dst[3k + 2] = src[k].
  // `type` is ignored. Source and destination must not overlap.
  // Returns -8 if src or dst is null; -6 if width or height is below 1.
  static IppStatus qvDup(qvDataType type, const unsigned char* src, int srcStep, unsigned char* dst,
                         int dstStep, IppiSize size);

  // Fills an image with one pixel value.
  //   type 2   dst[k] = value[0]
  //   type 4   dst[3k + c] = value[c], c = 0, 1, 2
  // Returns -2 for any other type; -8 if dst is null or, for type 4, value is null (for type 2 a
  // null value must not be passed: it is read before anything is checked); -6 if width or height is
  // below 1.
  static IppStatus qvSet(qvDataType type, const unsigned char* const value, unsigned char* dst,
                         int dstStep, IppiSize size);

  // Writes the mirror image of a source of width W and height H (type 2: one byte a pixel, type 4:
  // three bytes a pixel, kept in order). With (x, y) a source pixel:
  //   axis 0   goes to (x, H - 1 - y)          top to bottom
  //   axis 1   goes to (W - 1 - x, y)          left to right
  //   axis 2   goes to (W - 1 - x, H - 1 - y)  both
  // Source and destination must not overlap.
  // Returns 0 with nothing looked at or written for any other axis; -2 for any other type; -8 if
  // src or dst is null; -6 if width or height is below 1.
  static IppStatus qvMirror(qvDataType type, const unsigned char* src, int srcStep,
                            unsigned char* dst, int dstStep, IppiSize size, IppiAxis axis);

  // Looks every byte of an index image up in a palette of 2^bitSize three-byte entries:
  //   dst[3k + c] = palette[3 * (src[k] & (2^bitSize - 1)) + c], c = 0, 1, 2
  // `type` is ignored. Exactly the 3 * 2^bitSize bytes of the palette may be read.
  // Returns -8 if src, dst or palette is null; -6 if width or height is below 1; -11 if bitSize is
  // below 1 or above 8.
  static IppStatus qvLUTPalette(qvDataType type, const unsigned char* src, int srcStep,
                                unsigned char* dst, int dstStep, IppiSize size,
                                const unsigned char* palette, int bitSize);

  // Scales every byte in place by value / 255, truncated: x = floor(x * value / 255). size.width
  // counts bytes. Returns -2 if type is not 16; -8 if srcDst is null; -14 if srcDstStep is below 1;
  // -6 if width or height is below 1.
  static IppStatus qvMulCScale(qvDataType type, unsigned char value, unsigned char* srcDst,
                               int srcDstStep, IppiSize size);

  // ---- Checksums --------------------------------------------------------------------------------

  static IppStatus qvCRC32(qvDataType type, const unsigned char* src, int length,
                           unsigned int* crc);

  static IppStatus qvAdler32(qvDataType type, const unsigned char* src, int length,
                             unsigned int* adler);

  // ---- Colour-format conversion -----------------------------------------------------------------

  static IppStatus qvYCbCr420(qvDataType type, const unsigned char* srcY, int srcYStep,
                              const unsigned char* srcCbCr, int srcCbCrStep,
                              unsigned char** const dst, int* const dstStep, IppiSize size);

  static IppStatus qvYCbCr422ToYCrCb420(qvDataType type, const unsigned char* src, int srcStep,
                                        unsigned char** const dst, int* const dstStep,
                                        IppiSize size);

  static IppStatus qvYCbCr420ToBGR(qvDataType type, unsigned char** const src, int* const srcStep,
                                   unsigned char* dst, int dstStep, IppiSize size);

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
  // Code 2 has the arithmetic p0 * (16384 - w) + p1 * w, w = trunc(fraction * 16384 + 1e-07): along
  // x h = (sum + 128) >> 8, then along y out = (h0 * (16384 - w) + h1 * w + 524288) >> 20. The
  // others round the exact value to nearest and limit it to 0 .. 255; each byte is within one unit
  // of it, and on average within 0.26 (0.25 is a perfect rounding).
  //
  // Bands. With a budget of several threads, and more than 64 rows of both srcSize and dstRoiSize a
  // band, codes 1, 2, 4 and 16 run in bands, which lie differently: all codes use pixel centres, in
  // coordinates of the whole image,
  //   code 1  trunc((i + 0.5) / F + 1e-10);  codes 2, 4, 16  (i + 0.5) / F - 0.5,
  // and written is what the region becomes there: from trunc(srcRoi.x * xFactor + 0.4999999999) to
  // before trunc((srcRoi.x + W) * xFactor + 0.4999999999), rows likewise, as far as it lies in
  // dstRoiSize. So a region that does not start at 0 is displaced in dst by its origin times the
  // factor. The number of bands makes no difference; whether there are several does.
  //
  // If dstRoiSize differs from srcSize by at most one pixel each way and srcRoi is the whole image,
  // code 1 is used whatever is asked for. If the source image is narrower or lower than 8 pixels,
  // code 16 becomes 4; than 4 pixels, code 4 becomes 2; than 2 pixels, all but 8 become 1 (not in
  // bands).
  //
  // Source and destination must not overlap. Returns -2 for any other type; -8 if src or dst is
  // null; -6 if srcSize or srcRoi has a width or height below 1 or srcRoi an origin below 0; 29,
  // with nothing written, if srcRoi's origin is outside the image; -6 if dstRoiSize has a width or
  // height below 1; -23 if a factor is not above 0; -22 for any other interpolation; -201 if W *
  // xFactor or H * yFactor, plus 1e-07, is below 0.5; -9 if work memory cannot be had. In bands -6
  // for dstRoiSize comes before 29, -23 and -22 too; there is no -201; 1 if the projected region
  // ends before dst starts, and -8 stands for lacking memory of a band.
  static IppStatus qvResize(qvDataType type, const unsigned char* src, IppiSize srcSize,
                            int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                            IppiSize dstRoiSize, double xFactor, double yFactor,
                            int interpolation);

  // Scales a region of a packed 4:2:2 image: pairs of pixels of four bytes, Y0 Cb Y1 Cr. Arguments
  // are those of qvResize, sizes and coordinates in pixels; `type` is ignored. Interpolation is 1
  // (nearest neighbour), 2 (linear) or 4 (cubic); larger values are done as 4. Runs on the calling
  // thread.
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
  // Returns -8 if src or dst is null; -6 if srcSize or srcRoi has a width or height below 1 or
  // srcRoi an origin below 0; 29, with nothing written, if srcRoi's origin is outside the image; -6
  // if dstRoiSize has a width or height below 1, if srcSize.width, srcRoi.width or srcRoi.x is odd,
  // or if dstRoiSize.width is below 2; -23 if a factor is not above 0; -22 for an interpolation of
  // 0, 3 or below; -201 if W * xFactor + 1e-07 is below 1.5 or H * yFactor + 1e-07 below 0.5; -9 if
  // work memory cannot be had.
  static IppStatus qvResizeYUV422(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                  int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                                  IppiSize dstRoiSize, double xFactor, double yFactor,
                                  int interpolation);

  // ---- Rotation and perspective -----------------------------------------------------------------

  static IppStatus qvRotate(qvDataType type, const unsigned char* src, IppiSize srcSize,
                            int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                            IppiRect dstRoi, double angle, double xShift, double yShift,
                            int interpolation);

  static IppStatus qvWarpPerspective(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                     int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                                     IppiRect dstRoi, const double coeffs[3][3],
                                     int interpolation);

  static IppStatus qvWarpPerspectiveEx(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                       int srcStep, IppiRect srcRoi, unsigned char* dst,
                                       int dstStep, IppiRect dstRoi, const double coeffs[3][3],
                                       int interpolation, const unsigned char* src2, int src2Step,
                                       unsigned char* dst2, int dst2Step,
                                       const double coeffs2[3][3]);

  static IppStatus qvGetPerspectiveTransform(qvDataType type, IppiRect roi, const double quad[4][2],
                                             double coeffs[3][3]);

  static IppStatus qvGetRotateBound(qvDataType type, IppiRect roi, double bound[2][2], double angle,
                                    double xShift, double yShift);

  // ---- Compositing and deinterlacing ------------------------------------------------------------

  static IppStatus qvAlphaCompC(qvDataType type, const unsigned char* src1, int src1Step,
                                unsigned char alpha1, const unsigned char* src2, int src2Step,
                                unsigned char alpha2, unsigned char* dst, int dstStep,
                                IppiSize size, IppiAlphaType alphaType);

  static IppStatus qvMergeAlphaOver(qvDataType type, unsigned char* fg, int fgStep,
                                    unsigned char* fgAlpha, int fgAlphaStep, unsigned char* bg,
                                    int bgStep, unsigned char* bgAlpha, int bgAlphaStep,
                                    unsigned char* dstAlpha, int rowBytes, int width, int height);

  static IppStatus qvMergeAlphaPlus(qvDataType type, unsigned char* srcDst, int srcDstStep,
                                    unsigned char* src, int srcStep, unsigned char* alpha,
                                    int alphaStep, int width, int height);

  static IppStatus qvDeinterlace(qvDataType type, const unsigned char* src, int srcStep,
                                 unsigned char* dst, int dstStep, IppiSize size,
                                 unsigned int centreWeight, unsigned int mode);

  // The class has no data: assignment does nothing and returns its left operand.
  CqvAccLib& operator=(const CqvAccLib&);
};

#endif
