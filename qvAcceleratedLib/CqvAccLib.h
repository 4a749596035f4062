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

  // Scales every byte in place by value / 255, truncated: x = floor(x * value / 255).
  // size.width counts bytes.
  // Returns -2 if type is not 16; -8 if srcDst is null; -14 if srcDstStep is below 1; -6 if width or
  // height is below 1.
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

  static IppStatus qvResize(qvDataType type, const unsigned char* src, IppiSize srcSize,
                            int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                            IppiSize dstRoiSize, double xFactor, double yFactor,
                            int interpolation);

  static IppStatus qvResizeYUV422(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                  int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                                  IppiSize dstRoiSize, double xFactor, double yFactor,
                                  int interpolation);

  // ---- Rotation and perspective -----------------------------------------------------------------

  // Rotation and warping. Pointers point at pixel (0, 0) of the whole image, never at a region; regions
  // and positions are in pixels of the whole images, and pixel (x, y) is a sample at exactly that
  // position. Every destination pixel asks where it comes from: it is mapped back through the
  // transform to a source position (X, Y). It is written if (X, Y) lies inside the rectangle of corner
  // pixels of srcRoi's part inside the image, its edges and 1e-6 pixel beyond included, and keeps
  // its value otherwise. All channels of a pixel are sampled at one position, from pixels of that part only;
  // taps beyond take its nearest edge pixel:
  //   interpolation 1   nearest neighbour: pixel (floor(X + 0.5), floor(Y + 0.5))
  //   interpolation 2   linear: two taps an axis, weights 1 - |d|
  //   interpolation 4   cubic (Keys 1981, a = -0.5): four taps an axis, with weights
  //                     1.5 |d|^3 - 2.5 |d|^2 + 1 below 1, -0.5 |d|^3 + 2.5 |d|^2 - 4 |d| + 2 below 2
  // d being the distance of the tap. Bit 31 of the interpolation is ignored. Positions are exact to
  // better than 2^-11 pixel, weights have 14 fractional bits, and the rounded and saturated result is
  // within one unit of the exact one. Source and destination must not overlap.
  // Statuses of warps and of rotations that are not quarter turns, in this order: -2 for a type other
  // than 2 and 4; -8 if src or dst is null; -6 if a width or height of srcSize, srcRoi or dstRoi is
  // below 1 or an origin of a region is negative; -14 if a step is below 1; -22 for another
  // interpolation; -56 if the transform's upper-left 2 x 2 block is singular (relative to its
  // diagonal, to 1e-12), or carries the corner pixels of srcRoi onto a quadrilateral that is
  // degenerate (a width or height of 1) or not convex; -57 if srcRoi has no pixel inside the image; 29 if
  // that quadrilateral misses dstRoi. Nothing is written unless the status is 0.

  // Rotates about pixel (0, 0) by `angle` degrees, counter-clockwise as seen on the screen, and
  // shifts by (xShift, yShift) pixels. With a the angle in radians, source (x, y) goes to
  //   x' = cos a * x + sin a * y + xShift,   y' = -sin a * x + cos a * y + yShift
  // Runs on the calling thread. Quarter turns (90, 180 or 270 degrees plus whole turns) with
  // whole shifts move pixels without sampling; their statuses are: -2; -8; -6; -14; 29 if srcRoi
  // starts outside of the image or the turned region misses dstRoi. They do not look at the interpolation.
  // Other rotations: see above.
  static IppStatus qvRotate(qvDataType type, const unsigned char* src, IppiSize srcSize,
                            int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                            IppiRect dstRoi, double angle, double xShift, double yShift,
                            int interpolation);

  // Warps through a matrix that carries source (X, Y) to the destination, such as
  // qvGetPerspectiveTransform gives:
  //   x' = (c00 X + c01 Y + c02) / (c20 X + c21 Y + c22)
  //   y' = (c10 X + c11 Y + c12) / (c20 X + c21 Y + c22)
  // Statuses: see above. On several bands the status is the last band's, so 29 may mean that only the
  // last band was missed.
  static IppStatus qvWarpPerspective(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                     int srcStep, IppiRect srcRoi, unsigned char* dst, int dstStep,
                                     IppiRect dstRoi, const double coeffs[3][3],
                                     int interpolation);

  // qvWarpPerspective on a three-channel image and, if src2 and dst2 are both non-null, on a
  // one-channel image of the same size and regions with its own steps and matrix, for instance a mask. `type`
  // is ignored.
  // Returns the status of the last warp made. On one band the second image is warped only if the
  // first warp returned 0; on several bands (dstRoi higher than 64 rows a thread) it always is, and
  // its status replaces the first one's.
  static IppStatus qvWarpPerspectiveEx(qvDataType type, const unsigned char* src, IppiSize srcSize,
                                       int srcStep, IppiRect srcRoi, unsigned char* dst,
                                       int dstStep, IppiRect dstRoi, const double coeffs[3][3],
                                       int interpolation, const unsigned char* src2, int src2Step,
                                       unsigned char* dst2, int dst2Step,
                                       const double coeffs2[3][3]);

  // Derives the matrix that carries a region onto a quadrilateral:
  //   x' = (c00 X + c01 Y + c02) / (c20 X + c21 Y + c22)
  //   y' = (c10 X + c11 Y + c12) / (c20 X + c21 Y + c22)
  // quad[0..3] are the (x, y) images, in pixels, of the centres of the region's top-left, top-right,
  // bottom-right and bottom-left pixels; they may turn either way round. `type` is ignored; no
  // pointer is checked. The result fits qvWarpPerspective.
  // Returns -6 if roi.x or roi.y is negative or its width or height is below 1; -58 if three corners
  // lie on one line or the quadrilateral is not convex; -57 if width or height is 1. Nothing is
  // written then.
  static IppStatus qvGetPerspectiveTransform(qvDataType type, IppiRect roi, const double quad[4][2],
                                             double coeffs[3][3]);

  // The smallest upright rectangle around a region after qvRotate by `angle` degrees and a shift in
  // pixels. With the centres of the region's corner pixels at (x, y) and a = angle in radians:
  //   x' = cos a * x + sin a * y + xShift,   y' = -sin a * x + cos a * y + yShift
  //   bound[0] = (smallest x', smallest y'), bound[1] = (largest x', largest y')
  // Multiples of 90 degrees are exact. `type` is ignored; no pointer is checked.
  // Returns -6, with nothing written, if roi.x or roi.y is negative or its width or height is below 1.
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
