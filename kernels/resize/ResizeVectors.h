// What resizing needs of a level beyond the common vocabulary: rounded products, sums of bytes,
// narrowing in order, windows of source bytes.
#ifndef QV_KERNELS_RESIZE_RESIZEVECTORS_H
#define QV_KERNELS_RESIZE_RESIZEVECTORS_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

#if QV_HAS_VECTORS && !defined(__AVX512VBMI__)
// Only where there is a byte permutation.
struct WideWindow {};
WideWindow LoadWideWindow(const Byte* line, const int* base);
Vec SpreadPairs(WideWindow w, Vec index);
#endif

#if QV_HAS_VECTORS

// A row of `bytes` bytes, shorter than the loads, to where it can be read by them. Where there are
// masked loads it is stored as it is loaded again, which the processor forwards.
QV_INLINE void CopyShortRow(const Byte* row, ptrdiff_t bytes, Byte* copy) {
  if constexpr (kHasMaskedBytes) {
    for (ptrdiff_t l = 0; l < bytes; l += kVecBytes)
      Store(copy + l, LoadPart(row + l, FirstOf64(bytes, l)));
  } else {
    memcpy(copy, row, static_cast<size_t>(bytes));
  }
}

#endif

#if QV_HAS_VECTORS && defined(__SSSE3__)
QV_INLINE Vec16 MulAddBytes16(Vec16 a, Vec16 b) { return _mm_maddubs_epi16(a, b); }
#elif QV_HAS_VECTORS
Vec16 MulAddBytes16(Vec16 a, Vec16 b);
#endif

#if defined(__AVX512VBMI__)

// (a * b + 2^14) >> 15 of signed 16-bit lanes; not for -32768 * -32768.
QV_INLINE Vec MulRounded15(Vec a, Vec b) { return _mm512_mulhrs_epi16(a, b); }

// Sums of neighbouring bytes as words; of neighbouring products of unsigned and signed bytes.
QV_INLINE Vec AddBytePairs(Vec v) { return _mm512_maddubs_epi16(v, Splat8(1)); }
QV_INLINE Vec MulAddBytes(Vec a, Vec b) { return _mm512_maddubs_epi16(a, b); }

// Bytes from the words of two vectors, with saturation, in order.
QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) {
  return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7),
                                  _mm512_packus_epi16(a, b));
}

// Filtered rows keep the order that PackSigned32 of samples 0 .. 15 and 16 .. 31 leaves: four of
// the first, four of the second, and so on. Bytes from two such vectors, in order of samples.
QV_INLINE Vec PackSamples(Vec a, Vec b) {
  return _mm512_permutexvar_epi32(
      _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15),
      _mm512_packus_epi16(a, b));
}
// Where value k of a row is.
QV_INLINE ptrdiff_t RingPlace(ptrdiff_t k) {
  return (k & ~ptrdiff_t{31}) + (k & 15) / 4 * 8 + (k & 16) / 4 + (k & 3);
}

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
QV_INLINE Vec MulAddBytes(Vec a, Vec b) { return _mm256_maddubs_epi16(a, b); }

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) {
  return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
}

// Each 16-byte lane has a window of its own, and the windows are dealt out so that filtered rows
// are in order.
QV_INLINE Vec PackSamples(Vec a, Vec b) { return PackBytesInOrder(a, b); }
QV_INLINE ptrdiff_t RingPlace(ptrdiff_t k) { return k; }

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
QV_INLINE Vec MulAddBytes(Vec a, Vec b) { return _mm_maddubs_epi16(a, b); }
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
Vec MulAddBytes(Vec a, Vec b);
Vec SpreadPairs(Vec w, Vec index);
#endif

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) { return _mm_packus_epi16(a, b); }

QV_INLINE Vec PackSamples(Vec a, Vec b) { return PackBytesInOrder(a, b); }
QV_INLINE ptrdiff_t RingPlace(ptrdiff_t k) { return k; }

constexpr int kWindowsPerVector = 1;
using Window = Vec;
QV_INLINE Window LoadWindow(const Byte* line, const int* base) { return Load16(line + base[0]); }

#endif

}  // namespace qv::QV_LEVEL

#endif
