// What all levels share: row pointers and the checks that kernels begin with.
#ifndef QV_KERNELS_LEVEL_COMMON_H
#define QV_KERNELS_LEVEL_COMMON_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "dispatch/VariantIndex.h"
#include "qvAcceleratedLib/CqvAccLib.h"

#define QV_INLINE inline __attribute__((always_inline))
#define QV_INLINE_LAMBDA __attribute__((always_inline))

namespace qv::QV_LEVEL {

using Byte = unsigned char;

// An address that the compiler does not take apart: it is kept in one register, and what is added
// to it is added to it alone.
template <class T> QV_INLINE T* Opaque(T* p) {
  asm("" : "+r"(p));
  return p;
}

// Row `y` of an image. In pointer width: y * step may pass 2 GiB.
QV_INLINE const Byte* RowAt(const Byte* base, int step, ptrdiff_t y) { return base + y * step; }
QV_INLINE Byte* RowAt(Byte* base, int step, ptrdiff_t y) { return base + y * step; }

// StatusNullPtrErr if a pointer is null, else StatusSizeErr if the size is below 1, else StatusOk.
QV_INLINE IppStatus CheckImages(const void* a, const void* b, int width, int height) {
  if (!a || !b) return StatusNullPtrErr;
  if (width < 1 || height < 1) return StatusSizeErr;
  return StatusOk;
}

// Whether a destination of `pixelBytes` bytes a pixel had better be written past the caches: it
// would push itself and everything else out of them before it is read again, and an ordinary store
// fetches the line that it overwrites. Measured: ordinary stores win while the frame still fits in
// the last level next to its sources, up to some 10 MiB both on an AMD Zen with a last cache of 32
// MiB and on an Intel Xeon with a far larger one that others share. So the bound is five sixteenths
// of the last cache, and at most that. A destination without a source to read, or one that is a
// source, is better off in the caches.
QV_INLINE bool PassesCaches(int width, int height, int pixelBytes) {
  constexpr ptrdiff_t kMost = ptrdiff_t{10} << 20;
  const ptrdiff_t share = LastCacheBytes / 16 * 5;
  return int64_t{width} * height >= (share < kMost ? share : kMost) / pixelBytes;
}

// Clamps to a byte.
QV_INLINE Byte ToByte(int x) { return static_cast<Byte>(x < 0 ? 0 : x > 255 ? 255 : x); }

}  // namespace qv::QV_LEVEL

#endif
