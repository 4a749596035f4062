// Entry points of the resize kernels. They check their arguments, plan the positions that the
// destination samples have in the source (in double precision, once for all levels) and hand the
// tables to the rows of this processor's level; all levels write the same bytes.
//
// Interpolation codes are those of IppiInterpolation; area averaging only reduces. `channels`
// interleaved bytes a pixel.
#ifndef QV_KERNELS_RESIZE_RESIZE_H
#define QV_KERNELS_RESIZE_RESIZE_H

#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// The arguments of CqvAccLib::qvResize but for its type.
struct ResizeCall {
  const unsigned char* src;
  IppiSize srcSize;
  int srcStep;
  IppiRect srcRoi;
  unsigned char* dst;
  int dstStep;
  IppiSize dstRoiSize;
  double xFactor, yFactor;
  int interpolation;
};

// Whether a factor is above 1, which area averaging cannot do.
bool Enlarges(double xFactor, double yFactor);

// Whole images. With L the length of the region, clipped to the image, and F the factor of an axis,
// at most trunc(L * F + 1e-07) and at most the destination's samples are written, at least one.
// Positions in the source, from the region's first sample, each the one before plus the step:
//   code 1          0.5 / F, step 1 / F: sample i stands at (i + 0.5) / F (pixel centres)
//   codes 2, 4, 16  0, step (L - 1) / (L * F - 1): the first and the last samples of region and
//                   destination fall on each other (corner-aligned); step 0 if L * F <= 1
//   code 8          sample i is the mean over [i / F, (i + 1) / F)
// A source image narrower or lower than 8 takes code 4 instead of 16, than 4 code 2 instead of 4,
// than 2 code 1 instead of 2. Statuses, in this order: StatusNullPtrErr; StatusSizeErr for srcSize
// and srcRoi; StatusNoOverlapWarning if the region's origin is outside the image; StatusSizeErr for
// dstRoiSize; StatusResizeFactorErr for a factor not above 0; StatusInterpolationErr for any other
// code, or 8 with a factor above 1; StatusEmptyOutputErr if L * F + 1e-07 is below 0.5 on an axis;
// StatusMemAllocErr.
IppStatus Resize_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiSize dstRoiSize, double xFactor,
                       double yFactor, int interpolation);
IppStatus Resize_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       unsigned char* dst, int dstStep, IppiSize dstRoiSize, double xFactor,
                       double yFactor, int interpolation);

// A rectangle of a larger destination, whose origin `dst` is; neighbouring rectangles meet without
// a seam. Destination sample i of an axis stands at (i + 0.5) / F - shift / F in the source image
// (code 1: that position plus 1e-10, truncated; the others: that position less 0.5, a sample's
// centre lying at its index); samples outside the clipped region are its nearest edge samples.
// Written are the pixels of dstRect from trunc(left + 0.4999999999) to before trunc(right +
// 0.4999999999), where left = srcRoi.x * F + shift and right = (srcRoi.x + width) * F + shift.
// `buffer` holds at least what ResizeBandBufferSize says of dstRect's size. Statuses, in this
// order: StatusNullPtrErr (also for the buffer); StatusSizeErr for srcSize, srcRoi and dstRect;
// StatusResizeFactorErr for a factor not above 0; StatusInterpolationErr; StatusNoOverlapWarning if
// the region's origin is outside the image; StatusNothingToDoWarning if an end lies before its
// start; StatusResizeFactorErr for code 8 with a factor above 1; StatusMemAllocErr.
IppStatus ResizeBand_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep,
                           IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRect,
                           double xFactor, double yFactor, double xShift, double yShift,
                           int interpolation, unsigned char* buffer);
IppStatus ResizeBand_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep,
                           IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRect,
                           double xFactor, double yFactor, double xShift, double yShift,
                           int interpolation, unsigned char* buffer);

// Where the destination pixel (x, y) of a call of either kind reads, the bands' without shifts, in
// pixels of the source, whole numbers being their middles: the pixel that code 1 reads, the middle
// of what code 8 covers, the position between the taps of the other codes. Pointers and steps are
// not looked at. Statuses: those of the kernel, then StatusOutOfRangeErr for a pixel that is not
// written.
IppStatus WholeSourcePosition(const ResizeCall& call, int x, int y, double position[2]);
IppStatus BandSourcePosition(const ResizeCall& call, int x, int y, double position[2]);

// Whether a band without shifts, of a call whose other arguments are good, reaches the projected
// region with its rows: StatusNothingToDoWarning of the band kernels if not.
bool HasResizeRows(IppiSize srcSize, IppiRect srcRoi, int firstRow, int rows, double yFactor);

// Bytes of the buffer of a band kernel, for codes 1, 2, 4 and 16.
// Statuses, in this order: StatusNullPtrErr; StatusSizeErr for a width or height below 1;
// StatusChannelErr for a channel count other than 1, 3 or 4; StatusInterpolationErr; StatusSizeErr
// if the count does not fit an int.
IppStatus ResizeBandBufferSize(IppiSize dstSize, int channels, int interpolation, int* bytes);

// Packed 4:2:2 (Y0 Cb Y1 Cr). Luma lies on a grid of pixels, each chroma component on one of pairs
// of pixels; each is resized on its own grid as by Resize_8u_C1, with codes 1, 2, 4 and 8. The
// region's first byte is src + 4 * srcRoi.x + srcStep * srcRoi.y, and 2 * width bytes from there
// are read. Whole pairs are written: (trunc(width * xFactor + 1e-07) or dstRoiSize.width) / 2 of
// them. A source image narrower than 8 or lower than 4 takes code 2 instead of 4; narrower than 4
// or lower than 2, code 1 instead of any but 8. Statuses, in this order: StatusNullPtrErr;
// StatusSizeErr for srcSize and srcRoi; StatusNoOverlapWarning; StatusSizeErr for dstRoiSize, then
// for an odd srcSize.width, srcRoi.width or srcRoi.x and for a destination narrower than 2;
// StatusResizeFactorErr for a factor not above 0; StatusInterpolationErr; StatusEmptyOutputErr if
// width * xFactor + 1e-07 is below 1.5 or height * yFactor + 1e-07 below 0.5; StatusResizeFactorErr
// for code 8 with a factor above 1; StatusMemAllocErr.
IppStatus ResizeYUV422_8u_C2(const unsigned char* src, IppiSize srcSize, int srcStep,
                             IppiRect srcRoi, unsigned char* dst, int dstStep,
                             IppiSize dstRoiSize, double xFactor, double yFactor,
                             int interpolation);

}  // namespace qv

#endif
