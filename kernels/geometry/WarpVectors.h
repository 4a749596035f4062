// What warping needs of a level beyond the common vocabulary: arithmetic on 32-bit lanes and
// fetches from scattered addresses.
#ifndef QV_KERNELS_GEOMETRY_WARPVECTORS_H
#define QV_KERNELS_GEOMETRY_WARPVECTORS_H

#include "kernels/geometry/GeometryVectors.h"
#include "kernels/level/Floats.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

#if defined(__AVX2__)
QV_INLINE Vec Min32(Vec a, Vec b) { return QV_OP(min_epi32)(a, b); }
QV_INLINE Vec Max32(Vec a, Vec b) { return QV_OP(max_epi32)(a, b); }
QV_INLINE Vec MulLow32(Vec a, Vec b) { return QV_OP(mullo_epi32)(a, b); }
#else
QV_INLINE Vec Min32(Vec a, Vec b) { return Select(_mm_cmpgt_epi32(a, b), b, a); }
QV_INLINE Vec Max32(Vec a, Vec b) { return Select(_mm_cmpgt_epi32(a, b), a, b); }
QV_INLINE Vec MulLow32(Vec a, Vec b) {
  const Vec even = _mm_mul_epu32(a, b);
  const Vec odd = _mm_mul_epu32(_mm_srli_epi64(a, 32), _mm_srli_epi64(b, 32));
  return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, _MM_SHUFFLE(0, 0, 2, 0)),
                            _mm_shuffle_epi32(odd, _MM_SHUFFLE(0, 0, 2, 0)));
}
#endif

// Whether any lane is negative; and lane `lane` of each 16-byte lane in all four of it.
#if defined(__AVX512F__)
QV_INLINE bool AnyNegative32(Vec v) { return _mm512_movepi32_mask(v) != 0; }
template <int lane> QV_INLINE Vec SplatInLanes32(Vec v) {
  return _mm512_shuffle_epi32(v, static_cast<_MM_PERM_ENUM>(lane * 0x55));
}
#else
QV_INLINE bool AnyNegative32(Vec v) { return QV_OP(movemask_ps)(AsFloats(v)) != 0; }
template <int lane> QV_INLINE Vec SplatInLanes32(Vec v) {
  return QV_OP(shuffle_epi32)(v, lane * 0x55);
}
#endif

#if defined(__AVX512F__)

QV_INLINE void StoreLowBytes(Byte* p, Vec v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm512_cvtepi32_epi8(v));
}
QV_INLINE void StoreAsBytes(Byte* p, Vec v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p),
                   _mm512_cvtusepi32_epi8(_mm512_max_epi32(v, Zero())));
}

#elif defined(__AVX2__)

QV_INLINE void StoreLowBytes(Byte* p, Vec v) {
  const __m256i low = _mm256_shuffle_epi8(
      v, _mm256_broadcastsi128_si256(
             _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p),
                   _mm_unpacklo_epi32(_mm256_castsi256_si128(low),
                                      _mm256_extracti128_si256(low, 1)));
}
QV_INLINE void StoreAsBytes(Byte* p, Vec v) {
  v = _mm256_packus_epi16(_mm256_packs_epi32(v, v), v);
  v = _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 4, 0, 0, 0, 0, 0, 0));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(v));
}

#else

QV_INLINE void StoreAsBytes(Byte* p, Vec v) {
  v = _mm_packs_epi32(v, v);
  const int bits = _mm_cvtsi128_si32(_mm_packus_epi16(v, v));
  memcpy(p, &bits, 4);
}
QV_INLINE void StoreLowBytes(Byte* p, Vec v) {
  StoreAsBytes(p, _mm_and_si128(v, _mm_set1_epi32(255)));
}

#endif

// StoreAsBytes saturates 32-bit lanes, StoreLowBytes cuts them off; both store kLanes32 bytes.

// Fetches from base + offset, by gathers or by as many loads, whichever this processor does faster.
// `at` are byte offsets in memory, one a 32-bit lane. Fetch32: 4 bytes for each lane. Fetch64<h>: 8
// bytes for lanes 2 h and 2 h + 1 of each four, so that EvenLanes32 and OddLanes32 of both halves
// are the first and the last 4 bytes of each lane. Fetch128<k>: 16 bytes for lane k of each four.
template <bool kGathers> QV_INLINE Vec Fetch32(const Byte* base, const int* at) {
  if constexpr (kGathers) return Gather32(base, Load(at));
  return LoadPieces32([=](int i) { return base + at[i]; });
}
template <bool kGathers, int kHalf> QV_INLINE Vec Fetch64(const Byte* base, const int* at) {
  if constexpr (kGathers) return Gather64<kHalf>(base, Load(at));
  return LoadPieces64([=](int i) { return base + at[i / 2 * 4 + 2 * kHalf + i % 2]; });
}
template <int kPart> QV_INLINE Vec Fetch128(const Byte* base, const int* at) {
  return LoadLanes([=](int i) { return base + at[4 * i + kPart]; });
}

// Bytes kFirst and kSecond of each 32-bit lane, as 16-bit halves.
template <int kFirst, int kSecond> QV_INLINE Vec SpreadPair(Vec v) {
  if constexpr (kHasByteShuffle) {
    static constexpr auto kIndex = MakeByteTable([](int i) {
      return i % 4 == 0 ? i % 16 + kFirst : i % 4 == 2 ? i % 16 - 2 + kSecond : 0x80;
    });
    return ShuffleBytes(v, Load(&kIndex));
  } else {
    const Vec second =
        kSecond < 2 ? ShiftLeft32<8 * (2 - kSecond)>(v) : ShiftRight32<8 * (kSecond - 2)>(v);
    return Or(And(ShiftRight32<8 * kFirst>(v), Splat32(0xFF)), And(second, Splat32(0xFF0000)));
  }
}

// The three channels of a pixel and its right neighbour, as 16-bit halves of 32-bit lanes.
struct PixelPairs {
  Vec b, g, r;
};
template <bool kGathers> QV_INLINE PixelPairs FetchPairs(const Byte* base, const int* at) {
  const Vec low = Fetch64<kGathers, 0>(base, at), high = Fetch64<kGathers, 1>(base, at);
  const Vec bgrb = EvenLanes32(low, high), gr = OddLanes32(low, high);
  const Vec grgr = Or(And(ShiftRight32<8>(bgrb), Splat32(0xFFFF)), ShiftLeft32<16>(gr));
  return {SpreadPair<0, 3>(bgrb), And(grgr, Splat32(0x00FF00FF)), ShiftRight16<8>(grgr)};
}

// Three-byte pixels as 16-bit pairs: in each 16-byte lane the words (b0, b2, g0, g2, r0, r2, any,
// any) of the even (or odd, 1 and 3) ones of the four that the lane begins with.
#if defined(__SSSE3__)
template <int kOdd> QV_INLINE Vec SpreadTaps(Vec v) {
  static constexpr auto kIndex = MakeByteTable([](int i) {
    const int n = i % 16;
    return n % 2 || n >= 12 ? 0x80 : 3 * kOdd + n / 4 + n / 2 % 2 * 6;
  });
  return ShuffleBytes(v, Load(&kIndex));
}
#else
template <int kOdd> QV_INLINE Vec SpreadTaps(Vec v) {
  const Vec pairs = InterleaveLow8(v, _mm_srli_si128(v, 6));
  return InterleaveLow8(kOdd ? _mm_srli_si128(pairs, 6) : pairs, Zero());
}
#endif

// `v` brought into 0 .. high.
QV_INLINE Vec Clamp32(Vec v, Vec high) { return Min32(Max32(v, Zero()), high); }

// 32-bit lanes of (low 16 bits of a, low 16 bits of b).
QV_INLINE Vec Pair16(Vec a, Vec b) { return Or(And(a, Splat32(0xFFFF)), ShiftLeft32<16>(b)); }

}  // namespace qv::QV_LEVEL

#endif  // QV_HAS_VECTORS

#endif
