// Packed 4:2:2 and two-plane 4:2:0 to three planes: samples are moved, not changed.
#include "kernels/color/Color.h"
#include "kernels/copy/CopyRow.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// ---- Plain rows ---------------------------------------------------------------------------------

// Bytes 0, 2, 4, ... to `even` and bytes 1, 3, 5, ... to `odd`, `count` of each.
[[maybe_unused]] void SplitPairsPlain(const Byte* src, Byte* even, Byte* odd, ptrdiff_t count) {
  for (ptrdiff_t j = 0; j < count; ++j) {
    even[j] = src[2 * j];
    odd[j] = src[2 * j + 1];
  }
}

// `groups` groups Y0, Cb, Y1, Cr to three planes.
[[maybe_unused]] void SplitGroupsPlain(const Byte* src, Byte* luma, Byte* cb, Byte* cr,
                                       ptrdiff_t groups) {
  for (ptrdiff_t j = 0; j < groups; ++j) {
    luma[2 * j] = src[4 * j];
    luma[2 * j + 1] = src[4 * j + 2];
    cb[j] = src[4 * j + 1];
    cr[j] = src[4 * j + 3];
  }
}

// The luma of packed 4:2:2 alone.
[[maybe_unused]] void TakeLumaPlain(const Byte* src, Byte* luma, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; ++x) luma[x] = src[2 * x];
}

#if !QV_HAS_VECTORS

QV_INLINE void SplitPairs(const Byte* src, Byte* even, Byte* odd, ptrdiff_t count) {
  SplitPairsPlain(src, even, odd, count);
}

QV_INLINE void SplitGroups(const Byte* src, Byte* luma, Byte* cb, Byte* cr, ptrdiff_t groups) {
  SplitGroupsPlain(src, luma, cb, cr, groups);
}

QV_INLINE void TakeLuma(const Byte* src, Byte* luma, ptrdiff_t width) {
  TakeLumaPlain(src, luma, width);
}

#else

// ---- Vector rows --------------------------------------------------------------------------------

QV_INLINE void SplitPairs(const Byte* src, Byte* even, Byte* odd, ptrdiff_t count) {
  const auto block = [=](ptrdiff_t j) {
    const Vec low = Load(src + 2 * j), high = Load(src + 2 * j + kVecBytes);
    Store(even + j, EvenBytes(low, high));
    Store(odd + j, OddBytes(low, high));
  };
  // Two at a time: a block is so short that a processor's fetch of the loop around it tells.
  const auto two = [=](ptrdiff_t j) {
    block(j);
    block(j + kVecBytes);
  };
  if (CoverWithBlocks<2 * kVecBytes>(count, two) || CoverWithBlocks<kVecBytes>(count, block))
    return;
  SplitPairsPlain(src, even, odd, count);
}

QV_INLINE void SplitGroups(const Byte* src, Byte* luma, Byte* cb, Byte* cr, ptrdiff_t groups) {
  const auto block = [=](ptrdiff_t j) {
    Vec v[4];
    for (int i = 0; i < 4; ++i) v[i] = Load(src + 4 * j + i * kVecBytes);
    Store(luma + 2 * j, EvenBytes(v[0], v[1]));
    Store(luma + 2 * j + kVecBytes, EvenBytes(v[2], v[3]));
    const Vec low = OddBytes(v[0], v[1]), high = OddBytes(v[2], v[3]);
    Store(cb + j, EvenBytes(low, high));
    Store(cr + j, OddBytes(low, high));
  };
  if (!CoverWithBlocks<kVecBytes>(groups, block)) SplitGroupsPlain(src, luma, cb, cr, groups);
}

QV_INLINE void TakeLuma(const Byte* src, Byte* luma, ptrdiff_t width) {
  const auto block = [=](ptrdiff_t x) {
    Store(luma + x, EvenBytes(Load(src + 2 * x), Load(src + 2 * x + kVecBytes)));
  };
  if (!CoverWithBlocks<kVecBytes>(width, block)) TakeLumaPlain(src, luma, width);
}

#endif

// ---- Checks -------------------------------------------------------------------------------------

QV_INLINE IppStatus CheckPlanes(const void* src, Byte* const dst[3], const int dstStep[3],
                                IppiSize size) {
  if (!src || !dst || !dstStep || !dst[0] || !dst[1] || !dst[2]) return StatusNullPtrErr;
  if (size.width < 2 || size.height < 2) return StatusSizeErr;
  return StatusOk;
}

}  // namespace

IppStatus YCbCr422ToYCrCb420_8u_C2P3(const Byte* src, int srcStep, Byte* const dst[3],
                                     const int dstStep[3], IppiSize size) {
  if (const IppStatus status = CheckPlanes(src, dst, dstStep, size); status != StatusOk)
    return status;
  for (int k = 0; k < size.height / 2; ++k) {
    const ptrdiff_t upper = 2 * static_cast<ptrdiff_t>(k);
    SplitGroups(RowAt(src, srcStep, upper), RowAt(dst[0], dstStep[0], upper),
                RowAt(dst[2], dstStep[2], k), RowAt(dst[1], dstStep[1], k), size.width / 2);
    TakeLuma(RowAt(src, srcStep, upper + 1), RowAt(dst[0], dstStep[0], upper + 1),
             size.width & ~1);
  }
  return StatusOk;
}

IppStatus YCbCrInterleavedTo420_8u_P2P3(const Byte* srcY, int srcYStep, const Byte* srcCbCr,
                                        int srcCbCrStep, Byte* const dst[3], const int dstStep[3],
                                        IppiSize size) {
  if (!srcCbCr) return StatusNullPtrErr;
  if (const IppStatus status = CheckPlanes(srcY, dst, dstStep, size); status != StatusOk)
    return status;
  const int width = size.width & ~1, height = size.height & ~1;
  const CopyWay way = CopyWayOf(width, height, 1, false);
  if (srcYStep == width && dstStep[0] == width) {
    CopyRow(srcY, dst[0], ptrdiff_t{width} * height, way);
  } else {
    for (int y = 0; y < height; ++y)
      CopyRow(RowAt(srcY, srcYStep, y), RowAt(dst[0], dstStep[0], y), width, way);
  }
  // Rows without gaps are one long row.
  const bool gapless =
      srcCbCrStep == width && dstStep[1] == width / 2 && dstStep[2] == width / 2;
  const ptrdiff_t rows = gapless ? 1 : height / 2;
  const ptrdiff_t pairs = gapless ? ptrdiff_t{width} / 2 * (height / 2) : width / 2;
  for (ptrdiff_t k = 0; k < rows; ++k)
    SplitPairs(RowAt(srcCbCr, srcCbCrStep, k), RowAt(dst[1], dstStep[1], k),
               RowAt(dst[2], dstStep[2], k), pairs);
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
