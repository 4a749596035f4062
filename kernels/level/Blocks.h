// How vector rows walk a row: full blocks, then one last block that overlaps the one before, so
// that nothing past the row's end is touched and no scalar tail runs on rows of at least one block.
#ifndef QV_KERNELS_LEVEL_BLOCKS_H
#define QV_KERNELS_LEVEL_BLOCKS_H

namespace qv::QV_LEVEL {

// Bytes, or three-byte pixels, from p to the next multiple of n: 1 to n of them, n a power of 2. A
// store that crosses a cache line costs several that do not, so that rows of some length begin with
// an unaligned block and go on aligned. 43 is the inverse of 3 modulo 128.
template <int n = kVecBytes>
QV_INLINE ptrdiff_t BytesToAlign(const Byte* p) {
  return n - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(p) % n);
}
template <int n = kVecBytes>
QV_INLINE ptrdiff_t PixelsToAlign3(const Byte* p) {
  return n - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(p) * 43 % n);
}

// The two ways to store a vector. kPastCaches says which it is, to blocks that fetch their sources
// ahead where these come from memory as well.
struct StoreInCaches {
  static constexpr bool kPastCaches = false;
  QV_INLINE void operator()(void* p, Vec v) const { Store(p, v); }
  QV_INLINE void LowHalf(void* p, Vec v) const { StoreLowHalf(p, v); }
};
struct StorePastCaches {
  static constexpr bool kPastCaches = true;
  QV_INLINE void operator()(void* p, Vec v) const { StreamStore(p, v); }
  QV_INLINE void LowHalf(void* p, Vec v) const { StreamStoreLowHalf(p, v); }
};

// Calls body(i) for i = from, from + kStep, ... as long as kStep are left before `end`, and returns
// the first i for which they are not. An iteration makes kUnroll calls. A loop of two or three
// cycles takes one more wherever a cache line of code begins a few bytes before its end (AMD Zen
// 5), and where it lies is the linker's choice: such loops are unrolled until that hardly counts.
// Not all: rows of two sources in slower caches have become a tenth slower by it.
template <int kStep, int kUnroll, class Body>
QV_INLINE ptrdiff_t ForSteps(ptrdiff_t from, ptrdiff_t end, Body body) {
  ptrdiff_t i = from;
  for (; i <= end - kUnroll * kStep; i += kUnroll * kStep)
    for (int n = 0; n < kUnroll; ++n) body(i + n * kStep);
  if constexpr (kUnroll > 1)
    for (; i <= end - kStep; i += kStep) body(i);
  return i;
}

// Calls block(first, store) for blocks of kBlock elements that cover 0 .. count - 1. The second one
// begins at `second` (1 to kBlock), and the last one may overlap its predecessor. False, with
// nothing called, if the row is shorter than a block. Only for rows whose blocks may be done twice
// (the source is not the destination).
//
// Blocks hand their vectors to store(p, v), all but the first and the last to `inner`. If that
// writes past the caches, vectors begin at multiples of kVecBytes, or of the 16 of a Vec128, from
// the second block on. Blocks are made as by ForSteps; past the caches one at a time, as memory is
// slower than any loop.
template <int kBlock, int kUnroll = 1, class Store, class Block>
QV_INLINE bool CoverWithBlocksBy(Store inner, ptrdiff_t count, Block block,
                                 ptrdiff_t second = kBlock) {
  if (count < kBlock) return false;
  block(0, StoreInCaches());
  const ptrdiff_t i = ForSteps<kBlock, kUnroll>(
      second, count, [&](ptrdiff_t k) QV_INLINE_LAMBDA { block(k, inner); });
  if (i < count) block(count - kBlock, StoreInCaches());
  return true;
}

// The same with block(first), which stores by itself.
template <int kBlock, int kUnroll = 1, class Block>
QV_INLINE bool CoverWithBlocks(ptrdiff_t count, Block block, ptrdiff_t second = kBlock) {
  const auto plain = [&](ptrdiff_t first, StoreInCaches) QV_INLINE_LAMBDA { block(first); };
  return CoverWithBlocksBy<kBlock, kUnroll>(StoreInCaches(), count, plain, second);
}

// Past the caches if `stream`.
template <int kBlock, int kUnroll = 1, class Block>
QV_INLINE bool CoverWithBlocks(ptrdiff_t count, bool stream, Block block,
                               ptrdiff_t second = kBlock) {
  return stream ? CoverWithBlocksBy<kBlock>(StorePastCaches(), count, block, second)
                : CoverWithBlocksBy<kBlock, kUnroll>(StoreInCaches(), count, block, second);
}

// The same for a row that may be its own source. compute(first) loads the inputs of kBlock elements
// and returns their result, put(first, result, store) stores it by store(p, v), past the caches if
// `stream` in all but the first and the last block. These two are computed before anything is
// stored, so that overlapping blocks see inputs, not results.
template <int kBlock, int kUnroll = 1, class Compute, class Put>
QV_INLINE bool CoverInPlace(ptrdiff_t count, bool stream, ptrdiff_t second, Compute compute,
                            Put put) {
  if (count < kBlock) return false;
  const auto first = compute(0), last = compute(count - kBlock);
  const auto block = [&](auto store) QV_INLINE_LAMBDA {
    return [=](ptrdiff_t i) QV_INLINE_LAMBDA { put(i, compute(i), store); };
  };
  if (stream)
    ForSteps<kBlock, 1>(second, count, block(StorePastCaches()));
  else
    ForSteps<kBlock, kUnroll>(second, count, block(StoreInCaches()));
  put(0, first, StoreInCaches());
  put(count - kBlock, last, StoreInCaches());
  return true;
}

}  // namespace qv::QV_LEVEL

#endif
