// Luma as grey and grey as luma.
#include "kernels/level/Level.h"
#include "kernels/yuv/Yuv.h"

namespace qv::QV_LEVEL {

namespace {

void RowPlain(const Byte* src, int apart, Byte* dst, ptrdiff_t width, LumaMap map) {
  for (ptrdiff_t x = 0; x < width; ++x) {
    const uint32_t product = uint32_t{src[x * apart]} * 256 * map.factor;
    dst[x] = ToByte((static_cast<int>(product >> 16) + map.offset) >> 6);
  }
}

#if 1  // TEMP

QV_INLINE void Row(const Byte* src, int apart, Byte* dst, ptrdiff_t width, LumaMap map) {
  RowPlain(src, apart, dst, width, map);
}

#else
#endif

}  // namespace

void MapLuma_8u(const Byte* src, int srcStep, int apart, Byte* dst, int dstStep, IppiSize size,
                LumaMap map) {
  for (ptrdiff_t y = 0; y < size.height; ++y)
    Row(RowAt(src, srcStep, y), apart, RowAt(dst, dstStep, y), size.width, map);
}

}  // namespace qv::QV_LEVEL
