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

// Bytes c of 16 three-byte pixels from 16 of their 48 bytes.
struct ThirdIndex {
  alignas(16) Byte at[16];
  constexpr ThirdIndex(int c, int part) : at() {
    for (int i = 0; i < 16; ++i)
      at[i] = static_cast<Byte>((3 * i + c) / 16 == part ? (3 * i + c) % 16 : 0x80);
  }
};

template <int c>
QV_INLINE Vec ShuffleThirds(Vec v0, Vec v1, Vec v2) {
  static constexpr ThirdIndex index[3] = {{c, 0}, {c, 1}, {c, 2}};
  return Or(
      Or(ShuffleBytes(v0, LoadSplat128(index[0].at)), ShuffleBytes(v1, LoadSplat128(index[1].at))),
      ShuffleBytes(v2, LoadSplat128(index[2].at)));
}

// Four vectors of four pixels a lane, each lane shuffled to four first bytes, four second ones and
// so on, and these then sorted.
QV_INLINE ByteVectors ShuffleFourths(const Vec (&v)[4]) {
  alignas(16) static constexpr Byte kSorted[16] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                   2, 6, 10, 14, 3, 7, 11, 15};
  const Vec index = LoadSplat128(kSorted);
  Vec s[4];
  for (int j = 0; j < 4; ++j) s[j] = ShuffleBytes(v[j], index);
  const Vec low0 = InterleaveLow32(s[0], s[1]), low1 = InterleaveLow32(s[2], s[3]);
  const Vec high0 = InterleaveHigh32(s[0], s[1]), high1 = InterleaveHigh32(s[2], s[3]);
  return {
      {InterleaveLow64(low0, low1), InterleaveHigh64(low0, low1), InterleaveLow64(high0, high1)}};
}

// ---- And where they are not ---------------------------------------------------------------------

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
  } else {
    // Lane i has pixels 16 i to 16 i + 15.
    Vec v[kChannels];
    for (int j = 0; j < kChannels; ++j)
      v[j] = LoadLanes([=](int i) { return src + 16 * (kChannels * i + j); });
    if constexpr (kChannels == 4) {
      if constexpr (kHasByteShuffle) return ShuffleFourths(v);
      return PackFourths(v);
    } else if constexpr (kHasByteShuffle) {
      return {{ShuffleThirds<0>(v[0], v[1], v[2]), ShuffleThirds<1>(v[0], v[1], v[2]),
               ShuffleThirds<2>(v[0], v[1], v[2])}};
    } else {
      return InterleaveThirds(v[0], v[1], v[2]);
    }
  }
}

}  // namespace qv::QV_LEVEL

#endif
#endif
