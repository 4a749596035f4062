// Vertical three-tap filter against combing.
#include "kernels/deinterlace/Deinterlace.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// The weights add up to at most 256, so the sum is at most 65280 and its high byte needs no clamp.
void FilterRowPlain(const Byte* above, const Byte* centre, const Byte* below, Byte* dst,
                    ptrdiff_t bytes, unsigned centreWeight, unsigned sideWeight) {
  for (ptrdiff_t k = 0; k < bytes; ++k)
    dst[k] = static_cast<Byte>(
        (static_cast<unsigned>(above[k] + below[k]) * sideWeight + centre[k] * centreWeight) >> 8);
}

#if QV_HAS_VECTORS

// Weighted sums of the bytes of two vectors, in 16-bit lanes; the weights' signed products must fit
// them.
struct SideSums {
  Vec low, high;
};

#if defined(__SSSE3__)

constexpr bool kHasWeightedByteSums = true;
QV_INLINE Vec MulAddBytes(Vec bytes, Vec weights) {
#if defined(__AVX512BW__)
  return _mm512_maddubs_epi16(bytes, weights);
#elif defined(__AVX2__)
  return _mm256_maddubs_epi16(bytes, weights);
#else
  return _mm_maddubs_epi16(bytes, weights);
#endif
}
QV_INLINE SideSums WeightedSums(Vec above, Vec below, Vec weights) {
  return {MulAddBytes(InterleaveLow8(above, below), weights),
          MulAddBytes(InterleaveHigh8(above, below), weights)};
}

#else

constexpr bool kHasWeightedByteSums = false;
QV_INLINE SideSums WeightedSums(Vec above, Vec below, Vec) {
  return {Add16(InterleaveLow8(above, Zero()), InterleaveLow8(below, Zero())),
          Add16(InterleaveHigh8(above, Zero()), InterleaveHigh8(below, Zero()))};
}

#endif

// kLight: the side weight is at most 64, so that 510 times it fits a signed 16-bit lane and the sum of
// the neighbours is weighted as it is made.
template <bool kLight>
void FilterRow(const Byte* above, const Byte* centre, const Byte* below, Byte* dst,
               ptrdiff_t bytes, unsigned centreWeight, unsigned sideWeight) {
  const Vec centreFactor = Splat16(static_cast<int>(centreWeight));
  const Vec sideFactor = Splat16(static_cast<int>(sideWeight));
  const Vec byteFactor = Splat8(kLight ? static_cast<int>(sideWeight) : 1);
  const auto filter = [&](ptrdiff_t i) {
    SideSums sides = WeightedSums(Load(above + i), Load(below + i), byteFactor);
    if constexpr (!kLight)
      sides = {MulLow16(sides.low, sideFactor), MulLow16(sides.high, sideFactor)};
    const Vec x = Load(centre + i);
    const Vec low = Add16(MulLow16(InterleaveLow8(x, Zero()), centreFactor), sides.low);
    const Vec high = Add16(MulLow16(InterleaveHigh8(x, Zero()), centreFactor), sides.high);
    Store(dst + i, PackUnsigned16(ShiftRight16<8>(low), ShiftRight16<8>(high)));
  };
  if (!CoverWithBlocks<kVecBytes>(bytes, filter, BytesToAlign(dst)))
    FilterRowPlain(above, centre, below, dst, bytes, centreWeight, sideWeight);
}

using RowFunction = decltype(FilterRowPlain);

constexpr RowFunction* RowOf(unsigned sideWeight) {
  return kHasWeightedByteSums && sideWeight <= 64 ? FilterRow<kHasWeightedByteSums>
                                                  : FilterRow<false>;
}

#else

constexpr auto RowOf(unsigned) { return FilterRowPlain; }

#endif

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
  const auto filterRow = RowOf(sideWeight);
  const RowPlan plan = PlanOf(mode);
  const auto copy = [&](int y) {
    memcpy(RowAt(dst, dstStep, y), RowAt(src, srcStep, y), static_cast<size_t>(widthBytes));
  };
  if (plan.copiesFirst) copy(0);
  for (int y = plan.firstFiltered; y <= height - 2; ++y)
    filterRow(RowAt(src, srcStep, y - 1), RowAt(src, srcStep, y), RowAt(src, srcStep, y + 1),
              RowAt(dst, dstStep, y), widthBytes, weight, sideWeight);
  if (plan.copiesLast) copy(height - 1);
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
