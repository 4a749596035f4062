// The errors of resizing, ours and the peers', against double precision.
#ifndef QV_BENCH_RESIZEACCURACY_H
#define QV_BENCH_RESIZEACCURACY_H

namespace bench {

// Prints a table in Markdown.
void PrintResizeAccuracy();

}  // namespace bench

#endif
