// Fills with a constant byte or a constant three-byte pixel.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// Rows of three-byte pixels. The pixel is taken by value before anything is stored, so that a
// destination that holds `value` itself does no harm.
class PixelFill {
 public:
#if QV_HAS_VECTORS
  explicit PixelFill(const Byte* value) {
    const uint64_t pixel = static_cast<uint64_t>(value[0] | value[1] << 8 | value[2] << 16);
    // Eight pixels in three words.
    const uint64_t words[3] = {pixel | pixel << 24 | pixel << 48,
                               pixel >> 16 | pixel << 8 | pixel << 32 | pixel << 56,
                               pixel >> 8 | pixel << 16 | pixel << 40};
    for (int i = 0; i < 3 * kVecBytes / 8; ++i) memcpy(pattern_ + 8 * i, words + i % 3, 8);
  }

  void Row(Byte* dst, ptrdiff_t width) const {
    const ptrdiff_t begun = BegunOf(width);
    Begin(dst, begun);
    for (ptrdiff_t done = begun; done < width; done += begun) {
      const ptrdiff_t next = width - done < begun ? width - done : begun;
      MoveBytes(dst + 3 * done, dst, static_cast<size_t>(3 * next));
    }
  }
#else
  explicit PixelFill(const Byte* value) : pattern_{value[0], value[1], value[2]} {}

  void Row(Byte* dst, ptrdiff_t width) const {
    for (ptrdiff_t k = 0; k < width; ++k)
      for (int c = 0; c < 3; ++c) dst[3 * k + c] = pattern_[c];
  }
#endif

 private:
#if QV_HAS_VECTORS
  // A long row is its own beginning, moved on again and again: lines are written so that have not
  // been read. The beginning stays in a core's own caches.
  static ptrdiff_t BegunOf(ptrdiff_t width) {
    const ptrdiff_t share = (LongMoveBytes / 4 / (3 * kVecBytes) + 1) * kVecBytes;
    return 3 * width >= LongMoveBytes && share < width ? share : width;
  }

  void Begin(Byte* dst, ptrdiff_t width) const {
    const Vec v0 = Load(pattern_), v1 = Load(pattern_ + kVecBytes),
              v2 = Load(pattern_ + 2 * kVecBytes);
    const bool done = CoverWithBlocks<kVecBytes>(
        width,
        [&](ptrdiff_t x) {
          Store(dst + 3 * x, v0);
          Store(dst + 3 * x + kVecBytes, v1);
          Store(dst + 3 * x + 2 * kVecBytes, v2);
        },
        PixelsToAlign3(dst));
    if (done) return;
    const ptrdiff_t bytes = 3 * width;
    if (bytes < kVecBytes) {
      StoreShort(dst, LoadShort(pattern_, bytes), bytes);
      return;
    }
    Store(dst, v0);
    if (bytes > 2 * kVecBytes) Store(dst + kVecBytes, v1);
    // Ends where a pixel ends, as the pattern does.
    Store(dst + bytes - kVecBytes, v2);
  }

  Byte pattern_[3 * kVecBytes];
#else
  Byte pattern_[3];
#endif
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
  ptrdiff_t width = size.width, height = size.height;
  if (dstStep == 3 * width) {  // no gaps between the rows: one long row
    width *= height;
    height = 1;
  }
  const PixelFill fill(value);
  for (ptrdiff_t y = 0; y < height; ++y) fill.Row(RowAt(dst, dstStep, y), width);
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
