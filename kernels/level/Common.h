// What all levels share: row pointers and the checks that kernels begin with.
#ifndef QV_KERNELS_LEVEL_COMMON_H
#define QV_KERNELS_LEVEL_COMMON_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "qvAcceleratedLib/CqvAccLib.h"

#define QV_INLINE inline __attribute__((always_inline))

namespace qv::QV_LEVEL {

using Byte = unsigned char;

// Row `y` of an image. In pointer width: y * step may pass 2 GiB.
QV_INLINE const Byte* RowAt(const Byte* base, int step, ptrdiff_t y) { return base + y * step; }
QV_INLINE Byte* RowAt(Byte* base, int step, ptrdiff_t y) { return base + y * step; }

// StatusNullPtrErr if a pointer is null, else StatusSizeErr if the size is below 1, else StatusOk.
QV_INLINE IppStatus CheckImages(const void* a, const void* b, int width, int height) {
  if (!a || !b) return StatusNullPtrErr;
  if (width < 1 || height < 1) return StatusSizeErr;
  return StatusOk;
}

// A destination of at least this many bytes would push everything else out of the caches before it is
// read again: it is written past them. Measured: ordinary stores win while the frame still fits
// in the last level next to its source.
constexpr ptrdiff_t kStreamBytes = ptrdiff_t{10} << 20;

// Clamps to a byte.
QV_INLINE Byte ToByte(int x) { return static_cast<Byte>(x < 0 ? 0 : x > 255 ? 255 : x); }

}  // namespace qv::QV_LEVEL

#endif
