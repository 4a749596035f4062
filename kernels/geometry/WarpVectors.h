// What warping needs of a level beyond the common vocabulary: fetches from scattered addresses, and
// three-byte pixels taken apart.
#ifndef QV_KERNELS_GEOMETRY_WARPVECTORS_H
#define QV_KERNELS_GEOMETRY_WARPVECTORS_H

#include "kernels/level/Level.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

// Fetches from base + offset, by gathers or by as many loads, whichever this processor does faster.
// `at` are byte offsets in memory, one a 32-bit lane and none below 0. Fetch32: 4 bytes for each
// lane, of several rows. Fetch64<h>: 8 bytes for lanes 2 h and 2 h + 1 of each four, so that
// EvenLanes32 and OddLanes32 of both halves are the first and the last 4 bytes of each lane.
// Fetch128<k>: 16 bytes for lane k of each four.

// Where several rows begin. Opaque, or compilers add each row's distance to each pixel's offset.
template <int kRows> struct Rows {
  QV_INLINE Rows(const Byte* base, ptrdiff_t step) {
    for (int r = 0; r < kRows; ++r) first[r] = Opaque(base + r * step);
  }
  const Byte* first[kRows];
};

// Two neighbours, by one load where loads are what rows have most of: taking it apart pays with
// vectors of 64 bytes, and costs more than it saves with narrower ones.
struct OffsetPair {
  QV_INLINE explicit OffsetPair(const int* at) {
    if constexpr (kVecBytes < 64) {
      low = at[0], high = at[1];
    } else {
      uint64_t both;
      memcpy(&both, at, sizeof both);
      low = static_cast<uint32_t>(both);
      high = static_cast<ptrdiff_t>(both >> 32);
    }
  }
  ptrdiff_t low, high;
};

template <bool kGathers, int kRows>
QV_INLINE void Fetch32(const Rows<kRows>& rows, const int* at, Vec (&out)[kRows]) {
  if constexpr (kGathers) {
    for (int r = 0; r < kRows; ++r) out[r] = Gather32(rows.first[r], Load(at));
  } else {
    Vec128 lanes[kRows][kLanes128];
#pragma GCC unroll 4
    for (int i = 0; i < kLanes128; ++i) {
      const OffsetPair a(at + 4 * i), b(at + 4 * i + 2);
#pragma GCC unroll 4
      for (int r = 0; r < kRows; ++r) {
        const Byte* const p = rows.first[r];
        lanes[r][i] = InterleaveLow64(InterleaveLow32(Load32(p + a.low), Load32(p + a.high)),
                                      InterleaveLow32(Load32(p + b.low), Load32(p + b.high)));
      }
    }
#pragma GCC unroll 4
    for (int r = 0; r < kRows; ++r) out[r] = BuildLanes([&](int i) { return lanes[r][i]; });
  }
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
// From what Fetch64 fetches.
QV_INLINE PixelPairs SpreadPairs(Vec low, Vec high) {
  if constexpr (kHasBytePermute && kHasMaskedBytes) {
    static constexpr auto kPair = [](int channel) {
      return MakeByteTable([=](int i) {
        const int pixel = i / 4, half = pixel / 2 % 2, piece = pixel / 4 * 2 + pixel % 2;
        return half * 64 + piece * 8 + i / 2 % 2 * 3 + channel;
      });
    };
    static constexpr ByteTable kPairs[3] = {kPair(0), kPair(1), kPair(2)};
    constexpr unsigned long long kEven = 0x5555555555555555;
    return {PermuteBytesPart2(kEven, low, Load(&kPairs[0]), high),
            PermuteBytesPart2(kEven, low, Load(&kPairs[1]), high),
            PermuteBytesPart2(kEven, low, Load(&kPairs[2]), high)};
  } else {
    const Vec bgrb = EvenLanes32(low, high), gr = OddLanes32(low, high);
    const Vec grgr = Or(And(ShiftRight32<8>(bgrb), Splat32(0xFFFF)), ShiftLeft32<16>(gr));
    return {SpreadPair<0, 3>(bgrb), And(grgr, Splat32(0x00FF00FF)), ShiftRight16<8>(grgr)};
  }
}
template <bool kGathers>
QV_INLINE void FetchPairs(const Rows<2>& rows, const int* at, PixelPairs (&out)[2]) {
  if constexpr (kGathers) {
    for (int r = 0; r < 2; ++r)
      out[r] = SpreadPairs(Fetch64<true, 0>(rows.first[r], at),
                           Fetch64<true, 1>(rows.first[r], at));
  } else {
    Vec128 lanes[2][2][kLanes128];
#pragma GCC unroll 8
    for (int i = 0; i < 2 * kLanes128; ++i) {
      const OffsetPair a(at + 2 * i);
#pragma GCC unroll 2
      for (int r = 0; r < 2; ++r)
        lanes[r][i % 2][i / 2] =
            InterleaveLow64(Load64(rows.first[r] + a.low), Load64(rows.first[r] + a.high));
    }
#pragma GCC unroll 2
    for (int r = 0; r < 2; ++r)
      out[r] = SpreadPairs(BuildLanes([&](int i) { return lanes[r][0][i]; }),
                           BuildLanes([&](int i) { return lanes[r][1][i]; }));
  }
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
