#include "dispatch/DispatchTable.h"
#include "kernels/deinterlace/Deinterlace.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/deinterlace/Deinterlace.def"
#undef QV_KERNEL

namespace qv {

IppStatus Deinterlace_8u(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                         int widthBytes, int height, unsigned centreWeight, unsigned mode) {
  return Deinterlace_8u_Table(src, srcStep, dst, dstStep, widthBytes, height, centreWeight, mode);
}

}  // namespace qv
