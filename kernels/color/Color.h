// Entry points of the colour-format conversions. Each forwards to the rows of this processor's
// level; all levels write the same bytes.
//
// Packed 4:2:2 is Y0, Cb, Y1, Cr for two pixels side by side. Steps are not checked.
#ifndef QV_KERNELS_COLOR_COLOR_H
#define QV_KERNELS_COLOR_COLOR_H

#include "dispatch/Dispatched.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Packed 4:2:2 to B, G, R. An odd last pixel takes its Cr from the group before it.
// StatusNullPtrErr for a null pointer; StatusSizeErr for a width below 2 or a height below 1.
extern QV_HIDDEN const ImageKernel YCbCr422ToBGR_8u_C2C3;

// Planes Y, Cb, Cr of 4:2:0 to B, G, R, rounded. StatusNullPtrErr for a null array or dst;
// StatusSizeErr for a width or height below 1; StatusNullPtrErr for a null plane;
// StatusOddSizeWarning when an odd last column or row was left out.
extern QV_HIDDEN const Dispatched<IppStatus(
    const unsigned char* const src[3], const int srcStep[3], unsigned char* dst, int dstStep,
    IppiSize size)> YCbCr420ToBGR_8u_P3C3;

// Packed 4:2:2 to planes Y, Cr, Cb of 4:2:0, the chroma of the upper row of two being kept. An odd
// last column or row is left out. StatusNullPtrErr for a null array, plane or source; StatusSizeErr
// for a width or height below 2.
extern QV_HIDDEN const Dispatched<IppStatus(
    const unsigned char* src, int srcStep, unsigned char* const dst[3], const int dstStep[3],
    IppiSize size)> YCbCr422ToYCrCb420_8u_C2P3;

// A plane Y and a plane of Cb, Cr pairs to planes Y, Cb, Cr of 4:2:0; the rest as above.
extern QV_HIDDEN const Dispatched<IppStatus(
    const unsigned char* srcY, int srcYStep, const unsigned char* srcCbCr, int srcCbCrStep,
    unsigned char* const dst[3], const int dstStep[3],
    IppiSize size)> YCbCrInterleavedTo420_8u_P2P3;

}  // namespace qv

#endif
