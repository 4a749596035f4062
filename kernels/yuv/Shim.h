#ifndef QV_KERNELS_YUV_SHIM_H
#define QV_KERNELS_YUV_SHIM_H
#include "kernels/color/ColorVectors.h"
#if QV_HAS_VECTORS
namespace qv::QV_LEVEL {
QV_INLINE Vec AddSaturatedSigned16(Vec a, Vec b) { return QV_OP(adds_epi16)(a, b); }
QV_INLINE Vec AverageUp16(Vec a, Vec b) { return QV_OP(avg_epu16)(a, b); }
template <int n> QV_INLINE Vec ShiftRightSigned16(Vec v) { return QV_OP(srai_epi16)(v, n); }
#if defined(__AVX512VBMI__)
QV_INLINE Vec LoadBytesAs16(const void* p) {
  return _mm512_cvtepu8_epi16(_mm256_loadu_si256(static_cast<const __m256i*>(p)));
}
QV_INLINE void StoreLowHalf(void* p, Vec v) {
  _mm256_storeu_si256(static_cast<__m256i*>(p), _mm512_castsi512_si256(v));
}
QV_INLINE Vec LoadSplat128(const void* p) {
  return _mm512_broadcast_i32x4(_mm_loadu_si128(static_cast<const __m128i*>(p)));
}
QV_INLINE Vec PackBytesInOrder(Vec a, Vec) { return a; }
QV_INLINE Vec JoinHalves(Vec a, Vec b) { return _mm512_shuffle_i64x2(a, b, 0x44); }
QV_INLINE Vec JoinHighHalves(Vec a, Vec b) { return _mm512_shuffle_i64x2(a, b, 0xEE); }
#elif defined(__AVX2__)
QV_INLINE Vec LoadBytesAs16(const void* p) {
  return _mm256_cvtepu8_epi16(_mm_loadu_si128(static_cast<const __m128i*>(p)));
}
QV_INLINE void StoreLowHalf(void* p, Vec v) {
  _mm_storeu_si128(static_cast<__m128i*>(p), _mm256_castsi256_si128(v));
}
QV_INLINE Vec LoadSplat128(const void* p) {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(p)));
}
QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) {
  return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
}
QV_INLINE Vec JoinEvenLanes(Vec a, Vec b) { return _mm256_permute2x128_si256(a, b, 0x20); }
QV_INLINE Vec JoinOddLanes(Vec a, Vec b) { return _mm256_permute2x128_si256(a, b, 0x31); }
Vec JoinHalves(Vec a, Vec b);
Vec JoinHighHalves(Vec a, Vec b);
#else
QV_INLINE Vec LoadBytesAs16(const void* p) {
  return _mm_unpacklo_epi8(_mm_loadl_epi64(static_cast<const Vec*>(p)), _mm_setzero_si128());
}
QV_INLINE void StoreLowHalf(void* p, Vec v) { _mm_storel_epi64(static_cast<Vec*>(p), v); }
QV_INLINE Vec LoadSplat128(const void* p) { return _mm_loadu_si128(static_cast<const Vec*>(p)); }
QV_INLINE Vec PackBytesInOrder(Vec a, Vec b) { return _mm_packus_epi16(a, b); }
QV_INLINE Vec JoinEvenLanes(Vec a, Vec) { return a; }
QV_INLINE Vec JoinOddLanes(Vec, Vec b) { return b; }
Vec JoinHalves(Vec a, Vec b);
Vec JoinHighHalves(Vec a, Vec b);
#endif
// Bytes 0, 2, 4, ... or 1, 3, 5, ... of two vectors that follow each other.
QV_INLINE Vec EvenBytes(Vec low, Vec high) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index = MakeByteTable([](int i) { return 2 * i; });
    return PermuteBytes2(low, Load(index.b), high);
  }
  return PackBytesInOrder(And(low, Splat16(0xff)), And(high, Splat16(0xff)));
}

QV_INLINE Vec OddBytes(Vec low, Vec high) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index = MakeByteTable([](int i) { return 2 * i + 1; });
    return PermuteBytes2(low, Load(index.b), high);
  }
  return PackBytesInOrder(ShiftRight16<8>(low), ShiftRight16<8>(high));
}
}  // namespace qv::QV_LEVEL
#endif
#endif
