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
constexpr int kLine = 64;

template <int kChannels>
void TransposePlain(const Byte* src, ptrdiff_t srcStep, Byte* dst, ptrdiff_t dstStep, int width,
                    int height) {
  for (int r = 0; r < height; ++r)
    for (int c = 0; c < width; ++c)
      for (int i = 0; i < kChannels; ++i)
        dst[r * dstStep + c * kChannels + i] = src[c * srcStep + r * kChannels + i];
}

#if QV_HAS_VECTORS

// Calls each(i, address of row i) for 16 rows. For wide vectors GCC keeps so many multiples of the
// step that most are on the stack, unless a row's address is made from the one before.
template <class Pointer, class Each>
QV_INLINE void ForRows(Pointer first, ptrdiff_t step, Each each) {
  Pointer p = first;
#pragma GCC unroll 16
  for (int i = 0; i < 16; ++i, p = Opaque(p + step)) each(i, kVecBytes > 16 ? p : first + i * step);
}

// 16 columns of kVecBytes source rows become 16 rows of kVecBytes. Lane l of vector i starts out as
// row 16 l + i; each of four perfect shuffles moves one bit of the row number into the column
// number.
QV_INLINE void TransposeBytes(const Byte* src, ptrdiff_t srcStep, Byte* dst, ptrdiff_t dstStep) {
  Vec v[16], u[16];
  ForRows(src, srcStep,
          [&](int i, const Byte* p) QV_INLINE_LAMBDA { v[i] = LoadLanes(p, 16 * srcStep); });
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
  ForRows(dst, dstStep, [&](int i, Byte* p) QV_INLINE_LAMBDA { Store(p, v[i]); });
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
// the pixels to 4 bytes, the last one while it packs them:
//   s3 s2 s1 s0, r3 r2 r1 r0 -> s3 r3 s1 s0, s2 r2 r1 r0 -> s3 r3 s1 r1, s2 r2 r0 s0
//   -> s3 r3 r0 r1, s2 r2 s1 s0 -> r2 r3 r0 r1, s3 s2 s1 s0
QV_INLINE void TransposeTriplesWide(const Byte* src, ptrdiff_t srcStep, Byte* dst,
                                    ptrdiff_t dstStep) {
  static constexpr auto kSpread = [](int half) {
    return MakeByteTable([=](int i) {
      return i % 4 < 3 ? i / 32 * 64 + half * 24 + i % 32 / 4 * 3 + i % 4 : 0;
    });
  };
  // Of two vectors, the lanes whose number is even, or odd.
  static constexpr auto kPack = [](int odd) {
    return MakeByteTable([=](int i) {
      const int byte = WithoutFourths(i % 48), lane = byte / 16;
      return lane / 2 * 64 + (lane % 2 * 2 + odd) * 16 + byte % 16;
    });
  };
  constexpr unsigned long long kTriples = (1ull << 48) - 1;
  static constexpr ByteTable kTables[] = {kSpread(0), kSpread(1), kPack(0), kPack(1)};
  const Vec spread[2] = {Load(&kTables[0]), Load(&kTables[1])};
  const Vec pack[2] = {Load(&kTables[2]), Load(&kTables[3])};
#pragma GCC unroll 1
  for (int q = 0; q < 4; ++q, src += 16 * srcStep, dst += 48) {
    Vec v[16], u[16];
    ForRows(src, srcStep,
            [&](int i, const Byte* p) QV_INLINE_LAMBDA { v[i] = LoadPart(p, kTriples); });
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
      v[r] = PermuteBytes2(u[i], pack[0], u[i + 8]);
      v[r + 4] = PermuteBytes2(u[i], pack[1], u[i + 8]);
    }
    // Whole vectors cost less than masked ones; what is too much the next columns overwrite.
    if (q < 3)
      ForRows(dst, dstStep, [&](int r, Byte* p) QV_INLINE_LAMBDA { Store(p, v[r]); });
    else
      ForRows(dst, dstStep,
              [&](int r, Byte* p) QV_INLINE_LAMBDA { StorePart(p, v[r], kTriples); });
  }
}

// Asks for bytes first .. end - 1 of source rows, which no processor foresees.
QV_INLINE void AskForRows(const Byte* src, int srcStep, int rows, int first, int end) {
  for (int i = 0; i < rows; ++i)
    for (int k = first; k < end; k += kLine) __builtin_prefetch(RowAt(src, srcStep, i) + k);
}

// Calls block(r, c) for blocks of kRows x kColumns that cover the image, tile by tile, and ask(r,
// c) before those of every 16 rows of a tile. Blocks at the far edges overlap their neighbours.
// False if the image is smaller than a block.
template <int kRows, int kColumns, class Block, class Ask>
QV_INLINE bool CoverWithTiles(IppiSize size, Block block, Ask ask) {
  const int width = size.width, height = size.height;
  if (width < kColumns || height < kRows) return false;
  for (int r0 = 0; r0 < height; r0 += kTileRows)
    for (int c0 = 0; c0 < width; c0 += kTileColumns)
      for (int r = r0; r < r0 + kTileRows && r < height; r += kRows) {
        if (r % 16 == 0) ask(r, c0);
        for (int c = c0; c < c0 + kTileColumns && c < width; c += kColumns)
          block(r + kRows <= height ? r : height - kRows,
                c + kColumns <= width ? c : width - kColumns);
      }
  return true;
}

// Asks for a line of each source row of a tile whenever 16 of its 64 rows are done: the one after
// what the first 16 pixels begin in, and so on to the one that the tile below begins in.
template <int kChannels> struct AskAhead {
  const Byte* src;
  int srcStep, width;
  bool asks;

  QV_INLINE void operator()(int r, int c) const {
    const int line = r % kTileRows / 16;
    if (!asks || line >= kChannels) return;
    const int rows = c + kTileColumns < width ? kTileColumns : width - c;
    const Byte* const p = RowAt(src, srcStep, c) + ptrdiff_t{kChannels} * (r - 16 * line);
    AskForRows(p, srcStep, rows, kLine * (line + 1), kLine * (line + 2));
  }
};

// False if the image is too small. Out of line, to leave the loops their registers.
template <int kChannels, bool kWide>
__attribute__((noinline)) bool TransposeTilesBy(const Byte* src, int srcStep, Byte* dst,
                                                int dstStep, IppiSize size, bool asks) {
  const auto from = [=](int r, int c) { return RowAt(src, srcStep, c) + ptrdiff_t{kChannels} * r; };
  const auto to = [=](int r, int c) { return RowAt(dst, dstStep, r) + ptrdiff_t{kChannels} * c; };
  const AskAhead<kChannels> ask = {src, srcStep, size.width, asks && kChannels > 1};
  const int height = size.height;
  const auto block = [=](int r, int c) QV_INLINE_LAMBDA {
    if constexpr (kChannels == 1)
      TransposeBytes(from(r, c), srcStep, to(r, c), dstStep);
    else if constexpr (kWide)
      TransposeTriplesWide(from(r, c), srcStep, to(r, c), dstStep);
    else  // a row of 6 pixels holds the 16 bytes of a load at either of its ends
      TransposeTriplesBlock(from(r, c), srcStep, to(r, c), dstStep, r + 6 > height);
  };
  if constexpr (kChannels == 1 || kWide) return CoverWithTiles<16, kVecBytes>(size, block, ask);
  return height >= 6 && CoverWithTiles<4, kVecBytes / 4>(size, block, ask);
}

// Asks for the source's pixels ahead if `asks`.
template <int kChannels>
bool TransposeTiles(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size,
                    bool asks) {
  if constexpr (kChannels == 3 && kHasBytePermute && kHasMaskedBytes)
    if (TransposeTilesBy<3, true>(src, srcStep, dst, dstStep, size, asks)) return true;
  return TransposeTilesBy<kChannels, false>(src, srcStep, dst, dstStep, size, asks);
}

// Past the caches: whole lines are written, and what does not fill one waits for the next columns,
// whose pixels are asked for ahead. False if the image is too small.
template <int kChannels>
bool StreamTiles(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  constexpr int kColumns = kTileColumns, kBytes = kColumns * kChannels;
  // Rows of several lines that are turned in little time are asked for a few at a time, one line
  // further on: the one that the strip below begins in is needed first there, before there is time.
  constexpr bool kAtOnce = kChannels == 1 || kVecBytes == 16;
  if (size.width < kColumns || size.height < 16) return false;
  alignas(kLine) Byte lines[kTileRows][kLine + kBytes];
  const auto from = [=](int r, int c) { return RowAt(src, srcStep, c) + ptrdiff_t{kChannels} * r; };
  const auto tile = [=](int r, int c, Byte* to, int step, int rows) {
    TransposeTiles<kChannels>(from(r, c), srcStep, to, step, {kColumns, rows}, false);
  };
  // Strips of about the same height, and so none that is too low.
  int strips = (size.height + kTileRows - 1) / kTileRows;
  for (int r = 0, rows; r < size.height; r += rows) {
    rows = (size.height - r + strips - 1) / strips;
    --strips;
    int c = 0;
    for (; c + kColumns <= size.width; c += kColumns) {
      const int after = c + kColumns;
      const int left = after + kColumns <= size.width ? kColumns : size.width - after;
      if (kAtOnce) AskForRows(from(r, after), srcStep, left, 0, rows * kChannels);
      tile(r, c, lines[0] + kLine, sizeof(lines[0]), rows);
      for (int i = 0; i < rows; ++i) {
        if (!kAtOnce) {
          const int asked = i * left / rows, next = (i + 1) * left / rows;
          AskForRows(from(r, after + asked), srcStep, next - asked, kLine,
                     rows * kChannels + kLine);
        }
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
    // Asking for a source that the second-level cache holds costs a twentieth of the time.
    const bool asks = PassesCaches(size.width, size.height, 2 * kChannels);
    if (TransposeTiles<kChannels>(src, srcStep, dst, dstStep, size, asks)) return;
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
