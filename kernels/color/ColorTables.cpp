#include "kernels/color/Color.h"

#include "dispatch/DispatchTable.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/color/Color.def"
#undef QV_KERNEL

namespace qv {

QV_DEFINE_IMAGE_ENTRY(YCbCr422ToBGR_8u_C2C3)

IppStatus YCbCr420ToBGR_8u_P3C3(const unsigned char* const src[3], const int srcStep[3],
                                unsigned char* dst, int dstStep, IppiSize size) {
  return YCbCr420ToBGR_8u_P3C3_Table(src, srcStep, dst, dstStep, size);
}

IppStatus YCbCr422ToYCrCb420_8u_C2P3(const unsigned char* src, int srcStep,
                                     unsigned char* const dst[3], const int dstStep[3],
                                     IppiSize size) {
  return YCbCr422ToYCrCb420_8u_C2P3_Table(src, srcStep, dst, dstStep, size);
}

IppStatus YCbCrInterleavedTo420_8u_P2P3(const unsigned char* srcY, int srcYStep,
                                        const unsigned char* srcCbCr, int srcCbCrStep,
                                        unsigned char* const dst[3], const int dstStep[3],
                                        IppiSize size) {
  return YCbCrInterleavedTo420_8u_P2P3_Table(srcY, srcYStep, srcCbCr, srcCbCrStep, dst, dstStep,
                                             size);
}

}  // namespace qv
