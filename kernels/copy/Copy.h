// Entry points of the transfer kernels. Each forwards to the rows of this processor's level; all
// levels write the same bytes.
//
// Checks, in this order: StatusNullPtrErr for a null pointer, then what the kernel names, then
// StatusSizeErr for a width or height below 1. Steps may be negative or smaller than a row.
#ifndef QV_KERNELS_COPY_COPY_H
#define QV_KERNELS_COPY_COPY_H

#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// dst[k] = src[k], bytes of one- and three-byte pixels.
IppStatus CopyRows_8u_C1(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                         IppiSize size);
IppStatus CopyRows_8u_C3(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                         IppiSize size);

// dst[3k] = src[k]; the other two bytes of a pixel are not stored to.
IppStatus CopyChannel_8u_C1C3(const unsigned char* src, int srcStep, unsigned char* dst,
                              int dstStep, IppiSize size);

// dst[3k + c] = src[4k + c], c = 0, 1, 2.
IppStatus CopyDropAlpha_8u_AC4C3(const unsigned char* src, int srcStep, unsigned char* dst,
                                 int dstStep, IppiSize size);

// dst[4k + c] = src[3k + c], c = 0, 1, 2; dst[4k + 3] is not stored to.
IppStatus CopyKeepAlpha_8u_C3AC4(const unsigned char* src, int srcStep, unsigned char* dst,
                                 int dstStep, IppiSize size);

// dst[3k] = dst[3k + 1] = dst[3k + 2] = src[k].
IppStatus DupGray_8u_C1C3(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                          IppiSize size);

// dst[k] = value.
IppStatus SetPixels_8u_C1(unsigned char value, unsigned char* dst, int dstStep, IppiSize size);

// dst[3k + c] = value[c], c = 0, 1, 2.
IppStatus SetPixels_8u_C3(const unsigned char* value, unsigned char* dst, int dstStep,
                          IppiSize size);

// Flips about the horizontal axis (0), the vertical axis (1) or both (2); StatusAxisErr for any
// other axis, after the size.
IppStatus Mirror_8u_C1(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                       int width, int height, IppiAxis axis);
IppStatus Mirror_8u_C3(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                       int width, int height, IppiAxis axis);

// dst[3k + c] = palette[3 * (src[k] & (2^bitSize - 1)) + c]; StatusOutOfRangeErr for a bitSize
// outside 1 to 8, after the size.
IppStatus LookupPalette_8u_C1C3(const unsigned char* src, int srcStep, unsigned char* dst,
                                int dstStep, int width, int height, const unsigned char* palette,
                                int bitSize);

// dst[k] = floor(src[k] * value / 255). StatusStepErr for a step below 1, before the size.
IppStatus MulScale_8u_C1I(const unsigned char* src, int srcStep, unsigned char value,
                          unsigned char* dst, int dstStep, int width, int height);

}  // namespace qv

#endif
