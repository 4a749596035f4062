// Sampling along destination rows.
#include "kernels/geometry/Geometry.h"
#include "kernels/geometry/WarpPlain.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

void WarpRow_8u_C1(const WarpSource* source, const WarpSegment* segments, int count, int first,
                   int last, Byte* dst) {
  WarpRowPlain<1>(*source, segments, count, first, last, dst);
}

void WarpRow_8u_C3(const WarpSource* source, const WarpSegment* segments, int count, int first,
                   int last, Byte* dst) {
  WarpRowPlain<3>(*source, segments, count, first, last, dst);
}

}  // namespace qv::QV_LEVEL
