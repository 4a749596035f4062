// What resizing needs of a level beyond the common vocabulary: rounded products, sums of bytes,
// narrowing in order, windows of source bytes.
#ifndef QV_KERNELS_RESIZE_RESIZEVECTORS_H
#define QV_KERNELS_RESIZE_RESIZEVECTORS_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

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

#if defined(__SSSE3__)

// (a * b + 2^14) >> 15 of signed 16-bit lanes; not for -32768 * -32768.
QV_INLINE Vec MulRounded15(Vec a, Vec b) { return QV_OP(mulhrs_epi16)(a, b); }

// Sums of neighbouring bytes as words.
QV_INLINE Vec AddBytePairs(Vec v) { return MulAddBytes(v, Splat8(1)); }

#else

// From the halves of the product: (high * 2^16 + low + 2^14) >> 15 with low unsigned.
QV_INLINE Vec MulRounded15(Vec a, Vec b) {
  const Vec low = ShiftRight16<14>(MulLow16(a, b));
  return Add16(ShiftLeft16<1>(MulHighSigned16(a, b)), ShiftRight16<1>(Add16(low, Splat16(1))));
}
QV_INLINE Vec AddBytePairs(Vec v) { return Add16(And(v, Splat16(255)), ShiftRight16<8>(v)); }

#endif

#if defined(__AVX512VBMI__)

// Bytes from the words of two vectors, with saturation, in order.
QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) {
  return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), PackUnsigned16(a, b));
}

// Filtered rows keep the order that PackSigned32 of samples 0 .. 15 and 16 .. 31 leaves: four of
// the first, four of the second, and so on. Bytes from two such vectors, in order of samples.
QV_INLINE Vec PackSamples(Vec a, Vec b) {
  return _mm512_permutexvar_epi32(
      _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15),
      PackUnsigned16(a, b));
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

#else

QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) {
#if defined(__AVX2__)
  return _mm256_permute4x64_epi64(PackUnsigned16(a, b), 0xD8);
#else
  return PackUnsigned16(a, b);
#endif
}

// Each 16-byte lane has a window of its own, and the windows are dealt out so that filtered rows
// are in order.
QV_INLINE Vec PackSamples(Vec a, Vec b) { return PackBytesInOrder(a, b); }
QV_INLINE ptrdiff_t RingPlace(ptrdiff_t k) { return k; }

constexpr int kWindowsPerVector = kVecBytes / 16;
using Window = Vec;
QV_INLINE Window LoadWindow(const Byte* line, const int* base) {
  return LoadLanes([=](int i) { return line + base[i]; });
}
QV_INLINE Vec SpreadPairs(Window w, Vec index) { return ShuffleBytes(w, index); }

// Only where there is a byte permutation.
struct WideWindow {};
WideWindow LoadWideWindow(const Byte* line, const int* base);
Vec SpreadPairs(WideWindow w, Vec index);

#endif

#endif  // QV_HAS_VECTORS

}  // namespace qv::QV_LEVEL

#endif
