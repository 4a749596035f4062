#include "kernels/resize/Filter.h"

#include "dispatch/DispatchTable.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/resize/Filter.def"
#undef QV_KERNEL

namespace qv {

#define QV_FILTER_ENTRY(kernel)                                                                  \
  IppStatus kernel(const unsigned char* src, int srcStep, const FilterColumns& x,                \
                   const AxisTaps& y, unsigned char* dst, int dstStep, void* scratch) {          \
    return kernel##_Table(src, srcStep, x, y, dst, dstStep, scratch);                            \
  }
QV_FILTER_ENTRY(FilterRows_8u_C1)
QV_FILTER_ENTRY(FilterRows_8u_C3)
QV_FILTER_ENTRY(FilterRows422_8u_C2)
#undef QV_FILTER_ENTRY

#define QV_AREA_ENTRY(kernel)                                                                    \
  IppStatus kernel(const unsigned char* src, int srcStep, const AreaColumns& x,                  \
                   const AxisSpans& y, unsigned char* dst, int dstStep, void* scratch) {         \
    return kernel##_Table(src, srcStep, x, y, dst, dstStep, scratch);                            \
  }
QV_AREA_ENTRY(AreaRows_8u_C1)
QV_AREA_ENTRY(AreaRows_8u_C3)
QV_AREA_ENTRY(AreaRows422_8u_C2)
#undef QV_AREA_ENTRY

IppStatus HalveRows_8u_C1(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                          IppiSize size) {
  return HalveRows_8u_C1_Table(src, srcStep, dst, dstStep, size);
}

IppStatus HalveRows_8u_C3(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                          IppiSize size) {
  return HalveRows_8u_C3_Table(src, srcStep, dst, dstStep, size);
}

}  // namespace qv
