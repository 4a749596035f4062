// 16-byte vectors of an SSSE3 processor.
#ifndef QV_KERNELS_LEVEL_SSSE3_H
#define QV_KERNELS_LEVEL_SSSE3_H

#include <tmmintrin.h>

#define QV_HAS_VECTORS 1

namespace qv::QV_LEVEL {

constexpr bool kHasByteShuffle = true;
constexpr bool kHasBytePermute = false;
constexpr bool kHasMaskedBytes = false;

#include "kernels/level/vec128.inc"

QV_INLINE Vec ShuffleBytes(Vec v, Vec index) { return _mm_shuffle_epi8(v, index); }

QV_INLINE Vec ReverseBytes(Vec v) {
  return _mm_shuffle_epi8(v, _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
}

Vec PermuteBytes(Vec v, Vec index);
Vec PermuteBytes2(Vec low, Vec index, Vec high);
Vec PermuteBytesOver(Vec base, unsigned long long mask, Vec v, Vec index);
Vec Select(unsigned long long mask, Vec a, Vec b);
unsigned long long TopBits(Vec v);
Vec LoadPart(const void* p, unsigned long long mask);
void StorePart(void* p, Vec v, unsigned long long mask);

// Both 16-byte lanes as the lowest, or as the highest, of them.
QV_INLINE Vec LowLaneTwice(Vec v) { return v; }
QV_INLINE Vec HighLaneTwice(Vec v) { return v; }

// Single 16-byte vectors, for three-byte pixels (five in 15 bytes) at every width.
using Vec16 = __m128i;
QV_INLINE Vec16 Load16(const void* p) { return _mm_loadu_si128(static_cast<const Vec16*>(p)); }
QV_INLINE void Store16(void* p, Vec16 v) { _mm_storeu_si128(static_cast<Vec16*>(p), v); }
QV_INLINE Vec16 ShuffleBytes16(Vec16 v, Vec16 index) { return _mm_shuffle_epi8(v, index); }

}  // namespace qv::QV_LEVEL

#endif
