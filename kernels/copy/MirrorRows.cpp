// Mirror images.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

template <int kChannels>
void ReverseRowPlain(const Byte* src, Byte* dst, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; ++x)
    for (int c = 0; c < kChannels; ++c)
      dst[kChannels * (width - 1 - x) + c] = src[kChannels * x + c];
}

template <int kChannels>
void ReverseRow(const Byte* src, Byte* dst, ptrdiff_t width) {
  ReverseRowPlain<kChannels>(src, dst, width);
}

template <int kChannels>
QV_INLINE IppStatus Mirror(const Byte* src, int srcStep, Byte* dst, int dstStep, int width,
                           int height, IppiAxis axis) {
  if (const IppStatus status = CheckImages(src, dst, width, height); status != StatusOk)
    return status;
  if (axis != AxisHorizontal && axis != AxisVertical && axis != AxisBoth) return StatusAxisErr;
  const size_t rowBytes = static_cast<size_t>(width) * kChannels;
  for (int y = 0; y < height; ++y) {
    const Byte* from = RowAt(src, srcStep, y);
    Byte* to = RowAt(dst, dstStep, axis == AxisVertical ? y : height - 1 - y);
    if (axis == AxisHorizontal)
      memcpy(to, from, rowBytes);
    else
      ReverseRow<kChannels>(from, to, width);
  }
  return StatusOk;
}

}  // namespace

IppStatus Mirror_8u_C1(const Byte* src, int srcStep, Byte* dst, int dstStep, int width,
                       int height, IppiAxis axis) {
  return Mirror<1>(src, srcStep, dst, dstStep, width, height, axis);
}

IppStatus Mirror_8u_C3(const Byte* src, int srcStep, Byte* dst, int dstStep, int width,
                       int height, IppiAxis axis) {
  return Mirror<3>(src, srcStep, dst, dstStep, width, height, axis);
}

}  // namespace qv::QV_LEVEL
