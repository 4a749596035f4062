// Picking the bytes of a row by shuffles: a resize reads the same positions in every row, so the
// shuffle indices of each vector of the output are computed once and a row then costs a few loads
// and shuffles a vector instead of a load a byte.
//
// Where a level permutes whole vectors, all bytes of a vector come from loads at one position;
// where it shuffles within 16-byte lanes, each lane has a position of its own. Up to four loads in
// a row make up a lane, which serves reductions down to about a quarter.
#ifndef QV_KERNELS_RESIZE_BYTEGATHER_H
#define QV_KERNELS_RESIZE_BYTEGATHER_H

#include "kernels/level/Level.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

constexpr int kLaneBytes = kHasBytePermute ? 64 : 16;
constexpr int kLanes = kVecBytes / kLaneBytes;
constexpr int kMaxLoads = 4;
constexpr int kPaddedRow = kMaxLoads * kLaneBytes;

struct ByteGather {
  int loads;          // of each lane: 1, 2 or 4, without a permute also 3
  bool padded;        // rows are shorter than the loads: each is copied to kPaddedRow bytes first
  const int* at;      // where the loads of each lane begin
  const Byte* index;  // for each vector one index vector a load, or only one with a permute
};

// From vector `first` on.
QV_INLINE ByteGather PartOf(const ByteGather& g, ptrdiff_t first) {
  return {g.loads, g.padded, g.at + first * kLanes,
          g.index + first * kVecBytes * (kHasBytePermute ? 1 : g.loads)};
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
  const Byte* const from = row + g.at[v * kLanes];
  for (int l = 0; l < kLoads * kLaneBytes; l += 64) __builtin_prefetch(from + l);
}

// Plans the gather of `count` output bytes, of which byte k is byte offset[k] of a row of
// `readable` bytes. `offset` has room for count rounded up to whole vectors. If `overlapLast`, the
// last vector is the one that ends with the last byte (count is at least kVecBytes). `at` and
// `index` have room for a vector each 16 bytes of output and kMaxLoads bytes each byte. False if a
// lane's bytes lie too far apart.
static inline bool PlanGather(int* offset, ptrdiff_t count, bool overlapLast, ptrdiff_t readable,
                              int* at, Byte* index, ByteGather* g) {
  const ptrdiff_t vectors = (count + kVecBytes - 1) / kVecBytes;
  for (ptrdiff_t k = count; k < vectors * kVecBytes; ++k) offset[k] = offset[count - 1];
  const auto lane = [&](ptrdiff_t n) {
    const ptrdiff_t v = n / kLanes;
    const ptrdiff_t first = overlapLast && v == vectors - 1 ? count - kVecBytes : v * kVecBytes;
    return offset + first + n % kLanes * kLaneBytes;
  };
  int widest = 0;
  for (ptrdiff_t n = 0; n < vectors * kLanes; ++n) {
    const int* const o = lane(n);
    int low = o[0], high = o[0];
    for (int k = 1; k < kLaneBytes; ++k) {
      low = o[k] < low ? o[k] : low;
      high = o[k] > high ? o[k] : high;
    }
    at[n] = low;
    if (high - low > widest) widest = high - low;
  }
  int loads = widest / kLaneBytes + 1;
  if (loads > kMaxLoads) return false;
  if (kHasBytePermute && loads == 3) loads = 4;
  *g = {loads, readable < loads * kLaneBytes, at, index};
  // The last loads may not pass the end of the row: they begin earlier.
  const int end = g->padded ? 0 : static_cast<int>(readable) - loads * kLaneBytes;
  for (ptrdiff_t n = 0; n < vectors * kLanes; ++n) {
    const int* const o = lane(n);
    const int base = at[n] = at[n] < end ? at[n] : end;
    if constexpr (kHasBytePermute) {
      for (int k = 0; k < kLaneBytes; ++k)
        index[n * kLaneBytes + k] = static_cast<Byte>(o[k] - base);
    } else {
      // 0x70 more than the position within a load, saturated: the top bit, which clears the byte,
      // is set for all positions but 0 to 15, whose low four bits stay what they are.
      Byte* const vector = index + (n / kLanes * loads * kLanes + n % kLanes) * kLaneBytes;
      for (int l = 0; l < loads; ++l)
        for (int k = 0; k < kLaneBytes; ++k) {
          const int position = (o[k] - base - l * kLaneBytes) & 255;
          vector[l * kVecBytes + k] = static_cast<Byte>(position < 16 ? position : 0x80);
        }
    }
  }
  return true;
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
