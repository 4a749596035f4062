#include "kernels/geometry/Geometry.h"

#include "dispatch/DispatchTable.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/geometry/Geometry.def"
#undef QV_KERNEL

namespace qv {

void WarpRow_8u_C1(const WarpSource* source, const WarpSegment* segments, int count, int first,
                   int last, unsigned char* dst) {
  WarpRow_8u_C1_Table(source, segments, count, first, last, dst);
}

void WarpRow_8u_C3(const WarpSource* source, const WarpSegment* segments, int count, int first,
                   int last, unsigned char* dst) {
  WarpRow_8u_C3_Table(source, segments, count, first, last, dst);
}

void Transpose_8u_C1(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                     IppiSize size) {
  Transpose_8u_C1_Table(src, srcStep, dst, dstStep, size);
}

void Transpose_8u_C3(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                     IppiSize size) {
  Transpose_8u_C3_Table(src, srcStep, dst, dstStep, size);
}

}  // namespace qv
