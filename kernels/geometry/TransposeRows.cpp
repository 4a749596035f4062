// Transposition, the heart of a quarter turn.
//
// Works in tiles whose source and destination lines stay in the first-level cache together; within
// a tile vector rows transpose blocks in registers.
#include "kernels/geometry/Geometry.h"
#include "kernels/geometry/GeometryVectors.h"

namespace qv::QV_LEVEL {

namespace {

// Whole cache lines of the destination; more rows, or wider tiles, measured no faster.
constexpr int kTileRows = 32;
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
// ones if the 4 behind it do not belong to the image's row.
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

// The same for kVecBytes columns, where bytes can be packed across vectors: full stores.
QV_INLINE void TransposeTriplesWide(const Byte* src, ptrdiff_t srcStep, Byte* dst,
                                    ptrdiff_t dstStep, bool isLast) {
  // Packed byte n is byte n % 48 of vector n / 48, which for the vector j stored is j or j + 1.
  static constexpr auto kPack = [](int j) {
    return MakeByteTable([=](int i) {
      const int n = 64 * j + i;
      return (n / 48 - j) * 64 + n % 48 / 3 * 4 + n % 3;
    });
  };
  static constexpr ByteTable kPacks[3] = {kPack(0), kPack(1), kPack(2)};
  Vec v[4][4];
  const Vec spread = SpreadTriples(isLast);
  src -= isLast ? 4 : 0;
  for (int i = 0; i < 4; ++i)
    TransposeTriples(src + i * (kVecBytes / 4) * srcStep, srcStep, spread, v[i]);
  for (int r = 0; r < 4; ++r)
    for (int j = 0; j < 3; ++j)
      Store(dst + r * dstStep + j * kVecBytes,
            PermuteBytes2(v[j][r], Load(&kPacks[j]), v[j + 1][r]));
}

// Calls block(r, c) for blocks of kRows x kColumns that cover the image, tile by tile. Blocks at
// the far edges overlap their neighbours. False if the image is smaller than a block.
template <int kRows, int kColumns, class Block>
QV_INLINE bool CoverWithTiles(int width, int height, Block block) {
  if (width < kColumns || height < kRows) return false;
  for (int r0 = 0; r0 < height; r0 += kTileRows)
    for (int c0 = 0; c0 < width; c0 += kTileColumns)
      for (int r = r0; r < r0 + kTileRows && r < height; r += kRows)
        for (int c = c0; c < c0 + kTileColumns && c < width; c += kColumns)
          block(r + kRows <= height ? r : height - kRows,
                c + kColumns <= width ? c : width - kColumns);
  return true;
}

#endif

}  // namespace

void Transpose_8u_C1(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
#if QV_HAS_VECTORS
  if (CoverWithTiles<16, kVecBytes>(size.width, size.height, [=](int r, int c) {
        TransposeBytes(RowAt(src, srcStep, c) + r, srcStep, RowAt(dst, dstStep, r) + c, dstStep);
      }))
    return;
#endif
  TransposePlain<1>(src, srcStep, dst, dstStep, size.width, size.height);
}

void Transpose_8u_C3(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
#if QV_HAS_VECTORS
  if constexpr (kHasByteShuffle) {
    // A row of 6 pixels holds the 16 bytes of a load at either of its ends.
    const int width = size.width, height = size.height;
    if constexpr (kHasBytePermute)
      if (height >= 6 && CoverWithTiles<4, kVecBytes>(width, height, [=](int r, int c) {
            TransposeTriplesWide(RowAt(src, srcStep, c) + 3 * r, srcStep,
                                 RowAt(dst, dstStep, r) + 3 * c, dstStep, r + 6 > height);
          }))
        return;
    if (height >= 6 && CoverWithTiles<4, kVecBytes / 4>(width, height, [=](int r, int c) {
          TransposeTriplesBlock(RowAt(src, srcStep, c) + 3 * r, srcStep,
                                RowAt(dst, dstStep, r) + 3 * c, dstStep, r + 6 > height);
        }))
      return;
  }
#endif
  TransposePlain<3>(src, srcStep, dst, dstStep, size.width, size.height);
}

}  // namespace qv::QV_LEVEL
