// Vertical three-tap filter against combing.
#include "kernels/deinterlace/Deinterlace.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// The weights add up to at most 256, so the sum is at most 65280 and its high byte needs no clamp.
void FilterRow(const Byte* above, const Byte* centre, const Byte* below, Byte* dst,
               ptrdiff_t bytes, unsigned centreWeight, unsigned sideWeight) {
  for (ptrdiff_t k = 0; k < bytes; ++k)
    dst[k] = static_cast<Byte>(
        (static_cast<unsigned>(above[k] + below[k]) * sideWeight + centre[k] * centreWeight) >> 8);
}

// Which rows a mode writes: the first filtered row (the last one is always height - 2), and whether
// the first and the last row of the image are copied.
struct RowPlan {
  int firstFiltered;
  bool copiesFirst, copiesLast;
};

RowPlan PlanOf(unsigned mode) {
  switch (mode) {
    case 1: return {1, true, false};
    case 4: return {-1, false, false};
    case 16: return {-1, false, true};
    default: return {1, true, true};
  }
}

}  // namespace

IppStatus Deinterlace_8u(const Byte* src, int srcStep, Byte* dst, int dstStep, int widthBytes,
                         int height, unsigned centreWeight, unsigned mode) {
  if (!src || !dst) return StatusNullPtrErr;
  if (height < 3 || widthBytes < 1) return StatusSizeErr;
  const unsigned weight = centreWeight < 256 ? centreWeight : 256;
  const unsigned sideWeight = (256 - weight) >> 1;
  const RowPlan plan = PlanOf(mode);
  const auto copy = [&](int y) {
    memcpy(RowAt(dst, dstStep, y), RowAt(src, srcStep, y), static_cast<size_t>(widthBytes));
  };
  if (plan.copiesFirst) copy(0);
  for (int y = plan.firstFiltered; y <= height - 2; ++y)
    FilterRow(RowAt(src, srcStep, y - 1), RowAt(src, srcStep, y), RowAt(src, srcStep, y + 1),
              RowAt(dst, dstStep, y), widthBytes, weight, sideWeight);
  if (plan.copiesLast) copy(height - 1);
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
