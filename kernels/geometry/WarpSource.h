// What the rows of a warp are handed: the image to sample and the positions along a piece of a row.
//
// Positions are numbers with kWarpBits fractional bits, counted from the sampled image's first
// pixel centre. Along a segment they follow a cubic in t = column - centre, evaluated in single
// precision with every operation rounded by itself,
//
//   position = base + int(((c3 t + c2) t + c1) t + c0)        truncated; the sum is above 0
//
// and so are the same at every level, whatever its vectors, and in every band. Only the planning of
// the segments works in double precision, and that is compiled once.
#ifndef QV_KERNELS_GEOMETRY_WARPSOURCE_H
#define QV_KERNELS_GEOMETRY_WARPSOURCE_H

#include "dispatch/Hidden.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

constexpr int kWarpBits = 14;

// Columns that a segment may cover at most. Segments cover aligned runs of a power of two.
constexpr int kWarpBlock = 128;

// Columns that are sampled at once at most.
constexpr int kWarpColumns = 2 * kWarpBlock;

struct WarpSegment {
  int first;          // destination column, a multiple of `count`
  int count;          // a power of two up to kWarpBlock; t runs from -count / 2
  long long base[2];  // x, y
  float coeff[2][4];  // c0 .. c3 of x and of y
  bool isLine;        // c2 and c3 are 0
  // Every column's position, wanted or not, has a pixel before it and three after it, and rows
  // likewise: nothing has to be clamped. Columns have half a pixel more after them: 16 bytes, five
  // pixels and a third, can then be fetched from the first tap without leaving the row.
  bool isInside;
};

struct WarpSource {
  const unsigned char* first;  // first pixel that may be sampled
  int step;
  int width, height;           // pixels that may be sampled; taps outside take the nearest of these
  IppiInterpolation method;    // nearest, linear or cubic
};

// Keys' cubic (KeysCubic.h) at phase i / kCubicPhases: weights of taps -1, 0, 1, 2 times
// 2^kWarpBits, each four adding up to exactly that. Stored as taps -1, 1, 0, 2: the even and the
// odd bytes of four neighbours, which vector rows take apart with a mask and a shift.
constexpr int kCubicBits = 11;
constexpr int kCubicPhases = 1 << kCubicBits;
struct CubicTable {
  alignas(8) short tap[kCubicPhases][4];
};
extern QV_HIDDEN const CubicTable kCubicTable;

}  // namespace qv

#endif
