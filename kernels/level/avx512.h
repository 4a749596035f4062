// 64-byte vectors of a processor with AVX-512 F, BW, VL, DQ and VBMI.
#ifndef QV_KERNELS_LEVEL_AVX512_H
#define QV_KERNELS_LEVEL_AVX512_H

#include <immintrin.h>

#define QV_HAS_VECTORS 1

namespace qv::QV_LEVEL {

constexpr bool kHasByteShuffle = true;
constexpr bool kHasBytePermute = true;
constexpr bool kHasMaskedBytes = true;

using Vec = __m512i;
constexpr int kVecBytes = 64;

QV_INLINE Vec Load(const void* p) { return _mm512_loadu_si512(p); }
QV_INLINE void Store(void* p, Vec v) { _mm512_storeu_si512(p, v); }
QV_INLINE void StreamStore(void* p, Vec v) { _mm512_stream_si512(static_cast<Vec*>(p), v); }
QV_INLINE void StreamFence() { _mm_sfence(); }

QV_INLINE Vec Zero() { return _mm512_setzero_si512(); }
QV_INLINE Vec Splat8(int x) { return _mm512_set1_epi8(static_cast<char>(x)); }
QV_INLINE Vec Splat16(int x) { return _mm512_set1_epi16(static_cast<short>(x)); }
QV_INLINE Vec Splat32(int x) { return _mm512_set1_epi32(x); }

QV_INLINE Vec And(Vec a, Vec b) { return _mm512_and_si512(a, b); }
QV_INLINE Vec Or(Vec a, Vec b) { return _mm512_or_si512(a, b); }
QV_INLINE Vec Xor(Vec a, Vec b) { return _mm512_xor_si512(a, b); }

QV_INLINE Vec Add8(Vec a, Vec b) { return _mm512_add_epi8(a, b); }
QV_INLINE Vec Add16(Vec a, Vec b) { return _mm512_add_epi16(a, b); }
QV_INLINE Vec Add32(Vec a, Vec b) { return _mm512_add_epi32(a, b); }
QV_INLINE Vec Sub8(Vec a, Vec b) { return _mm512_sub_epi8(a, b); }
QV_INLINE Vec Sub16(Vec a, Vec b) { return _mm512_sub_epi16(a, b); }
QV_INLINE Vec Sub32(Vec a, Vec b) { return _mm512_sub_epi32(a, b); }
QV_INLINE Vec AddSaturated8(Vec a, Vec b) { return _mm512_adds_epu8(a, b); }
QV_INLINE Vec SubSaturated8(Vec a, Vec b) { return _mm512_subs_epu8(a, b); }

QV_INLINE Vec MulLow16(Vec a, Vec b) { return _mm512_mullo_epi16(a, b); }
QV_INLINE Vec MulHighUnsigned16(Vec a, Vec b) { return _mm512_mulhi_epu16(a, b); }
QV_INLINE Vec MulHighSigned16(Vec a, Vec b) { return _mm512_mulhi_epi16(a, b); }
QV_INLINE Vec MulAddPairs16(Vec a, Vec b) { return _mm512_madd_epi16(a, b); }

template <int n> QV_INLINE Vec ShiftLeft16(Vec v) { return _mm512_slli_epi16(v, n); }
template <int n> QV_INLINE Vec ShiftRight16(Vec v) { return _mm512_srli_epi16(v, n); }
template <int n> QV_INLINE Vec ShiftLeft32(Vec v) { return _mm512_slli_epi32(v, n); }
template <int n> QV_INLINE Vec ShiftRight32(Vec v) { return _mm512_srli_epi32(v, n); }
template <int n> QV_INLINE Vec ShiftRightSigned32(Vec v) { return _mm512_srai_epi32(v, n); }

QV_INLINE Vec InterleaveLow8(Vec a, Vec b) { return _mm512_unpacklo_epi8(a, b); }
QV_INLINE Vec InterleaveHigh8(Vec a, Vec b) { return _mm512_unpackhi_epi8(a, b); }
QV_INLINE Vec InterleaveLow16(Vec a, Vec b) { return _mm512_unpacklo_epi16(a, b); }
QV_INLINE Vec InterleaveHigh16(Vec a, Vec b) { return _mm512_unpackhi_epi16(a, b); }
QV_INLINE Vec InterleaveLow32(Vec a, Vec b) { return _mm512_unpacklo_epi32(a, b); }
QV_INLINE Vec InterleaveHigh32(Vec a, Vec b) { return _mm512_unpackhi_epi32(a, b); }
QV_INLINE Vec PackUnsigned16(Vec a, Vec b) { return _mm512_packus_epi16(a, b); }
QV_INLINE Vec PackSigned32(Vec a, Vec b) { return _mm512_packs_epi32(a, b); }

// Within each 16-byte lane; an index byte with its top bit set gives 0.
QV_INLINE Vec ShuffleBytes(Vec v, Vec index) { return _mm512_shuffle_epi8(v, index); }

// Across the whole vector, by the low six bits of each index byte (seven for two vectors).
QV_INLINE Vec PermuteBytes(Vec v, Vec index) { return _mm512_permutexvar_epi8(index, v); }
QV_INLINE Vec PermuteBytes2(Vec low, Vec index, Vec high) {
  return _mm512_permutex2var_epi8(low, index, high);
}

// Bytes whose mask bit is clear are neither read nor written (and load as 0).
QV_INLINE Vec LoadPart(const void* p, unsigned long long mask) {
  return _mm512_maskz_loadu_epi8(mask, p);
}
QV_INLINE void StorePart(void* p, Vec v, unsigned long long mask) {
  _mm512_mask_storeu_epi8(p, mask, v);
}

// PermuteBytes(v, index) in the bytes whose mask bit is set, `base` in the others.
QV_INLINE Vec PermuteBytesOver(Vec base, unsigned long long mask, Vec v, Vec index) {
  return _mm512_mask_permutexvar_epi8(base, mask, index, v);
}

// `b` in the bytes whose mask bit is set, `a` in the others; and the mask of the bytes above 127.
QV_INLINE Vec Select(unsigned long long mask, Vec a, Vec b) {
  return _mm512_mask_blend_epi8(mask, a, b);
}
QV_INLINE unsigned long long TopBits(Vec v) { return _mm512_movepi8_mask(v); }

QV_INLINE Vec ReverseBytes(Vec v) {
  const Vec index = _mm512_set_epi8(
      0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24,
      25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47,
      48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63);
  return _mm512_permutexvar_epi8(index, v);
}

Vec LowLaneTwice(Vec v);
Vec HighLaneTwice(Vec v);

// Single 16-byte vectors, for three-byte pixels (five in 15 bytes) at every width.
using Vec16 = __m128i;
QV_INLINE Vec16 Load16(const void* p) { return _mm_loadu_si128(static_cast<const Vec16*>(p)); }
QV_INLINE void Store16(void* p, Vec16 v) { _mm_storeu_si128(static_cast<Vec16*>(p), v); }
QV_INLINE Vec16 ShuffleBytes16(Vec16 v, Vec16 index) { return _mm_shuffle_epi8(v, index); }

// Averages: (a + b + 1) / 2 of bytes, truncated.
QV_INLINE Vec AverageUp8(Vec a, Vec b) { return _mm512_avg_epu8(a, b); }

}  // namespace qv::QV_LEVEL

#endif
