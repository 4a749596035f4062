// Pixels of one, three or four bytes as pairs of bytes, kVecBytes of them.
//
// A block is loaded as groups of four pixels. Lane l of its first half has groups l and
// kLanes128 + l, of its second half those 2 kLanes128 further on: what comes of shuffles within
// lanes. InOrder puts the bytes made of them in order.
#ifndef QV_KERNELS_YUV_PIXELLOADS_H
#define QV_KERNELS_YUV_PIXELLOADS_H

#include "kernels/yuv/YuvVectors.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

// Half a block: of each pixel B and G; R and any byte.
struct BytePairs {
  Vec blueGreen, red;
};

struct BlockPairs {
  BytePairs half[2];
};

// Groups of 32 bits in order from those of two halves that were packed; and the other way round.
template <bool kBack = false>
QV_INLINE Vec InOrder(Vec packed) {
  if constexpr (!kHasLanePermute) {
    return packed;
  } else {
    struct Index {
      alignas(kVecBytes) uint32_t at[kLanes32];
      constexpr Index() : at() {
        constexpr uint32_t lanes = kLanes128;
        for (uint32_t i = 0; i < kLanes32; ++i)
          at[i] = kBack ? i % 4 * lanes + i / 4 : i % lanes * 4 + i / lanes;
      }
    };
    static constexpr Index index;
    return PermuteLanes32(packed, Load(index.at));
  }
}

// ---- Where bytes are shuffled -------------------------------------------------------------------

// Byte i of four pixels, the first of which is at byte `from`, as their B and G and then their R.
constexpr int PairPlace(int i, int from, int channels, bool redFirst) {
  const int blue = redFirst ? 2 : 0, byte = i < 8 ? (i % 2 ? 1 : blue) : 2 - blue;
  return from + i / 2 % 4 * channels + byte;
}

// Behind the last pixels of a block nothing is read: they end with the vector where bytes are
// permuted across it, else with their lanes.
template <int kChannels>
constexpr bool kAcross = kHasBytePermute&& kChannels == 3;
template <int kChannels>
constexpr int kBeforeLast = (4 - kChannels) * (kAcross<kChannels> ? kVecBytes / 4 : 4);

template <int kChannels, bool kRedFirst, bool kLast>
constexpr ByteTable MakePairIndex() {
  return MakeByteTable([](int i) {
    const int lane = kAcross<kChannels> ? i / 16 * 4 * kChannels : 0;
    return lane + PairPlace(i % 16, kLast ? kBeforeLast<kChannels> : 0, kChannels, kRedFirst);
  });
}

// Of the vectors of a block, and of its last one.
struct PixelOrder {
  bool redFirst;
  Vec index, last;
};

template <int kChannels>
QV_INLINE PixelOrder PixelOrderOf(bool redFirst) {
  if constexpr (!kHasByteShuffle || kChannels == 1) return {redFirst, Zero(), Zero()};
  static constexpr ByteTable index[] = {MakePairIndex<kChannels, false, false>(),
                                        MakePairIndex<kChannels, true, false>()};
  static constexpr ByteTable last[] = {MakePairIndex<kChannels, false, true>(),
                                       MakePairIndex<kChannels, true, true>()};
  return {redFirst, Load(index[redFirst].b), Load(last[redFirst].b)};
}

// Vector j of a block's four: in each lane four pixels, their B and G and then their R.
template <int kChannels>
QV_INLINE Vec LoadGroups4(const Byte* src, int j, const PixelOrder& order) {
  const Byte* const from =
      src + j * kLanes128 * 4 * kChannels - (j == 3 ? kBeforeLast<kChannels> : 0);
  const Vec index = kChannels == 3 && j == 3 ? order.last : order.index;
  if constexpr (kAcross<kChannels>) return PermuteBytes(Load(from), index);
  return ShuffleBytes(kChannels == 4 ? Load(from) : LoadLanes(from, 4 * kChannels), index);
}

// ---- And where they are not, with 128-bit vectors -----------------------------------------------

// Four pixels of four bytes, their 16-bit halves sorted; R, G, B made B, G, R.
QV_INLINE Vec SortHalves16(Vec v, bool redFirst) {
  if (redFirst) {
    const Vec low = Splat32(0xff);
    v = Or(And(v, Splat32(0xff00)),
           Or(ShiftLeft32<16>(And(v, low)), And(ShiftRight32<16>(v), low)));
  }
  return ShuffleLanes32<0, 2, 1, 3>(ShuffleHigh16<0, 2, 1, 3>(ShuffleLow16<0, 2, 1, 3>(v)));
}

// 16 pixels in 48 bytes. Each step interleaves the first half of what there is with the second
// half: byte i goes to 2 i modulo 47, so that after four steps, 16 i modulo 47, byte 3 i + c has
// come to i + 16 c.
QV_INLINE BlockPairs InterleaveThirds(Vec v0, Vec v1, Vec v2, bool redFirst) {
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
  const Vec blue = redFirst ? v2 : v0, red = redFirst ? v0 : v2;
  return {{{InterleaveLow8(blue, v1), InterleaveLow8(red, red)},
           {InterleaveHigh8(blue, v1), InterleaveHigh8(red, red)}}};
}

// ---- Of any kind --------------------------------------------------------------------------------

template <int kChannels>
QV_INLINE BlockPairs LoadPixels(const Byte* src, const PixelOrder& order) {
  if constexpr (kChannels == 1) {
    const Vec grey = InOrder<true>(Load(src));
    const Vec low = InterleaveLow8(grey, grey), high = InterleaveHigh8(grey, grey);
    return {{{low, low}, {high, high}}};
  } else if constexpr (!kHasByteShuffle && kChannels == 3) {
    return InterleaveThirds(Load(src), Load(src + 16), Load(src + 32), order.redFirst);
  } else {
    BlockPairs block;
    for (int h = 0; h < 2; ++h) {
      Vec v[2];
      for (int j = 0; j < 2; ++j) {
        if constexpr (kHasByteShuffle)
          v[j] = LoadGroups4<kChannels>(src, 2 * h + j, order);
        else
          v[j] = SortHalves16(Load(src + 16 * (2 * h + j)), order.redFirst);
      }
      block.half[h] = {InterleaveLow64(v[0], v[1]), InterleaveHigh64(v[0], v[1])};
    }
    return block;
  }
}

}  // namespace qv::QV_LEVEL

#endif
#endif
