// Pixels of three or four bytes taken apart, kVecBytes of them: the first bytes of all, the second
// ones, the third ones.
#ifndef QV_KERNELS_YUV_PIXELLOADS_H
#define QV_KERNELS_YUV_PIXELLOADS_H

#include "kernels/yuv/YuvVectors.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

struct ByteVectors {
  Vec at[3];
};

// ---- Where bytes are permuted across a vector ---------------------------------------------------

// Bytes c of 64 three-byte pixels: of the first two vectors by index, of the third where `mask` is.
struct ThirdBytes {
  alignas(64) Byte low[64], high[64];
  unsigned long long mask;
  constexpr explicit ThirdBytes(int c) : low(), high(), mask(0) {
    for (int i = 0; i < 64; ++i) {
      const int at = 3 * i + c;
      low[i] = static_cast<Byte>(at % 128);
      high[i] = static_cast<Byte>(at % 64);
      if (at >= 128) mask |= 1ull << i;
    }
  }
};

template <int c>
QV_INLINE Vec PermuteThirds(Vec v0, Vec v1, Vec v2) {
  static constexpr ThirdBytes index(c);
  return PermuteBytesOver(PermuteBytes2(v0, Load(index.low), v1), index.mask, v2, Load(index.high));
}

QV_INLINE ByteVectors PermuteFourths(const Byte* src) {
  // The first and the second bytes of 32 pixels, and their third ones.
  static constexpr ByteTable firstTwo = MakeByteTable([](int i) { return i % 32 * 4 + i / 32; });
  static constexpr ByteTable third = MakeByteTable([](int i) { return i % 32 * 4 + 2; });
  Vec two[2], one[2];
  for (int half = 0; half < 2; ++half) {
    const Vec low = Load(src + 128 * half), high = Load(src + 128 * half + 64);
    two[half] = PermuteBytes2(low, Load(firstTwo.b), high);
    one[half] = PermuteBytes2(low, Load(third.b), high);
  }
  return {{JoinLowHalves(two[0], two[1]), JoinHighHalves(two[0], two[1]),
           JoinLowHalves(one[0], one[1])}};
}

// ---- Where they are shuffled within 128-bit lanes -----------------------------------------------

// Four pixels of a lane sorted: their first bytes, their second ones, and so on. They begin at byte
// `first` of the lane.
struct SortIndex {
  alignas(16) Byte at[16];
  constexpr SortIndex(int pixelBytes, int first) : at() {
    for (int i = 0; i < 16; ++i) {
      const int byte = i / 4;
      at[i] = static_cast<Byte>(byte < pixelBytes ? first + i % 4 * pixelBytes + byte : 0x80);
    }
  }
};

// Four vectors of four such pixels a lane.
template <int kChannels>
QV_INLINE ByteVectors ShufflePixels(const Byte* src) {
  static constexpr SortIndex index(kChannels, 0), last(kChannels, 16 - 4 * kChannels);
  Vec v[4];
  for (int j = 0; j < 4; ++j) {
    // Lane i has pixels from 16 i + 4 j on. The last ones end with the lane: nothing behind them is
    // read.
    const Byte* const from = src + 4 * kChannels * j - (j == 3 ? 16 - 4 * kChannels : 0);
    v[j] = ShuffleBytes(LoadLanes(from, 16 * kChannels), LoadSplat128(j == 3 ? last.at : index.at));
  }
  const Vec low0 = InterleaveLow32(v[0], v[1]), low1 = InterleaveLow32(v[2], v[3]);
  const Vec high0 = InterleaveHigh32(v[0], v[1]), high1 = InterleaveHigh32(v[2], v[3]);
  return {
      {InterleaveLow64(low0, low1), InterleaveHigh64(low0, low1), InterleaveLow64(high0, high1)}};
}

// ---- And where they are not, with 128-bit vectors -----------------------------------------------

QV_INLINE ByteVectors PackFourths(const Vec (&v)[4]) {
  const auto bytes = [&](auto part) {
    return PackUnsigned16(PackSigned32(part(v[0]), part(v[1])),
                          PackSigned32(part(v[2]), part(v[3])));
  };
  const Vec low = Splat32(0xff);
  return {{bytes([=](Vec x) { return And(x, low); }),
           bytes([=](Vec x) { return And(ShiftRight32<8>(x), low); }),
           bytes([=](Vec x) { return And(ShiftRight32<16>(x), low); })}};
}

// 16 pixels in 48 bytes. Each step interleaves the first half of what there is with the second
// half: byte i goes to 2 i modulo 47, so that after four steps, 16 i modulo 47, byte 3 i + c has
// come to i + 16 c.
QV_INLINE ByteVectors InterleaveThirds(Vec v0, Vec v1, Vec v2) {
  // The high half of one, the low half of the other.
  const auto swapHalves = [](Vec low, Vec high) {
    return InterleaveLow64(InterleaveHigh64(low, low), high);
  };
  for (int step = 0; step < 4; ++step) {
    const Vec second = swapHalves(v1, v2), third = InterleaveHigh64(v2, v2);
    const Vec a = InterleaveLow8(v0, second), b = InterleaveHigh8(v0, second);
    const Vec c = InterleaveLow8(v1, third);
    v0 = a;
    v1 = b;
    v2 = c;
  }
  return {{v0, v1, v2}};
}

// ---- Of any kind --------------------------------------------------------------------------------

template <int kChannels>
QV_INLINE ByteVectors LoadPixels(const Byte* src) {
  if constexpr (kChannels == 1) {
    const Vec grey = Load(src);
    return {{grey, grey, grey}};
  } else if constexpr (kHasBytePermute && kChannels == 3) {
    const Vec v0 = Load(src), v1 = Load(src + 64), v2 = Load(src + 128);
    return {
        {PermuteThirds<0>(v0, v1, v2), PermuteThirds<1>(v0, v1, v2), PermuteThirds<2>(v0, v1, v2)}};
  } else if constexpr (kHasBytePermute) {
    return PermuteFourths(src);
  } else if constexpr (kHasByteShuffle) {
    return ShufflePixels<kChannels>(src);
  } else {
    Vec v[kChannels];
    for (int j = 0; j < kChannels; ++j) v[j] = Load(src + 16 * j);
    if constexpr (kChannels == 4)
      return PackFourths(v);
    else
      return InterleaveThirds(v[0], v[1], v[2]);
  }
}

}  // namespace qv::QV_LEVEL

#endif
#endif
