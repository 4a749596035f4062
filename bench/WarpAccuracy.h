// The errors of warps and rotations, ours and the peer's, against double precision.
#ifndef QV_BENCH_WARPACCURACY_H
#define QV_BENCH_WARPACCURACY_H

namespace bench {

// Prints a table in Markdown.
void PrintWarpAccuracy();

}  // namespace bench

#endif
