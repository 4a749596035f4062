// 16-byte vectors of an SSE2 processor.
#ifndef QV_KERNELS_LEVEL_SSE2_H
#define QV_KERNELS_LEVEL_SSE2_H

#include <emmintrin.h>

#define QV_HAS_VECTORS 1

namespace qv::QV_LEVEL {

constexpr bool kHasByteShuffle = false;
constexpr bool kHasBytePermute = false;
constexpr bool kHasMaskedBytes = false;

#include "kernels/level/vec128.inc"

QV_INLINE Vec ReverseBytes(Vec v) {
  v = _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
  v = _mm_shufflelo_epi16(v, _MM_SHUFFLE(0, 1, 2, 3));
  v = _mm_shufflehi_epi16(v, _MM_SHUFFLE(0, 1, 2, 3));
  return _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2));
}

Vec ShuffleBytes(Vec v, Vec index);
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
Vec16 ShuffleBytes16(Vec16 v, Vec16 index);

}  // namespace qv::QV_LEVEL

#endif
