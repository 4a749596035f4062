// Entry points of the transfer kernels. Each forwards to the rows of this processor's level; all
// levels write the same bytes.
//
// Checks, in this order: StatusNullPtrErr for a null pointer, then what the kernel names, then
// StatusSizeErr for a width or height below 1. Steps may be negative or smaller than a row.
#ifndef QV_KERNELS_COPY_COPY_H
#define QV_KERNELS_COPY_COPY_H

#include "dispatch/Dispatched.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// dst[k] = src[k], bytes of one- and three-byte pixels.
extern QV_HIDDEN const ImageKernel CopyRows_8u_C1, CopyRows_8u_C3;

// dst[3k] = src[k]; the other two bytes of a pixel are not stored to.
extern QV_HIDDEN const ImageKernel CopyChannel_8u_C1C3;

// dst[3k + c] = src[4k + c], c = 0, 1, 2.
extern QV_HIDDEN const ImageKernel CopyDropAlpha_8u_AC4C3;

// dst[4k + c] = src[3k + c], c = 0, 1, 2; dst[4k + 3] is not stored to.
extern QV_HIDDEN const ImageKernel CopyKeepAlpha_8u_C3AC4;

// dst[3k] = dst[3k + 1] = dst[3k + 2] = src[k].
extern QV_HIDDEN const ImageKernel DupGray_8u_C1C3;

// dst[k] = value.
extern QV_HIDDEN const Dispatched<IppStatus(
    unsigned char value, unsigned char* dst, int dstStep, IppiSize size)> SetPixels_8u_C1;

// dst[3k + c] = value[c], c = 0, 1, 2.
extern QV_HIDDEN const Dispatched<IppStatus(
    const unsigned char* value, unsigned char* dst, int dstStep, IppiSize size)> SetPixels_8u_C3;

// Flips about the horizontal axis (0), the vertical axis (1) or both (2); StatusAxisErr for any
// other axis, after the size.
using MirrorKernel = Dispatched<IppStatus(
    const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, int width, int height,
    IppiAxis axis)>;
extern QV_HIDDEN const MirrorKernel Mirror_8u_C1, Mirror_8u_C3;

// dst[3k + c] = palette[3 * (src[k] & (2^bitSize - 1)) + c]; StatusOutOfRangeErr for a bitSize
// outside 1 to 8, after the size.
extern QV_HIDDEN const Dispatched<IppStatus(
    const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, int width, int height,
    const unsigned char* palette, int bitSize)> LookupPalette_8u_C1C3;

// dst[k] = floor(src[k] * value / 255). StatusStepErr for a step below 1, before the size.
extern QV_HIDDEN const Dispatched<IppStatus(
    const unsigned char* src, int srcStep, unsigned char value, unsigned char* dst, int dstStep,
    int width, int height)> MulScale_8u_C1I;

}  // namespace qv

#endif
