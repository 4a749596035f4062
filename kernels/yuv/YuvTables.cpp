#include "dispatch/DispatchTable.h"
#include "kernels/yuv/Yuv.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/yuv/Yuv.def"
#undef QV_KERNEL

namespace qv {

void YuvToRgb_8u(const YuvFrame<const unsigned char>* src, const RgbFrame<unsigned char>* dst,
                 const YuvToRgbTerms* t, ChromaSiting siting, IppiSize size, int firstRow,
                 int rows) {
  YuvToRgb_8u_Table(src, dst, t, siting, size, firstRow, rows);
}

void RgbToYuv_8u(const RgbFrame<const unsigned char>* src, const YuvFrame<unsigned char>* dst,
                 const RgbToYuvTerms* t, ChromaSiting siting, IppiSize size, int firstRow,
                 int rows) {
  RgbToYuv_8u_Table(src, dst, t, siting, size, firstRow, rows);
}

void MapLuma_8u(const unsigned char* src, int srcStep, int apart, unsigned char* dst, int dstStep,
                IppiSize size, LumaMap map) {
  MapLuma_8u_Table(src, srcStep, apart, dst, dstStep, size, map);
}

}  // namespace qv
