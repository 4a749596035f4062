// How vector rows walk a row that may be its own source.
#ifndef QV_KERNELS_COMPOSITE_INPLACE_H
#define QV_KERNELS_COMPOSITE_INPLACE_H

namespace qv::QV_LEVEL {

// Covers the elements 0 .. count - 1 with blocks: compute(first) loads the inputs of kBlock
// elements and returns their result, store(first, result) stores it. The second block begins at
// `second` (1 to kBlock), the last one may overlap its predecessor; the first and the last are
// computed before anything is stored, so that overlapping blocks see inputs, not results. False,
// with nothing done, if the row is shorter than a block.
template <int kBlock, class Compute, class Store>
QV_INLINE bool CoverInPlace(ptrdiff_t count, ptrdiff_t second, Compute compute, Store store) {
  if (count < kBlock) return false;
  const auto first = compute(0), last = compute(count - kBlock);
  for (ptrdiff_t i = second; i <= count - kBlock; i += kBlock) store(i, compute(i));
  store(0, first);
  store(count - kBlock, last);
  return true;
}

}  // namespace qv::QV_LEVEL

#endif
