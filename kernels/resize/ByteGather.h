// Vectors of the bytes that a gather has planned.
#ifndef QV_KERNELS_RESIZE_BYTEGATHER_H
#define QV_KERNELS_RESIZE_BYTEGATHER_H

#include "kernels/level/Ahead.h"
#include "kernels/level/Level.h"
#include "kernels/resize/GatherPlan.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

constexpr int kLaneBytes = kHasBytePermute ? kVecBytes : 16;
constexpr int kLanes = kVecBytes / kLaneBytes;
constexpr int kPaddedRow = kMaxLoads * kLaneBytes;
constexpr GatherShape kGatherShape = {kVecBytes, kLaneBytes, kHasBytePermute, kHasMaskedBytes};

// From vector `first` on.
QV_INLINE ByteGather PartOf(ByteGather g, ptrdiff_t first) {
  g.at += first * kLanes;
  g.index += first * kVecBytes * (kHasBytePermute ? 1 : g.loads);
  return g;
}

// A vector whose lanes are loaded from row + at[0] + ahead, row + at[1] + ahead, ...
QV_INLINE Vec LoadLanes(const Byte* row, const int* at, int ahead) {
  return LoadLanes([=](int i) { return row + at[i] + ahead; });
}

// Vector `v` of the output.
template <int kLoads>
QV_INLINE Vec GatherBytes(const ByteGather& g, const Byte* row, ptrdiff_t v) {
  const int* const at = g.at + v * kLanes;
  if constexpr (kHasBytePermute) {
    const Vec index = Load(g.index + v * kVecBytes);
    const Byte* const p = row + at[0];
    if constexpr (kLoads == 1) return PermuteBytes(Load(p), index);
    const Vec low = PermuteBytes2(Load(p), index, Load(p + kVecBytes));
    if constexpr (kLoads <= 2) return low;
    return Select(TopBits(index),
                  PermuteBytes2(Load(p + 2 * kVecBytes), index, Load(p + 3 * kVecBytes)), low);
  } else {
    const Byte* const index = g.index + v * kLoads * kVecBytes;
    Vec all = ShuffleBytes(LoadLanes(row, at, 0), Load(index));
    for (int l = 1; l < kLoads; ++l)
      all = Or(all, ShuffleBytes(LoadLanes(row, at, l * kLaneBytes), Load(index + l * kVecBytes)));
    return all;
  }
}

// Asks for the bytes of vector `v` of `row`, which is read next. Images that do not fit the second
// cache level are resized a tenth faster so.
template <int kLoads>
QV_INLINE void FetchAhead(const ByteGather& g, const Byte* row, ptrdiff_t v) {
  Prefetch<kLoads * kLaneBytes>(row + g.at[v * kLanes]);
}

// Calls body.template operator()<n>() for the number of loads n.
template <class Body>
QV_INLINE void WithLoads(int loads, Body body) {
  switch (loads) {
    case 1: body.template operator()<1>(); break;
    case 2: body.template operator()<2>(); break;
    case 3: body.template operator()<3>(); break;
    default: body.template operator()<4>();
  }
}

}  // namespace qv::QV_LEVEL

#endif

#endif
