// Transposition, the heart of a quarter turn.
//
// Works in tiles whose source and destination lines stay in the first-level cache together; within
// a tile vector rows transpose blocks in registers.
#include "kernels/geometry/Geometry.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

constexpr int kTile = 64;

template <int kChannels>
void TransposePlain(const Byte* src, ptrdiff_t srcStep, Byte* dst, ptrdiff_t dstStep, int width,
                    int height) {
  for (int r = 0; r < height; ++r)
    for (int c = 0; c < width; ++c)
      for (int i = 0; i < kChannels; ++i)
        dst[r * dstStep + c * kChannels + i] = src[c * srcStep + r * kChannels + i];
}

#if QV_HAS_VECTORS

constexpr int kLanes = kVecBytes / 16;

// 16 bytes of each of kLanes rows, `apart` bytes from row to row.
#if defined(__AVX512F__)
QV_INLINE Vec LoadLanes(const Byte* p, ptrdiff_t apart) {
  const auto load = [=](int i) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i * apart));
  };
  const __m256i low = _mm256_inserti128_si256(_mm256_castsi128_si256(load(0)), load(1), 1);
  const __m256i high = _mm256_inserti128_si256(_mm256_castsi128_si256(load(2)), load(3), 1);
  return _mm512_inserti64x4(_mm512_zextsi256_si512(low), high, 1);
}
#elif defined(__AVX2__)
QV_INLINE Vec LoadLanes(const Byte* p, ptrdiff_t apart) {
  return _mm256_inserti128_si256(
      _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))),
      _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + apart)), 1);
}
#else
QV_INLINE Vec LoadLanes(const Byte* p, ptrdiff_t) { return Load(p); }
#endif

// 16 columns of kVecBytes source rows become 16 rows of kVecBytes. Lane l of vector i starts out as
// row 16 l + i; each of four perfect shuffles moves one bit of the row number into the column number.
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

// Calls block(r, c) for blocks of kRows x kColumns that cover the image, tile by tile. Blocks at the
// far edges overlap their neighbours. False if the image is smaller than a block.
template <int kRows, int kColumns, class Block>
QV_INLINE bool CoverWithTiles(int width, int height, Block block) {
  if (width < kColumns || height < kRows) return false;
  for (int r0 = 0; r0 < height; r0 += kTile)
    for (int c0 = 0; c0 < width; c0 += kTile)
      for (int r = r0; r < r0 + kTile && r < height; r += kRows)
        for (int c = c0; c < c0 + kTile && c < width; c += kColumns)
          block(r + kRows <= height ? r : height - kRows, c + kColumns <= width ? c : width - kColumns);
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
  TransposePlain<3>(src, srcStep, dst, dstStep, size.width, size.height);
}

}  // namespace qv::QV_LEVEL
