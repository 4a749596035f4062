// What warping needs of a level beyond the common vocabulary: fetches from scattered addresses, and
// three-byte pixels taken apart.
#ifndef QV_KERNELS_GEOMETRY_WARPVECTORS_H
#define QV_KERNELS_GEOMETRY_WARPVECTORS_H

#include "kernels/level/Level.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

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
template <int kOdd> QV_INLINE Vec SpreadTaps(Vec v) {
  if constexpr (kHasByteShuffle) {
    static constexpr auto kIndex = MakeByteTable([](int i) {
      const int n = i % 16;
      return n % 2 || n >= 12 ? 0x80 : 3 * kOdd + n / 4 + n / 2 % 2 * 6;
    });
    return ShuffleBytes(v, Load(&kIndex));
  } else {
    const Vec pairs = InterleaveLow8(v, ShiftBytesDown<6>(v));
    return InterleaveLow8(kOdd ? ShiftBytesDown<6>(pairs) : pairs, Zero());
  }
}

}  // namespace qv::QV_LEVEL

#endif  // QV_HAS_VECTORS

#endif
