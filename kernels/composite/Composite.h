// Entry points of the compositing kernels. Each forwards to the rows of this processor's level; all
// levels write the same bytes.
#ifndef QV_KERNELS_COMPOSITE_COMPOSITE_H
#define QV_KERNELS_COMPOSITE_COMPOSITE_H

#include "dispatch/Dispatched.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Composes two images, weighted by one constant alpha each, on one- and three-byte pixels; the
// formulas are those of CqvAccLib::qvAlphaCompC.
// Checks, in this order: StatusNullPtrErr for a null pointer, StatusSizeErr for a width or height
// below 1, StatusAlphaTypeErr for a composition outside 0 to 11. The destination may be one of the
// sources at the same step.
using AlphaCompKernel = Dispatched<IppStatus(
    const unsigned char* src1, int src1Step, unsigned char alpha1, const unsigned char* src2,
    int src2Step, unsigned char alpha2, unsigned char* dst, int dstStep, IppiSize size,
    IppiAlphaType alphaType)>;
extern QV_HIDDEN const AlphaCompKernel AlphaCompC_8u_C1, AlphaCompC_8u_C3;

// The integer path of CqvAccLib::qvMergeAlphaOver: three-byte pixels, fg in place, the merged alpha
// to dstAlpha at fgAlpha's step. Checks nothing and returns StatusOk.
extern QV_HIDDEN const Dispatched<IppStatus(
    unsigned char* fg, int fgStep, const unsigned char* fgAlpha, int fgAlphaStep,
    const unsigned char* bg, int bgStep, const unsigned char* bgAlpha, int bgAlphaStep,
    unsigned char* dstAlpha, int width, int height)> MergeAlphaOverPlain_8u;

// The single-precision path of the same: first dstAlpha is merged in place (width pixels a row,
// none if that is below 1), then rowBytes colour bytes a row. Wants a FloatEnvironment. Checks
// nothing and returns StatusOk.
extern QV_HIDDEN const Dispatched<IppStatus(
    unsigned char* fg, int fgStep, const unsigned char* fgAlpha, int fgAlphaStep,
    const unsigned char* bg, int bgStep, const unsigned char* bgAlpha, int bgAlphaStep,
    unsigned char* dstAlpha, int rowBytes, int width, int height)> MergeAlphaOver_8u;

// CqvAccLib::qvMergeAlphaPlus on one- and three-byte pixels. Checks nothing and returns StatusOk.
using MergePlusKernel = Dispatched<IppStatus(
    unsigned char* srcDst, int srcDstStep, const unsigned char* src, int srcStep,
    const unsigned char* alpha, int alphaStep, int width, int height)>;
extern QV_HIDDEN const MergePlusKernel MergeAlphaPlus_8u_C1, MergeAlphaPlus_8u_C3;

// A foreground F over a frame B in place, each byte under its pixel's alpha a and a constant
// opacity o of 0 to 255, rounded once:
//   straight        (F * a * o + B * (65025 - a * o)) / 65025
//   premultiplied   (F * 255 * o + B * (65025 - a * o)) / 65025, at most 255
// C1 and C3: bytes and pixels of three under an alpha plane, or under alphas of 255 if that is
// null. AC4 and AC4C3: pixels of four bytes, the fourth the alpha, over four and over three; the
// plane is not looked at, and the frame's fourth bytes stay as they are. Frame and foreground must
// not overlap. Checks nothing and returns StatusOk.
using OverlayKernel = Dispatched<IppStatus(
    unsigned char* frame, int frameStep, const unsigned char* fg, int fgStep,
    const unsigned char* alpha, int alphaStep, IppiSize size, int opacity, bool premultiplied)>;
extern QV_HIDDEN const OverlayKernel Overlay_8u_C1, Overlay_8u_C3, Overlay_8u_AC4,
    Overlay_8u_AC4C3;

}  // namespace qv

#endif
