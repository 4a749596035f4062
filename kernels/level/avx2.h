// 32-byte vectors of an AVX2 processor.
#ifndef QV_KERNELS_LEVEL_AVX2_H
#define QV_KERNELS_LEVEL_AVX2_H

#include <immintrin.h>

#define QV_HAS_VECTORS 1

namespace qv::QV_LEVEL {

constexpr bool kHasByteShuffle = true;
constexpr bool kHasBytePermute = false;
constexpr bool kHasMaskedBytes = false;

using Vec = __m256i;
constexpr int kVecBytes = 32;

QV_INLINE Vec Load(const void* p) { return _mm256_loadu_si256(static_cast<const Vec*>(p)); }
QV_INLINE void Store(void* p, Vec v) { _mm256_storeu_si256(static_cast<Vec*>(p), v); }
QV_INLINE void StreamStore(void* p, Vec v) { _mm256_stream_si256(static_cast<Vec*>(p), v); }
QV_INLINE void StreamFence() { _mm_sfence(); }

QV_INLINE Vec Zero() { return _mm256_setzero_si256(); }
QV_INLINE Vec Splat8(int x) { return _mm256_set1_epi8(static_cast<char>(x)); }
QV_INLINE Vec Splat16(int x) { return _mm256_set1_epi16(static_cast<short>(x)); }
QV_INLINE Vec Splat32(int x) { return _mm256_set1_epi32(x); }

QV_INLINE Vec And(Vec a, Vec b) { return _mm256_and_si256(a, b); }
QV_INLINE Vec Or(Vec a, Vec b) { return _mm256_or_si256(a, b); }
QV_INLINE Vec Xor(Vec a, Vec b) { return _mm256_xor_si256(a, b); }

QV_INLINE Vec Add8(Vec a, Vec b) { return _mm256_add_epi8(a, b); }
QV_INLINE Vec Add16(Vec a, Vec b) { return _mm256_add_epi16(a, b); }
QV_INLINE Vec Add32(Vec a, Vec b) { return _mm256_add_epi32(a, b); }
QV_INLINE Vec Sub8(Vec a, Vec b) { return _mm256_sub_epi8(a, b); }
QV_INLINE Vec Sub16(Vec a, Vec b) { return _mm256_sub_epi16(a, b); }
QV_INLINE Vec Sub32(Vec a, Vec b) { return _mm256_sub_epi32(a, b); }
QV_INLINE Vec AddSaturated8(Vec a, Vec b) { return _mm256_adds_epu8(a, b); }
QV_INLINE Vec SubSaturated8(Vec a, Vec b) { return _mm256_subs_epu8(a, b); }

QV_INLINE Vec MulLow16(Vec a, Vec b) { return _mm256_mullo_epi16(a, b); }
QV_INLINE Vec MulHighUnsigned16(Vec a, Vec b) { return _mm256_mulhi_epu16(a, b); }
QV_INLINE Vec MulHighSigned16(Vec a, Vec b) { return _mm256_mulhi_epi16(a, b); }
QV_INLINE Vec MulAddPairs16(Vec a, Vec b) { return _mm256_madd_epi16(a, b); }

template <int n> QV_INLINE Vec ShiftLeft16(Vec v) { return _mm256_slli_epi16(v, n); }
template <int n> QV_INLINE Vec ShiftRight16(Vec v) { return _mm256_srli_epi16(v, n); }
template <int n> QV_INLINE Vec ShiftLeft32(Vec v) { return _mm256_slli_epi32(v, n); }
template <int n> QV_INLINE Vec ShiftRight32(Vec v) { return _mm256_srli_epi32(v, n); }
template <int n> QV_INLINE Vec ShiftRightSigned32(Vec v) { return _mm256_srai_epi32(v, n); }

QV_INLINE Vec InterleaveLow8(Vec a, Vec b) { return _mm256_unpacklo_epi8(a, b); }
QV_INLINE Vec InterleaveHigh8(Vec a, Vec b) { return _mm256_unpackhi_epi8(a, b); }
QV_INLINE Vec InterleaveLow16(Vec a, Vec b) { return _mm256_unpacklo_epi16(a, b); }
QV_INLINE Vec InterleaveHigh16(Vec a, Vec b) { return _mm256_unpackhi_epi16(a, b); }
QV_INLINE Vec InterleaveLow32(Vec a, Vec b) { return _mm256_unpacklo_epi32(a, b); }
QV_INLINE Vec InterleaveHigh32(Vec a, Vec b) { return _mm256_unpackhi_epi32(a, b); }
QV_INLINE Vec PackUnsigned16(Vec a, Vec b) { return _mm256_packus_epi16(a, b); }
QV_INLINE Vec PackSigned32(Vec a, Vec b) { return _mm256_packs_epi32(a, b); }

// Within each 16-byte lane; an index byte with its top bit set gives 0.
QV_INLINE Vec ShuffleBytes(Vec v, Vec index) { return _mm256_shuffle_epi8(v, index); }

QV_INLINE Vec ReverseBytes(Vec v) {
  const Vec index = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
  return _mm256_permute4x64_epi64(_mm256_shuffle_epi8(v, index), _MM_SHUFFLE(1, 0, 3, 2));
}

Vec PermuteBytes(Vec v, Vec index);
Vec PermuteBytes2(Vec low, Vec index, Vec high);
Vec PermuteBytesOver(Vec base, unsigned long long mask, Vec v, Vec index);
Vec Select(unsigned long long mask, Vec a, Vec b);
unsigned long long TopBits(Vec v);
Vec LoadPart(const void* p, unsigned long long mask);
void StorePart(void* p, Vec v, unsigned long long mask);

// Both 16-byte lanes as the lowest, or as the highest, of them.
QV_INLINE Vec LowLaneTwice(Vec v) { return _mm256_permute4x64_epi64(v, 0x44); }
QV_INLINE Vec HighLaneTwice(Vec v) { return _mm256_permute4x64_epi64(v, 0xEE); }

// Single 16-byte vectors, for three-byte pixels (five in 15 bytes) at every width.
using Vec16 = __m128i;
QV_INLINE Vec16 Load16(const void* p) { return _mm_loadu_si128(static_cast<const Vec16*>(p)); }
QV_INLINE void Store16(void* p, Vec16 v) { _mm_storeu_si128(static_cast<Vec16*>(p), v); }
QV_INLINE Vec16 ShuffleBytes16(Vec16 v, Vec16 index) { return _mm_shuffle_epi8(v, index); }

// Averages: (a + b + 1) / 2 of bytes, truncated.
QV_INLINE Vec AverageUp8(Vec a, Vec b) { return _mm256_avg_epu8(a, b); }

}  // namespace qv::QV_LEVEL

#endif
