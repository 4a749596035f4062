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

// The same for a row that is changed in place: p[k] = function(p[k]) for a Vec of bytes at a time.
// The last vector is loaded before its bytes can have been changed.
template <class Function>
QV_INLINE bool ApplyInPlace(const Byte* src, Byte* dst, ptrdiff_t count, Function function) {
  if (count < kVecBytes) return false;
  const Vec last = Load(src + count - kVecBytes);
  for (ptrdiff_t i = 0; i <= count - kVecBytes; i += kVecBytes)
    Store(dst + i, function(Load(src + i)));
  Store(dst + count - kVecBytes, function(last));
  return true;
}

// A table of bytes that a vector of indices is loaded from, computed by the compiler.
struct ByteTable {
  Byte b[kVecBytes];
};

template <class Function>
constexpr ByteTable MakeByteTable(Function function) {
  ByteTable table{};
  for (int i = 0; i < kVecBytes; ++i) table.b[i] = static_cast<Byte>(function(i));
  return table;
}

}  // namespace qv::QV_LEVEL

#endif
