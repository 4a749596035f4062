// What turning and warping need of a level beyond the common vocabulary.
#ifndef QV_KERNELS_GEOMETRY_GEOMETRYVECTORS_H
#define QV_KERNELS_GEOMETRY_GEOMETRYVECTORS_H

#include "kernels/level/Level.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

constexpr int kLanes128 = kVecBytes / 16;

// 16 bytes of each of kLanes128 rows, `apart` bytes from row to row.
QV_INLINE Vec LoadLanes(const Byte* p, ptrdiff_t apart) {
  return LoadLanes([=](int i) { return p + i * apart; });
}

// Stores the first three bytes of each of the kVecBytes / 4 groups of four, without gaps: exactly
// 3 * kVecBytes / 4 bytes are written.
#if defined(__AVX512F__)
QV_INLINE void StoreTriples(Byte* p, Vec v) {
  constexpr auto kPack = MakeByteTable([](int i) { return i < 48 ? i / 3 * 4 + i % 3 : 0; });
  StorePart(p, PermuteBytes(v, Load(&kPack)), (1ull << 48) - 1);
}
#elif defined(__SSSE3__)
QV_INLINE void StoreTriples(Byte* p, Vec v) {
#if defined(__AVX2__)
  const __m128i index = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
  v = ShuffleBytes(v, _mm256_broadcastsi128_si256(index));
  v = _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(v));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), _mm256_extracti128_si256(v, 1));
#else
  const __m128i index = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
  v = ShuffleBytes(v, index);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
  const int rest = _mm_cvtsi128_si32(_mm_srli_si128(v, 8));
  memcpy(p + 8, &rest, 4);
#endif
}
#else
QV_INLINE void StoreTriples(Byte* p, Vec v) {
  Byte bytes[16];
  Store(bytes, v);
  for (int i = 0; i < 3; ++i) memcpy(p + 3 * i, bytes + 4 * i, 4);
  memcpy(p + 9, bytes + 12, 3);
}
#endif

}  // namespace qv::QV_LEVEL

#endif  // QV_HAS_VECTORS

#endif
