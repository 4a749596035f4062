// Fetching what rows of a large frame, or checksums of a long message, will read or store.
#ifndef QV_KERNELS_LEVEL_AHEAD_H
#define QV_KERNELS_LEVEL_AHEAD_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

// Processors fetch ahead by themselves, but not from a page to the next: this is for frames that
// come from memory. A page ahead was the best distance; half of it was slower than nothing, and so
// was all of it for frames that the caches hold. Messages gain from the size on that the second
// level of cache does not hold.
constexpr ptrdiff_t kPageBytes = 4096;
constexpr ptrdiff_t kLongMessage = ptrdiff_t{1} << 20;

// `bytes` bytes, line by line.
template <int bytes>
QV_INLINE void Prefetch(const Byte* p) {
  for (int line = 0; line < bytes; line += 64) __builtin_prefetch(p + line);
}

// The same of bytes that are going to be stored.
template <int bytes>
QV_INLINE void PrefetchToStore(Byte* p) {
  for (int line = 0; line < bytes; line += 64) __builtin_prefetch(p + line, 1);
}

}  // namespace qv::QV_LEVEL

#endif
