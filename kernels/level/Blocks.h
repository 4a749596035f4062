// How vector rows walk a row: full blocks, then one last block that overlaps the one before, so that
// nothing past the row's end is touched and no scalar tail runs on rows of at least one block.
#ifndef QV_KERNELS_LEVEL_BLOCKS_H
#define QV_KERNELS_LEVEL_BLOCKS_H

namespace qv::QV_LEVEL {

// Calls block(first) for blocks of kBlock elements that cover 0 .. count - 1; the last one may
// overlap its predecessor. False, with nothing called, if the row is shorter than a block. Only for
// rows whose blocks may be done twice (the source is not the destination).
template <int kBlock, class Block>
QV_INLINE bool CoverWithBlocks(ptrdiff_t count, Block block) {
  if (count < kBlock) return false;
  ptrdiff_t i = 0;
  for (; i <= count - kBlock; i += kBlock) block(i);
  if (i < count) block(count - kBlock);
  return true;
}

}  // namespace qv::QV_LEVEL

#endif
