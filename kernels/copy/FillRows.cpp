// Fills with a constant byte or a constant three-byte pixel.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// A row of three-byte pixels. Called for one row at a time, with the pixel by value so that a
// destination that holds `value` itself does no harm.
class PixelFill {
 public:
  explicit PixelFill(const Byte* value) {
    for (int i = 0; i < kPatternBytes; ++i) pattern_[i] = value[i % 3];
  }

#if QV_HAS_VECTORS
  void Row(Byte* dst, ptrdiff_t bytes) const {
    const Vec v0 = Load(pattern_), v1 = Load(pattern_ + kVecBytes),
              v2 = Load(pattern_ + 2 * kVecBytes);
    ptrdiff_t i = 0;
    for (; i <= bytes - kPatternBytes; i += kPatternBytes) {
      Store(dst + i, v0);
      Store(dst + i + kVecBytes, v1);
      Store(dst + i + 2 * kVecBytes, v2);
    }
    memcpy(dst + i, pattern_, static_cast<size_t>(bytes - i));
  }
#else
  void Row(Byte* dst, ptrdiff_t bytes) const {
    for (ptrdiff_t i = 0; i < bytes; i += 3)
      for (int c = 0; c < 3; ++c) dst[i + c] = pattern_[c];
  }
#endif

 private:
#if QV_HAS_VECTORS
  static constexpr int kPatternBytes = 3 * kVecBytes;
#else
  static constexpr int kPatternBytes = 3;
#endif
  Byte pattern_[kPatternBytes];
};

}  // namespace

IppStatus SetPixels_8u_C1(Byte value, Byte* dst, int dstStep, IppiSize size) {
  if (const IppStatus status = CheckImages(dst, dst, size.width, size.height); status != StatusOk)
    return status;
  size_t width = static_cast<size_t>(size.width);
  int height = size.height;
  if (dstStep == size.width) {  // no gaps between the rows: one long row
    width *= static_cast<size_t>(height);
    height = 1;
  }
  for (int y = 0; y < height; ++y) memset(RowAt(dst, dstStep, y), value, width);
  return StatusOk;
}

IppStatus SetPixels_8u_C3(const Byte* value, Byte* dst, int dstStep, IppiSize size) {
  if (const IppStatus status = CheckImages(value, dst, size.width, size.height);
      status != StatusOk)
    return status;
  const PixelFill fill(value);
  for (int y = 0; y < size.height; ++y)
    fill.Row(RowAt(dst, dstStep, y), ptrdiff_t{3} * size.width);
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
