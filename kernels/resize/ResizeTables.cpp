#include "dispatch/DispatchTable.h"
#include "kernels/resize/ResizeRows.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/resize/Resize.def"
#undef QV_KERNEL

namespace qv {

void NearestRows_8u(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                    const NearestTables* tables, void* work) {
  NearestRows_8u_Table(src, srcStep, dst, dstStep, tables, work);
}

void ResizeLinearRows_8u(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                         const LinearTables* tables, void* work) {
  ResizeLinearRows_8u_Table(src, srcStep, dst, dstStep, tables, work);
}

}  // namespace qv
