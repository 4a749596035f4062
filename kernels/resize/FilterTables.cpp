#include "kernels/resize/Filter.h"

#include "dispatch/DispatchTable.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/resize/Filter.def"
#undef QV_KERNEL

namespace qv {

#define QV_FILTER_ENTRY(kernel, Columns, Rows)                                                   \
  IppStatus kernel(const unsigned char* src, int srcStep, const Columns& x, const Rows& y,       \
                   unsigned char* dst, int dstStep, void* scratch) {                             \
    return kernel##_Table(src, srcStep, x, y, dst, dstStep, scratch);                            \
  }
QV_FILTER_ENTRY(FilterRows_8u_C1, FilterColumns, AxisTaps)
QV_FILTER_ENTRY(FilterRows_8u_C2, FilterColumns, AxisTaps)
QV_FILTER_ENTRY(FilterRows_8u_C3, FilterColumns, AxisTaps)
QV_FILTER_ENTRY(FilterRows_8u_C4, FilterColumns, AxisTaps)
QV_FILTER_ENTRY(FilterRows422_8u_C2, FilterColumns, AxisTaps)
QV_FILTER_ENTRY(AreaRows_8u_C1, AreaColumns, AxisSpans)
QV_FILTER_ENTRY(AreaRows_8u_C3, AreaColumns, AxisSpans)
QV_FILTER_ENTRY(AreaRows422_8u_C2, AreaColumns, AxisSpans)
#undef QV_FILTER_ENTRY

QV_DEFINE_IMAGE_ENTRY(HalveRows_8u_C1)
QV_DEFINE_IMAGE_ENTRY(HalveRows_8u_C3)

}  // namespace qv
