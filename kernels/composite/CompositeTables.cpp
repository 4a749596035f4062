#include "dispatch/DispatchTable.h"
#include "kernels/composite/Composite.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/composite/Composite.def"
#undef QV_KERNEL

namespace qv {

#define QV_BLEND_ENTRY(kernel)                                                                   \
  IppStatus kernel(const unsigned char* src1, int src1Step, unsigned char alpha1,                \
                   const unsigned char* src2, int src2Step, unsigned char alpha2,                \
                   unsigned char* dst, int dstStep, IppiSize size, IppiAlphaType alphaType) {    \
    return kernel##_Table(src1, src1Step, alpha1, src2, src2Step, alpha2, dst, dstStep, size,    \
                          alphaType);                                                            \
  }
QV_BLEND_ENTRY(AlphaCompC_8u_C1)
QV_BLEND_ENTRY(AlphaCompC_8u_C3)
#undef QV_BLEND_ENTRY

IppStatus MergeAlphaOverPlain_8u(unsigned char* fg, int fgStep, const unsigned char* fgAlpha,
                                 int fgAlphaStep, const unsigned char* bg, int bgStep,
                                 const unsigned char* bgAlpha, int bgAlphaStep,
                                 unsigned char* dstAlpha, int width, int height) {
  return MergeAlphaOverPlain_8u_Table(fg, fgStep, fgAlpha, fgAlphaStep, bg, bgStep, bgAlpha,
                                      bgAlphaStep, dstAlpha, width, height);
}

IppStatus MergeAlphaOver_8u(unsigned char* fg, int fgStep, const unsigned char* fgAlpha,
                            int fgAlphaStep, const unsigned char* bg, int bgStep,
                            const unsigned char* bgAlpha, int bgAlphaStep,
                            unsigned char* dstAlpha, int rowBytes, int width, int height) {
  return MergeAlphaOver_8u_Table(fg, fgStep, fgAlpha, fgAlphaStep, bg, bgStep, bgAlpha,
                                 bgAlphaStep, dstAlpha, rowBytes, width, height);
}

#define QV_PLUS_ENTRY(kernel)                                                                    \
  IppStatus kernel(unsigned char* srcDst, int srcDstStep, const unsigned char* src, int srcStep, \
                   const unsigned char* alpha, int alphaStep, int width, int height) {           \
    return kernel##_Table(srcDst, srcDstStep, src, srcStep, alpha, alphaStep, width, height);    \
  }
QV_PLUS_ENTRY(MergeAlphaPlus_8u_C1)
QV_PLUS_ENTRY(MergeAlphaPlus_8u_C3)
#undef QV_PLUS_ENTRY

}  // namespace qv
