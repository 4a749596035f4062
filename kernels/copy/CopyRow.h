// A row of bytes copied as it is.
#ifndef QV_KERNELS_COPY_COPYROW_H
#define QV_KERNELS_COPY_COPYROW_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

#if QV_HAS_VECTORS

// How the rows of an image are copied. `moves`: by MoveBytes even where a row alone is not long
// enough for it. `stream`: past the caches; ends with StreamFence then, before the kernel returns.
struct CopyWay {
  bool moves, stream;
};

// Measured on Zen 5: rows of some 2 KiB gain from MoveBytes, by 7 %, in images that leave a core's
// own caches, but not where rows can go past the caches instead.
QV_INLINE CopyWay CopyWayOf(int width, int height, int pixelBytes, bool stream) {
  const ptrdiff_t pixels = LongMoveBytes / pixelBytes;
  const bool moves = !stream && width >= pixels / 1024 && int64_t{width} * height >= pixels;
  return {moves, stream};
}

// MoveBytes is quick where source and destination lie alike in their lines.
QV_INLINE void CopyRow(const Byte* src, Byte* dst, ptrdiff_t bytes, CopyWay way) {
  constexpr uintptr_t kLine = 64;
  const auto apart = reinterpret_cast<uintptr_t>(dst) - reinterpret_cast<uintptr_t>(src);
  if ((way.moves || bytes >= LongMoveBytes) && apart % kLine == 0) {
    MoveBytes(dst, src, static_cast<size_t>(bytes));
    return;
  }
  if (!way.stream || bytes < 8 * kVecBytes) {
    // Short rows are copied right here: at 640 bytes a call of memcpy costs a fifth of the time.
    const auto block = [=](ptrdiff_t i) { Store(dst + i, Load(src + i)); };
    if (bytes > 2048 || !CoverWithBlocks<kVecBytes>(bytes, block, BytesToAlign(dst)))
      memcpy(dst, src, static_cast<size_t>(bytes));
    return;
  }
  Store(dst, Load(src));
  ptrdiff_t i = kVecBytes - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) % kVecBytes);
  for (; i <= bytes - 4 * kVecBytes; i += 4 * kVecBytes) {
    const Vec v0 = Load(src + i), v1 = Load(src + i + kVecBytes),
              v2 = Load(src + i + 2 * kVecBytes), v3 = Load(src + i + 3 * kVecBytes);
    StreamStore(dst + i, v0);
    StreamStore(dst + i + kVecBytes, v1);
    StreamStore(dst + i + 2 * kVecBytes, v2);
    StreamStore(dst + i + 3 * kVecBytes, v3);
  }
  memcpy(dst + i, src + i, static_cast<size_t>(bytes - i));
}

#else

struct CopyWay {};

QV_INLINE CopyWay CopyWayOf(int, int, int, bool) { return {}; }

QV_INLINE void CopyRow(const Byte* src, Byte* dst, ptrdiff_t bytes, CopyWay) {
  memcpy(dst, src, static_cast<size_t>(bytes));
}

#endif

}  // namespace qv::QV_LEVEL

#endif
