#include "kernels/copy/Copy.h"

#include "dispatch/DispatchTable.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/copy/Copy.def"
#undef QV_KERNEL

namespace qv {

QV_DEFINE_IMAGE_ENTRY(CopyRows_8u_C1)
QV_DEFINE_IMAGE_ENTRY(CopyRows_8u_C3)
QV_DEFINE_IMAGE_ENTRY(CopyChannel_8u_C1C3)
QV_DEFINE_IMAGE_ENTRY(CopyDropAlpha_8u_AC4C3)
QV_DEFINE_IMAGE_ENTRY(CopyKeepAlpha_8u_C3AC4)
QV_DEFINE_IMAGE_ENTRY(DupGray_8u_C1C3)

IppStatus SetPixels_8u_C1(unsigned char value, unsigned char* dst, int dstStep, IppiSize size) {
  return SetPixels_8u_C1_Table(value, dst, dstStep, size);
}

IppStatus SetPixels_8u_C3(const unsigned char* value, unsigned char* dst, int dstStep,
                          IppiSize size) {
  return SetPixels_8u_C3_Table(value, dst, dstStep, size);
}

IppStatus Mirror_8u_C1(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                       int width, int height, IppiAxis axis) {
  return Mirror_8u_C1_Table(src, srcStep, dst, dstStep, width, height, axis);
}

IppStatus Mirror_8u_C3(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                       int width, int height, IppiAxis axis) {
  return Mirror_8u_C3_Table(src, srcStep, dst, dstStep, width, height, axis);
}

IppStatus LookupPalette_8u_C1C3(const unsigned char* src, int srcStep, unsigned char* dst,
                                int dstStep, int width, int height, const unsigned char* palette,
                                int bitSize) {
  return LookupPalette_8u_C1C3_Table(src, srcStep, dst, dstStep, width, height, palette, bitSize);
}

IppStatus MulScale_8u_C1I(const unsigned char* src, int srcStep, unsigned char value,
                          unsigned char* dst, int dstStep, int width, int height) {
  return MulScale_8u_C1I_Table(src, srcStep, value, dst, dstStep, width, height);
}

}  // namespace qv
