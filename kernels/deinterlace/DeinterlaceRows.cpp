// Vertical three-tap filter against combing.
#include "kernels/deinterlace/Deinterlace.h"
#include "kernels/level/Ahead.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

using RowFunction = void(const Byte* src, int srcStep, Byte* dst, int dstStep, ptrdiff_t bytes,
                         int centreWeight, int sideWeight, bool stream);

// The weights add up to at most 256, so the sum is at most 65280 and its high byte needs no clamp.
void FilterRowPlain(const Byte* above, const Byte* centre, const Byte* below, Byte* dst,
                    ptrdiff_t bytes, unsigned centreWeight, unsigned sideWeight) {
  for (ptrdiff_t k = 0; k < bytes; ++k)
    dst[k] = static_cast<Byte>(
        (static_cast<unsigned>(above[k] + below[k]) * sideWeight + centre[k] * centreWeight) >> 8);
}

// kRows rows from `dst` on; `src` is the row above the first.
template <int kRows>
void FilterRowsPlain(const Byte* src, int srcStep, Byte* dst, int dstStep, ptrdiff_t bytes,
                     int centreWeight, int sideWeight, bool = false) {
  for (int r = 0; r < kRows; ++r)
    FilterRowPlain(RowAt(src, srcStep, r), RowAt(src, srcStep, r + 1), RowAt(src, srcStep, r + 2),
                   RowAt(dst, dstStep, r), bytes, static_cast<unsigned>(centreWeight),
                   static_cast<unsigned>(sideWeight));
}

// Whether no row of the destination reaches into another one.
constexpr bool AreApart(int dstStep, int widthBytes) {
  return dstStep >= widthBytes || dstStep <= -widthBytes;
}

#if QV_HAS_VECTORS

// What the bytes at even and at odd places contribute to the sums of their pixels, in 16-bit lanes.
struct Lanes {
  Vec even, odd;
};
QV_INLINE Lanes operator+(const Lanes& a, const Lanes& b) {
  return {Add16(a.even, b.even), Add16(a.odd, b.odd)};
}

// With MulAddBytes, a multiplication of pairs of bytes by a weight and 0 both takes every other
// byte and weighs it. It wants a weight from -128 to 127: the products then fit signed lanes, which
// their sums may leave.
constexpr bool kHasSignedWeights = kHasByteShuffle;
struct Weight {
  Vec even, odd;
  explicit Weight(int w)
      : even(Splat16(kHasSignedWeights ? w & 0xFF : w)),
        odd(Splat16(kHasSignedWeights ? (w & 0xFF) << 8 : w)) {}
};
QV_INLINE Lanes Weigh(Vec bytes, const Weight& w) {
  if constexpr (kHasSignedWeights) return {MulAddBytes(bytes, w.even), MulAddBytes(bytes, w.odd)};
  return {MulLow16(And(bytes, Splat16(0xFF)), w.even), MulLow16(ShiftRight16<8>(bytes), w.odd)};
}

QV_INLINE Vec HighBytes(const Lanes& sums) {
  const Vec even = ShiftRight16<8>(sums.even);
  if constexpr (kHasMaskedBytes) return Select(0xAAAAAAAAAAAAAAAAu, sums.odd, even);
  return Or(even, And(sums.odd, Splat16(0xFF00)));
}

// Where the frame passes the caches, the lines of the rows after these are asked for meanwhile: in
// three-byte pixels at 3840 x 2160, that takes 0.8 to 0.9 of the time on an AMD Zen 5. Below that
// size it takes longer.
template <int kRows, class Store>
QV_INLINE void FetchRowAfter(Store, const Byte* src, int srcStep, int row) {
  if constexpr (Store::kPastCaches) Prefetch<kVecBytes>(RowAt(src, srcStep, row + kRows));
}

// A row weighs in three sums and is loaded and weighed as a neighbour once. kHeavy: a centre weight
// of 128 to 256 is taken less 256, and the byte itself is added to the high byte of the sum.
template <int kRows, bool kHeavy>
void FilterRows(const Byte* src, int srcStep, Byte* dst, int dstStep, ptrdiff_t bytes,
                int centreWeight, int sideWeight, bool stream) {
  const Weight side(sideWeight), centre(kHeavy ? centreWeight - 256 : centreWeight);
  const auto filter = [&](ptrdiff_t i, auto store) {
    Vec x = Load(RowAt(src, srcStep, 1) + i);
    Lanes above = Weigh(Load(src + i), side), own = Weigh(x, side);
    for (int r = 0; r < kRows; ++r) {
      const Vec next = Load(RowAt(src, srcStep, r + 2) + i);
      FetchRowAfter<kRows>(store, src + i, srcStep, r + 2);
      const Lanes below = Weigh(next, side);
      Vec result = HighBytes(above + below + Weigh(x, centre));
      if constexpr (kHeavy) result = Add8(result, x);
      store(RowAt(dst, dstStep, r) + i, result);
      above = own;
      own = below;
      x = next;
    }
  };
  if (!CoverWithBlocks<kVecBytes>(bytes, stream, filter, BytesToAlign(dst)))
    FilterRowsPlain<kRows>(src, srcStep, dst, dstStep, bytes, centreWeight, sideWeight);
}

// The weights 0 and 128: floor((above + below) / 2), and floor of the mean of that and the centre,
// which is the same as one truncation of the whole sum by 4. Averages round up, those of the
// complements down.
template <int kRows, bool kCentre>
void AverageRows(const Byte* src, int srcStep, Byte* dst, int dstStep, ptrdiff_t bytes,
                 int centreWeight, int sideWeight, bool stream) {
  const auto filter = [&](ptrdiff_t i, auto store) {
    Vec above = Complement(Load(src + i)), own = Complement(Load(RowAt(src, srcStep, 1) + i));
    for (int r = 0; r < kRows; ++r) {
      const Vec below = Complement(Load(RowAt(src, srcStep, r + 2) + i));
      FetchRowAfter<kRows>(store, src + i, srcStep, r + 2);
      Vec mean = AverageUp8(above, below);
      if constexpr (kCentre) mean = AverageUp8(mean, own);
      store(RowAt(dst, dstStep, r) + i, Complement(mean));
      above = own;
      own = below;
    }
  };
  if (!CoverWithBlocks<kVecBytes>(bytes, stream, filter, BytesToAlign(dst)))
    FilterRowsPlain<kRows>(src, srcStep, dst, dstStep, bytes, centreWeight, sideWeight);
}

template <int kRows>
constexpr RowFunction* RowsOf(int centreWeight) {
  if (centreWeight == 0) return AverageRows<kRows, false>;
  if (centreWeight == 128) return AverageRows<kRows, true>;
  return kHasSignedWeights && centreWeight > 128 ? FilterRows<kRows, kHasSignedWeights>
                                                 : FilterRows<kRows, false>;
}

// Four rows at a time only where all their stores can be aligned, and where a row does not reach
// into the next one: blocks of columns would leave the wrong one of the two on top.
constexpr bool InFours(int dstStep, int widthBytes) {
  return dstStep % kVecBytes == 0 && AreApart(dstStep, widthBytes);
}

#else

template <int kRows>
constexpr RowFunction* RowsOf(int) {
  return FilterRowsPlain<kRows>;
}

constexpr bool InFours(int, int) { return false; }

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
  const int weight = static_cast<int>(centreWeight < 256 ? centreWeight : 256);
  const int sideWeight = (256 - weight) >> 1;
  const RowPlan plan = PlanOf(mode);
  const auto copy = [&](int y) {
    memcpy(RowAt(dst, dstStep, y), RowAt(src, srcStep, y), static_cast<size_t>(widthBytes));
  };
  // What goes past the caches may arrive in any order, and rows that overlap have one.
  const bool stream =
      src != dst && AreApart(dstStep, widthBytes) && PassesCaches(widthBytes, height, 1);
  if (plan.copiesFirst) copy(0);
  const bool inFours = InFours(dstStep, widthBytes);
  for (int y = plan.firstFiltered; y <= height - 2;) {
    const bool four = inFours && y <= height - 5;
    (four ? RowsOf<4>(weight) : RowsOf<1>(weight))(RowAt(src, srcStep, y - 1), srcStep,
                                                   RowAt(dst, dstStep, y), dstStep, widthBytes,
                                                   weight, sideWeight, stream);
    y += four ? 4 : 1;
  }
  if (plan.copiesLast) copy(height - 1);
  if (stream) StreamFence();
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
