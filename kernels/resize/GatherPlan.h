// Picking the bytes of a row by shuffles: a resize reads the same positions in every row, so the
// shuffle indices of each vector of the output are computed once and a row then costs a few loads
// and shuffles a vector instead of a load a byte.
//
// Where a level permutes whole vectors, all bytes of a vector come from loads at one position;
// where it shuffles within 16-byte lanes, each lane has a position of its own. Up to four loads in
// a row make up a lane, which serves reductions down to about a quarter.
#ifndef QV_KERNELS_RESIZE_GATHERPLAN_H
#define QV_KERNELS_RESIZE_GATHERPLAN_H

#include <stddef.h>

#include "kernels/resize/ResizeRows.h"

namespace qv {

constexpr int kMaxLoads = 4;

// The vectors of a level: shuffles reach the laneBytes (16, or 64 with a permute) of their lane. A
// level without masks stores a row's last vector over the one before it.
struct GatherShape {
  int vectorBytes, laneBytes;
  bool hasPermute, hasMasks;
};

struct ByteGather {
  int loads;                   // of each lane: 1, 2 or 4, without a permute also 3; 0 for no plan
  bool isPadded;               // rows are shorter than the loads: each is copied to them first
  ptrdiff_t readable;          // bytes of a row
  const int* at;               // where the loads of each lane begin
  const unsigned char* index;  // for each vector one index vector a load, or one with a permute
};

// Of linear rows: the two bytes of each value, side by side.
struct LinearGather {
  ByteGather pairs;
  ptrdiff_t vectors;                  // of pairs
  ptrdiff_t bare;                     // of these, the first that are the row's bytes as they are
  const unsigned short* twiceWeight;  // of each value's second byte, below 2^15
};

// Plan into `work`, of the size that RowsWorkBytes says. No loads if shuffles do not serve: the
// bytes of a lane lie too far apart, or there are too few or too many of them.
ByteGather PlanNearestGather(const NearestTables& t, const GatherShape& shape, void* work);
LinearGather PlanLinearGather(const LinearTables& t, const GatherShape& shape, void* work);

}  // namespace qv

#endif
