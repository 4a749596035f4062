#include "kernels/resample/ResampleRows.h"

#include "dispatch/DispatchTable.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/resample/Resample.def"
#undef QV_KERNEL

namespace qv {

IppStatus LongRows_8u(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                      const LongTables* tables, void* scratch) {
  return LongRows_8u_Table(src, srcStep, dst, dstStep, tables, scratch);
}

IppStatus WeightedRows_8u_C4(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                             const WeightedTables* tables, void* scratch) {
  return WeightedRows_8u_C4_Table(src, srcStep, dst, dstStep, tables, scratch);
}

IppStatus LimitToAlpha_8u_C4(unsigned char* srcDst, int srcDstStep, IppiSize size) {
  return LimitToAlpha_8u_C4_Table(srcDst, srcDstStep, size);
}

bool IsOpaque_8u_C4(const unsigned char* row, ptrdiff_t pixels) {
  return IsOpaque_8u_C4_Table(row, pixels);
}

}  // namespace qv
