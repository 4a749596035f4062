// Luma as grey and grey as luma.
#include "kernels/level/Level.h"
#include "kernels/yuv/Yuv.h"
#include "kernels/yuv/YuvVectors.h"

namespace qv::QV_LEVEL {

namespace {

void RowPlain(const Byte* src, int apart, Byte* dst, ptrdiff_t width, LumaMap map) {
  for (ptrdiff_t x = 0; x < width; ++x) {
    const uint32_t product = uint32_t{src[x * apart]} * 256 * map.factor;
    dst[x] = ToByte((static_cast<int>(product >> 16) + map.offset) >> 6);
  }
}

#if !QV_HAS_VECTORS

QV_INLINE void Row(const Byte* src, int apart, Byte* dst, ptrdiff_t width, LumaMap map) {
  RowPlain(src, apart, dst, width, map);
}

#else

QV_INLINE Vec Map(Vec bytes, LumaMap map) {
  const auto half = [=](Vec v) {
    const Vec product = MulHighUnsigned16(v, Splat16(map.factor));
    return ShiftRightSigned16<6>(Add16(product, Splat16(map.offset)));
  };
  // In place within 128-bit lanes.
  return PackUnsigned16(half(InterleaveLow8(Zero(), bytes)), half(InterleaveHigh8(Zero(), bytes)));
}

// Of samples that are not side by side the last is left to the plain row: nothing is read
// past it.
QV_INLINE void Row(const Byte* src, int apart, Byte* dst, ptrdiff_t width, LumaMap map) {
  const ptrdiff_t covered = apart == 1 ? width : width - 1;
  const bool done = CoverWithBlocks<kVecBytes, 2>(covered, [=](ptrdiff_t x) {
    const Byte* const from = src + x * apart;
    Store(dst + x, Map(apart == 1 ? Load(from) : EvenBytes(Load(from), Load(from + kVecBytes)),
                       map));
  });
  const ptrdiff_t left = done ? covered : 0;
  RowPlain(src + left * apart, apart, dst + left, width - left, map);
}

#endif

}  // namespace

void MapLuma_8u(const Byte* src, int srcStep, int apart, Byte* dst, int dstStep, IppiSize size,
                LumaMap map) {
  for (ptrdiff_t y = 0; y < size.height; ++y)
    Row(RowAt(src, srcStep, y), apart, RowAt(dst, dstStep, y), size.width, map);
}

}  // namespace qv::QV_LEVEL
