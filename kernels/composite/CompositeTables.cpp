#include "dispatch/DispatchTable.h"
#include "kernels/composite/Composite.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/composite/Composite.def"
#undef QV_KERNEL

namespace qv {

IppStatus AlphaCompC_8u_C1(const unsigned char* src1, int src1Step, unsigned char alpha1,
                           const unsigned char* src2, int src2Step, unsigned char alpha2,
                           unsigned char* dst, int dstStep, IppiSize size,
                           IppiAlphaType alphaType) {
  return AlphaCompC_8u_C1_Table(src1, src1Step, alpha1, src2, src2Step, alpha2, dst, dstStep, size,
                                alphaType);
}

IppStatus AlphaCompC_8u_C3(const unsigned char* src1, int src1Step, unsigned char alpha1,
                           const unsigned char* src2, int src2Step, unsigned char alpha2,
                           unsigned char* dst, int dstStep, IppiSize size,
                           IppiAlphaType alphaType) {
  return AlphaCompC_8u_C3_Table(src1, src1Step, alpha1, src2, src2Step, alpha2, dst, dstStep, size,
                                alphaType);
}

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

IppStatus MergeAlphaPlus_8u_C1(unsigned char* srcDst, int srcDstStep, const unsigned char* src,
                               int srcStep, const unsigned char* alpha, int alphaStep, int width,
                               int height) {
  return MergeAlphaPlus_8u_C1_Table(srcDst, srcDstStep, src, srcStep, alpha, alphaStep, width,
                                    height);
}

IppStatus MergeAlphaPlus_8u_C3(unsigned char* srcDst, int srcDstStep, const unsigned char* src,
                               int srcStep, const unsigned char* alpha, int alphaStep, int width,
                               int height) {
  return MergeAlphaPlus_8u_C3_Table(srcDst, srcDstStep, src, srcStep, alpha, alphaStep, width,
                                    height);
}

}  // namespace qv
