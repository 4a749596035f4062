// Transposition, the heart of a quarter turn.
//
// Works in tiles whose source and destination lines stay in the first-level cache together; within
// a tile vector rows transpose blocks in registers. Large images are turned tile by tile into lines
// that go past the caches.
#include "kernels/geometry/Geometry.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// Whole cache lines of source and destination; wider tiles measured no faster, lower ones slower.
constexpr int kTileRows = 64;
constexpr int kTileColumns = 64;

template <int kChannels>
void TransposePlain(const Byte* src, ptrdiff_t srcStep, Byte* dst, ptrdiff_t dstStep, int width,
                    int height) {
  for (int r = 0; r < height; ++r)
    for (int c = 0; c < width; ++c)
      for (int i = 0; i < kChannels; ++i)
        dst[r * dstStep + c * kChannels + i] = src[c * srcStep + r * kChannels + i];
}

#if QV_HAS_VECTORS

// 16 columns of kVecBytes source rows become 16 rows of kVecBytes. Lane l of vector i starts out as
// row 16 l + i; each of four perfect shuffles moves one bit of the row number into the column
// number.
QV_INLINE void TransposeBytes(const Byte* src, ptrdiff_t srcStep, Byte* dst, ptrdiff_t dstStep) {
  Vec v[16], u[16];
  for (int i = 0; i < 16; ++i) v[i] = LoadLanes(src + i * srcStep, 16 * srcStep);
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 8; ++i) {
      u[2 * i] = InterleaveLow8(v[i], v[i + 8]);
      u[2 * i + 1] = InterleaveHigh8(v[i], v[i + 8]);
    }
    for (int i = 0; i < 8; ++i) {
      v[2 * i] = InterleaveLow8(u[i], u[i + 8]);
      v[2 * i + 1] = InterleaveHigh8(u[i], u[i + 8]);
    }
  }
  for (int i = 0; i < 16; ++i) Store(dst + i * dstStep, v[i]);
}

// A row of a block of three-byte pixels is 12 bytes, but 16 are loaded: its first ones, or its last
// ones if the 4 past it do not belong to the image's row.
QV_INLINE Vec SpreadTriples(bool isLast) {
  static constexpr auto kFirst =
      MakeByteTable([](int i) { return i % 4 < 3 ? i % 16 / 4 * 3 + i % 4 : 0x80; });
  static constexpr auto kLast =
      MakeByteTable([](int i) { return i % 4 < 3 ? i % 16 / 4 * 3 + i % 4 + 4 : 0x80; });
  return Load(isLast ? &kLast : &kFirst);
}

// 4 columns of kVecBytes / 4 source rows of three-byte pixels become 4 rows of four-byte groups.
// Lane l of vector i starts out as row 4 l + i; then 4 x 4 groups are transposed.
QV_INLINE void TransposeTriples(const Byte* src, ptrdiff_t srcStep, Vec spread, Vec out[4]) {
  Vec v[4];
  for (int i = 0; i < 4; ++i)
    v[i] = ShuffleBytes(LoadLanes(src + i * srcStep, 4 * srcStep), spread);
  const Vec low01 = InterleaveLow32(v[0], v[1]), high01 = InterleaveHigh32(v[0], v[1]);
  const Vec low23 = InterleaveLow32(v[2], v[3]), high23 = InterleaveHigh32(v[2], v[3]);
  out[0] = InterleaveLow64(low01, low23);
  out[1] = InterleaveHigh64(low01, low23);
  out[2] = InterleaveLow64(high01, high23);
  out[3] = InterleaveHigh64(high01, high23);
}

// A block of 4 rows and kVecBytes / 4 columns of the destination.
QV_INLINE void TransposeTriplesBlock(const Byte* src, ptrdiff_t srcStep, Byte* dst,
                                     ptrdiff_t dstStep, bool isLast) {
  Vec v[4];
  TransposeTriples(src - (isLast ? 4 : 0), srcStep, SpreadTriples(isLast), v);
  for (int i = 0; i < 4; ++i) StoreTriples(dst + i * dstStep, v[i]);
}

// The same for 16 rows and 64 columns, where bytes can be permuted across vectors: the 48 bytes of
// a source row are loaded at once.
//
// Of 16 source rows, row s is loaded as vector s, and its pixel r is element r. Four rounds each
// exchange a bit of the vector's number for one of the element's, the first one while it spreads
// the pixels to 4 bytes:
//   s3 s2 s1 s0, r3 r2 r1 r0 -> s3 r3 s1 s0, s2 r2 r1 r0 -> s3 r3 s1 r1, s2 r2 r0 s0
//   -> s3 r3 r0 r1, s2 r2 s1 s0 -> r2 r3 r0 r1, s3 s2 s1 s0
QV_INLINE void TransposeTriplesWide(const Byte* src, ptrdiff_t srcStep, Byte* dst,
                                    ptrdiff_t dstStep) {
  static constexpr auto kSpread = [](int half) {
    return MakeByteTable([=](int i) {
      return i % 4 < 3 ? i / 32 * 64 + half * 24 + i % 32 / 4 * 3 + i % 4 : 0;
    });
  };
  static constexpr ByteTable kSpreads[2] = {kSpread(0), kSpread(1)};
  const Vec spread[2] = {Load(&kSpreads[0]), Load(&kSpreads[1])};
#pragma GCC unroll 1
  for (int q = 0; q < 4; ++q, src += 16 * srcStep, dst += 48) {
    Vec v[16], u[16];
    for (int i = 0; i < 16; ++i) v[i] = LoadPart(src + i * srcStep, FirstOf64(48, 0));
    for (int i = 0; i < 16; ++i)
      u[i] = PermuteBytes2(v[i & ~4], spread[i / 4 % 2], v[i | 4]);
    for (int i = 0; i < 16; i += 2) {
      v[i] = InterleaveLow32(u[i], u[i + 1]);
      v[i + 1] = InterleaveHigh32(u[i], u[i + 1]);
    }
    for (int i = 0; i < 16; ++i)
      u[i] = i & 2 ? InterleaveHigh64(v[i & ~2], v[i]) : InterleaveLow64(v[i], v[i | 2]);
    for (int i = 0; i < 8; ++i) {
      const int r = (i & 4) * 2 + (i & 1) * 2 + (i & 2) / 2;
      v[r] = JoinEvenLanes(u[i], u[i + 8]);
      v[r + 4] = JoinOddLanes(u[i], u[i + 8]);
    }
    // Whole vectors cost less than masked ones; what is too much the next columns overwrite.
    for (int r = 0; r < 16; ++r)
      if (q < 3)
        Store(dst + r * dstStep, PackTriples(v[r]));
      else
        StoreTriples(dst + r * dstStep, v[r]);
  }
}

// Calls block(r, c) for blocks of kRows x kColumns that cover the image, tile by tile. Blocks at
// the far edges overlap their neighbours. False if the image is smaller than a block.
template <int kRows, int kColumns, class Block>
QV_INLINE bool CoverWithTiles(IppiSize size, Block block) {
  const int width = size.width, height = size.height;
  if (width < kColumns || height < kRows) return false;
  for (int r0 = 0; r0 < height; r0 += kTileRows)
    for (int c0 = 0; c0 < width; c0 += kTileColumns)
      for (int r = r0; r < r0 + kTileRows && r < height; r += kRows)
        for (int c = c0; c < c0 + kTileColumns && c < width; c += kColumns)
          block(r + kRows <= height ? r : height - kRows,
                c + kColumns <= width ? c : width - kColumns);
  return true;
}

// False if the image is too small. Out of line, to leave the loops their registers.
template <int kChannels>
__attribute__((noinline)) bool TransposeTiles(const Byte* src, int srcStep, Byte* dst, int dstStep,
                                              IppiSize size) {
  const auto from = [=](int r, int c) { return RowAt(src, srcStep, c) + ptrdiff_t{kChannels} * r; };
  const auto to = [=](int r, int c) { return RowAt(dst, dstStep, r) + ptrdiff_t{kChannels} * c; };
  if constexpr (kChannels == 1)
    return CoverWithTiles<16, kVecBytes>(size, [=](int r, int c) {
      TransposeBytes(from(r, c), srcStep, to(r, c), dstStep);
    });
  if constexpr (kChannels == 3 && kHasBytePermute && kHasMaskedBytes)
    if (CoverWithTiles<16, kVecBytes>(size, [=](int r, int c) {
          TransposeTriplesWide(from(r, c), srcStep, to(r, c), dstStep);
        }))
      return true;
  // A row of 6 pixels holds the 16 bytes of a load at either of its ends.
  const int height = size.height;
  return height >= 6 && CoverWithTiles<4, kVecBytes / 4>(size, [=](int r, int c) {
           TransposeTriplesBlock(from(r, c), srcStep, to(r, c), dstStep, r + 6 > height);
         });
}

// Past the caches: whole lines are written, and what does not fill one waits for the next columns.
// These are asked for ahead, as no processor foresees them. False if the image is too small.
template <int kChannels>
bool StreamTiles(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  constexpr int kLine = 64, kColumns = kTileColumns, kBytes = kColumns * kChannels;
  if (size.width < kColumns || size.height < 16) return false;
  alignas(kLine) Byte lines[kTileRows][kLine + kBytes];
  const auto tile = [=](int r, int c, Byte* to, int step, int rows) {
    TransposeTiles<kChannels>(RowAt(src, srcStep, c) + ptrdiff_t{r} * kChannels, srcStep, to, step,
                              {kColumns, rows});
  };
  // Strips of about the same height, and so none that is too low.
  int strips = (size.height + kTileRows - 1) / kTileRows;
  for (int r = 0, rows; r < size.height; r += rows) {
    rows = (size.height - r + strips - 1) / strips;
    --strips;
    int c = 0;
    for (; c + kColumns <= size.width; c += kColumns) {
      for (int i = c + kColumns; i < c + 2 * kColumns && i < size.width; ++i)
        for (int k = 0; k < rows * kChannels; k += kLine)
          __builtin_prefetch(RowAt(src, srcStep, i) + ptrdiff_t{r} * kChannels + k);
      tile(r, c, lines[0] + kLine, sizeof(lines[0]), rows);
      for (int i = 0; i < rows; ++i) {
        Byte* const row = lines[i];
        Byte* const to = RowAt(dst, dstStep, r + i) + ptrdiff_t{c} * kChannels;
        const ptrdiff_t excess = reinterpret_cast<uintptr_t>(to) % kLine;
        if (c == 0) memcpy(to, row + kLine, kLine);
        for (ptrdiff_t k = c == 0 ? kLine : 0; k < kBytes; k += kVecBytes)
          StreamStore(to - excess + k, Load(row + kLine - excess + k));
        memcpy(row, row + kBytes, kLine);
      }
    }
    for (int i = 0; i < rows; ++i)
      memcpy(RowAt(dst, dstStep, r + i) + ptrdiff_t{c} * kChannels - kLine, lines[i], kLine);
    if (c < size.width)
      tile(r, size.width - kColumns,
           RowAt(dst, dstStep, r) + ptrdiff_t{size.width - kColumns} * kChannels, dstStep, rows);
  }
  StreamFence();
  return true;
}

#endif

template <int kChannels>
QV_INLINE void Transpose(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
#if QV_HAS_VECTORS
  if constexpr (kChannels == 1 || kHasByteShuffle) {
    if (PassesCaches(size.width, size.height, kChannels) &&
        StreamTiles<kChannels>(src, srcStep, dst, dstStep, size))
      return;
    if (TransposeTiles<kChannels>(src, srcStep, dst, dstStep, size)) return;
  }
#endif
  TransposePlain<kChannels>(src, srcStep, dst, dstStep, size.width, size.height);
}

}  // namespace

void Transpose_8u_C1(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  Transpose<1>(src, srcStep, dst, dstStep, size);
}

void Transpose_8u_C3(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  Transpose<3>(src, srcStep, dst, dstStep, size);
}

}  // namespace qv::QV_LEVEL
