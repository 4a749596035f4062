// How vector rows walk a row that may be its own source.
#ifndef QV_KERNELS_COMPOSITE_INPLACE_H
#define QV_KERNELS_COMPOSITE_INPLACE_H

namespace qv::QV_LEVEL {

// Covers the elements 0 .. count - 1 with blocks: compute(first) loads the inputs of kBlock
// elements and returns their result, put(first, result, store) stores it by store(p, v), past the
// caches if `stream` in all but the first and the last block (see CoverWithBlocks). The second
// block begins at `second` (1 to kBlock), the last one may overlap its predecessor; the first and
// the last are computed before anything is stored, so that overlapping blocks see inputs, not
// results. False, with nothing done, if the row is shorter than a block.
template <int kBlock, class Compute, class Put>
QV_INLINE bool CoverInPlace(ptrdiff_t count, bool stream, ptrdiff_t second, Compute compute,
                            Put put) {
  if (count < kBlock) return false;
  const auto first = compute(0), last = compute(count - kBlock);
  ptrdiff_t i = second;
  if (stream)
    for (; i <= count - kBlock; i += kBlock) put(i, compute(i), StorePastCaches());
  else
    for (; i <= count - kBlock; i += kBlock) put(i, compute(i), StoreInCaches());
  put(0, first, StoreInCaches());
  put(count - kBlock, last, StoreInCaches());
  return true;
}

}  // namespace qv::QV_LEVEL

#endif
