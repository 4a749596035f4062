// Entry points of the compositing kernels. Each forwards to the rows of this processor's level; all
// levels write the same bytes.
#ifndef QV_KERNELS_COMPOSITE_COMPOSITE_H
#define QV_KERNELS_COMPOSITE_COMPOSITE_H

#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Composes two images, weighted by one constant alpha each, on one- and three-byte pixels; the
// formulas are those of CqvAccLib::qvAlphaCompC.
// Checks, in this order: StatusNullPtrErr for a null pointer, StatusSizeErr for a width or height
// below 1, StatusAlphaTypeErr for a composition outside 0 to 11. The destination may be one of the
// sources at the same step.
IppStatus AlphaCompC_8u_C1(const unsigned char* src1, int src1Step, unsigned char alpha1,
                           const unsigned char* src2, int src2Step, unsigned char alpha2,
                           unsigned char* dst, int dstStep, IppiSize size,
                           IppiAlphaType alphaType);
IppStatus AlphaCompC_8u_C3(const unsigned char* src1, int src1Step, unsigned char alpha1,
                           const unsigned char* src2, int src2Step, unsigned char alpha2,
                           unsigned char* dst, int dstStep, IppiSize size,
                           IppiAlphaType alphaType);

// The integer path of CqvAccLib::qvMergeAlphaOver: three-byte pixels, fg in place, the merged alpha
// to dstAlpha at fgAlpha's step. Checks nothing and returns StatusOk.
IppStatus MergeAlphaOverPlain_8u(unsigned char* fg, int fgStep, const unsigned char* fgAlpha,
                                 int fgAlphaStep, const unsigned char* bg, int bgStep,
                                 const unsigned char* bgAlpha, int bgAlphaStep,
                                 unsigned char* dstAlpha, int width, int height);

// The single-precision path of the same: first dstAlpha is merged in place (width pixels a row,
// none if that is below 1), then rowBytes colour bytes a row. Wants a FloatEnvironment. Checks
// nothing and returns StatusOk.
IppStatus MergeAlphaOver_8u(unsigned char* fg, int fgStep, const unsigned char* fgAlpha,
                            int fgAlphaStep, const unsigned char* bg, int bgStep,
                            const unsigned char* bgAlpha, int bgAlphaStep,
                            unsigned char* dstAlpha, int rowBytes, int width, int height);

// CqvAccLib::qvMergeAlphaPlus on one- and three-byte pixels. Checks nothing and returns StatusOk.
IppStatus MergeAlphaPlus_8u_C1(unsigned char* srcDst, int srcDstStep, const unsigned char* src,
                               int srcStep, const unsigned char* alpha, int alphaStep, int width,
                               int height);
IppStatus MergeAlphaPlus_8u_C3(unsigned char* srcDst, int srcDstStep, const unsigned char* src,
                               int srcStep, const unsigned char* alpha, int alphaStep, int width,
                               int height);

}  // namespace qv

#endif
