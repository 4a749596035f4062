// What the filter needs of a level beyond the common vocabulary: rounded products, narrowing in
// order, windows of source bytes.
#ifndef QV_KERNELS_RESIZE_FILTERVECTORS_H
#define QV_KERNELS_RESIZE_FILTERVECTORS_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

#if QV_HAS_VECTORS && !defined(__AVX512VBMI__)
// Only where there is a byte permutation.
struct WideWindow {};
WideWindow LoadWideWindow(const Byte* line, const int* base);
Vec SpreadPairs(WideWindow w, Vec index);
#endif

#if defined(__AVX512VBMI__)

// (a * b + 2^14) >> 15 of signed 16-bit lanes; not for -32768 * -32768.
QV_INLINE Vec MulRounded15(Vec a, Vec b) { return _mm512_mulhrs_epi16(a, b); }

// Sums of neighbouring bytes as words.
QV_INLINE Vec AddBytePairs(Vec v) { return _mm512_maddubs_epi16(v, Splat8(1)); }

// Bytes from the words of two vectors, with saturation, in order.
QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) {
  return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7),
                                  _mm512_packus_epi16(a, b));
}

// a[0] b[0] a[1] b[1] ... as two vectors.
QV_INLINE void ZipBytes(Vec a, Vec b, Vec* low, Vec* high) {
  const Vec l = _mm512_unpacklo_epi8(a, b), h = _mm512_unpackhi_epi8(a, b);
  *low = _mm512_permutex2var_epi64(l, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), h);
  *high = _mm512_permutex2var_epi64(l, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), h);
}

// Filtered rows keep the order that PackSigned32 of samples 0 .. 15 and 16 .. 31 leaves: four of
// the first, four of the second, and so on. Bytes from two such vectors, in order of samples.
QV_INLINE Vec PackSamples(Vec a, Vec b) {
  return _mm512_permutexvar_epi32(
      _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15),
      _mm512_packus_epi16(a, b));
}
// First of the four samples at words 4 * quarter .. 4 * quarter + 3 of such a vector.
constexpr int SampleOfQuarter(int quarter) { return quarter / 2 * 4 + quarter % 2 * 16; }

// One window of source bytes a vector.
constexpr int kWindowsPerVector = 1;
using Window = Vec;
QV_INLINE Window LoadWindow(const Byte* line, const int* base) { return Load(line + base[0]); }
QV_INLINE Vec SpreadPairs(Window w, Vec index) {
  return _mm512_maskz_permutexvar_epi8(0x5555555555555555, index, w);
}
struct WideWindow {
  Vec low, high;
};
QV_INLINE WideWindow LoadWideWindow(const Byte* line, const int* base) {
  return {Load(line + base[0]), Load(line + base[0] + 64)};
}
QV_INLINE Vec SpreadPairs(WideWindow w, Vec index) {
  return _mm512_maskz_permutex2var_epi8(0x5555555555555555, w.low, index, w.high);
}

#elif defined(__AVX2__)

QV_INLINE Vec MulRounded15(Vec a, Vec b) { return _mm256_mulhrs_epi16(a, b); }

QV_INLINE Vec AddBytePairs(Vec v) { return _mm256_maddubs_epi16(v, Splat8(1)); }

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) {
  return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
}

QV_INLINE void ZipBytes(Vec a, Vec b, Vec* low, Vec* high) {
  const Vec l = _mm256_unpacklo_epi8(a, b), h = _mm256_unpackhi_epi8(a, b);
  *low = _mm256_permute2x128_si256(l, h, 0x20);
  *high = _mm256_permute2x128_si256(l, h, 0x31);
}

// Each 16-byte lane has a window of its own, and the windows are dealt out so that filtered rows
// are in order.
QV_INLINE Vec PackSamples(Vec a, Vec b) { return PackBytesInOrder(a, b); }
constexpr int SampleOfQuarter(int quarter) { return quarter * 4; }

constexpr int kWindowsPerVector = 2;
using Window = Vec;
QV_INLINE Window LoadWindow(const Byte* line, const int* base) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(Load16(line + base[0])),
                                 Load16(line + base[1]), 1);
}
QV_INLINE Vec SpreadPairs(Window w, Vec index) { return ShuffleBytes(w, index); }

#elif QV_HAS_VECTORS

#if defined(__SSSE3__)
QV_INLINE Vec MulRounded15(Vec a, Vec b) { return _mm_mulhrs_epi16(a, b); }
QV_INLINE Vec AddBytePairs(Vec v) { return _mm_maddubs_epi16(v, Splat8(1)); }
QV_INLINE Vec SpreadPairs(Vec w, Vec index) { return ShuffleBytes(w, index); }
#else
// From the halves of the product: (high * 2^16 + low + 2^14) >> 15 with low unsigned.
QV_INLINE Vec MulRounded15(Vec a, Vec b) {
  const Vec low = _mm_srli_epi16(_mm_mullo_epi16(a, b), 14);
  return _mm_add_epi16(_mm_slli_epi16(_mm_mulhi_epi16(a, b), 1),
                       _mm_srli_epi16(_mm_add_epi16(low, _mm_set1_epi16(1)), 1));
}
QV_INLINE Vec AddBytePairs(Vec v) {
  return _mm_add_epi16(_mm_and_si128(v, _mm_set1_epi16(255)), _mm_srli_epi16(v, 8));
}
Vec SpreadPairs(Vec w, Vec index);
#endif

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) { return _mm_packus_epi16(a, b); }

QV_INLINE void ZipBytes(Vec a, Vec b, Vec* low, Vec* high) {
  *low = _mm_unpacklo_epi8(a, b);
  *high = _mm_unpackhi_epi8(a, b);
}

QV_INLINE Vec PackSamples(Vec a, Vec b) { return PackBytesInOrder(a, b); }
constexpr int SampleOfQuarter(int quarter) { return quarter * 4; }

constexpr int kWindowsPerVector = 1;
using Window = Vec;
QV_INLINE Window LoadWindow(const Byte* line, const int* base) { return Load16(line + base[0]); }

#endif

}  // namespace qv::QV_LEVEL

#endif
