// The errors of luma and chroma to pixels and back, ours and the peer's, against double precision.
#ifndef QV_BENCH_YUVACCURACY_H
#define QV_BENCH_YUVACCURACY_H

namespace bench {

// Prints a table in Markdown.
void PrintYuvAccuracy();

}  // namespace bench

#endif
