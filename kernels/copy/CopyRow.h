// A row of bytes copied as it is.
#ifndef QV_KERNELS_COPY_COPYROW_H
#define QV_KERNELS_COPY_COPYROW_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

#if QV_HAS_VECTORS

// `stream`: past the caches. Ends with StreamFence then, before the kernel returns.
QV_INLINE void CopyRow(const Byte* src, Byte* dst, ptrdiff_t bytes, bool stream) {
  if (!stream || bytes < 8 * kVecBytes) {
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

QV_INLINE void CopyRow(const Byte* src, Byte* dst, ptrdiff_t bytes, bool) {
  memcpy(dst, src, static_cast<size_t>(bytes));
}

#endif

}  // namespace qv::QV_LEVEL

#endif
