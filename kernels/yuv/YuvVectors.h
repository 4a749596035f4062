// What the vector rows of both directions need beyond the vocabulary: samples from and into rows of
// any form, kVecBytes pixels at a time.
//
// 16-bit lanes hold a byte times 256, so that the high half of a product has the byte's fractions.
// `First` and `Second` name the halves of a block whose lanes are put together again by the stores
// of ColorVectors.h, which says what is where.
#ifndef QV_KERNELS_YUV_YUVVECTORS_H
#define QV_KERNELS_YUV_YUVVECTORS_H

#include "kernels/color/ColorVectors.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

// Of pixels of four bytes that are put together by interleaving, blocks of two 128-bit lanes are
// `dealt`: groups of four pixels to lanes in turns, so that what is interleaved is in order.
template <int kChannels>
constexpr bool kDealt = kChannels == 4 && kLanes128 == 2;

template <bool kDeals>
QV_INLINE Vec Deal(Vec v) {
  if constexpr (kDeals) {
    alignas(32) static constexpr uint32_t index[] = {0, 2, 4, 6, 1, 3, 5, 7};
    return PermuteLanes32(v, Load(index));
  }
  return v;
}

QV_INLINE Vec HighBytes(Vec v) { return And(v, Splat16(0xff00)); }

// Bytes of half a block times 256.
QV_INLINE Vec FirstBytes256(Vec bytes) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index = MakeByteTable([](int i) { return i / 2; });
    return PermuteBytesPart(0xAAAAAAAAAAAAAAAAu, bytes, Load(index.b));
  }
  return InterleaveLow8(Zero(), bytes);
}
QV_INLINE Vec SecondBytes256(Vec bytes) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index = MakeByteTable([](int i) { return kVecBytes / 2 + i / 2; });
    return PermuteBytesPart(0xAAAAAAAAAAAAAAAAu, bytes, Load(index.b));
  }
  return InterleaveHigh8(Zero(), bytes);
}

// Half as many bytes times 256, for half a block.
template <bool kDeals>
QV_INLINE Vec LoadBytes256(const Byte* p) {
  if constexpr (kDeals) {
    static constexpr ByteTable index = MakeByteTable(
        [](int i) { return i % 2 == 0 ? 0x80 : i % 16 / 4 * 4 + i / 16 * 2 + i / 2 % 2; });
    return ShuffleBytes(LoadSplat128(p), Load(index.b));
  }
  return ShiftLeft16<8>(LoadBytesAs16(p));
}

// A block of bytes times 256.
struct Block256 {
  Vec first, second;
};

template <bool kDeals>
QV_INLINE Block256 LoadBlock256(const Byte* p) {
  if constexpr (kDeals) {
    static constexpr ByteTable index = MakeByteTable(
        [](int i) { return i % 2 == 0 ? 0x80 : i % 16 / 8 * 8 + i / 16 * 4 + i / 2 % 4; });
    const Vec order = Load(index.b);
    return {ShuffleBytes(LoadSplat128(p), order), ShuffleBytes(LoadSplat128(p + 16), order)};
  }
  const Vec bytes = Load(p);
  return {FirstBytes256(bytes), SecondBytes256(bytes)};
}

// 16-bit lanes of two vectors in turns: of half a block.
QV_INLINE Vec FirstInTurns16(Vec even, Vec odd) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index =
        MakeByteTable([](int i) { return i / 4 * 2 + i % 2 + (i & 2 ? kVecBytes : 0); });
    return PermuteBytes2(even, Load(index.b), odd);
  }
  return InterleaveLow16(even, odd);
}
QV_INLINE Vec SecondInTurns16(Vec even, Vec odd) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index = MakeByteTable(
        [](int i) { return kVecBytes / 2 + i / 4 * 2 + i % 2 + (i & 2 ? kVecBytes : 0); });
    return PermuteBytes2(even, Load(index.b), odd);
  }
  return InterleaveHigh16(even, odd);
}

// 16-bit lanes of one vector twice each.
QV_INLINE Vec FirstTwice16(Vec v) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index = MakeByteTable([](int i) { return i / 4 * 2 + i % 2; });
    return PermuteBytes(v, Load(index.b));
  }
  return InterleaveLow16(v, v);
}
QV_INLINE Vec SecondTwice16(Vec v) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index =
        MakeByteTable([](int i) { return kVecBytes / 2 + i / 4 * 2 + i % 2; });
    return PermuteBytes(v, Load(index.b));
  }
  return InterleaveHigh16(v, v);
}

// Bytes of two vectors in turns, 2 * kVecBytes of them.
template <class Store>
QV_INLINE void StoreInTurns8(Byte* dst, Vec even, Vec odd, Store store) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable low = MakeByteTable([](int i) { return i / 2 + i % 2 * kVecBytes; });
    static constexpr ByteTable high =
        MakeByteTable([](int i) { return kVecBytes / 2 + i / 2 + i % 2 * kVecBytes; });
    store(dst, PermuteBytes2(even, Load(low.b), odd));
    store(dst + kVecBytes, PermuteBytes2(even, Load(high.b), odd));
  } else {
    const Vec low = InterleaveLow8(even, odd), high = InterleaveHigh8(even, odd);
    store(dst, JoinEvenLanes(low, high));
    store(dst + kVecBytes, JoinOddLanes(low, high));
  }
}

// The even bytes as the low half of a vector, the odd ones as its high half.
QV_INLINE Vec SplitPairs8(Vec pairs) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index =
        MakeByteTable([](int i) { return 2 * i % kVecBytes + 2 * i / kVecBytes; });
    return PermuteBytes(pairs, Load(index.b));
  }
  return PackBytesInOrder(And(pairs, Splat16(0xff)), ShiftRight16<8>(pairs));
}

// The high half of a vector as a low one.
QV_INLINE Vec HighHalf(Vec v) {
  if constexpr (kLanes128 == 1)
    return InterleaveHigh64(v, v);
  else if constexpr (kLanes128 == 2)
    return FromLane(Lane<1>(v));
  else
    return JoinHighHalves(v, v);
}

// A block of pixels of four bytes, the last 255.
template <bool kDeals, class Store>
QV_INLINE void StoreBGRA(Byte* dst, const Colours& first, const Colours& second, Store store) {
  if constexpr (kHasBytePermute) {
    // Lanes of eight blues and eight greens, and of eight reds and eight alphas.
    static constexpr ByteTable low = MakeByteTable(
        [](int i) { return i / 32 * 16 + i / 4 % 8 + i % 2 * 8 + (i & 2 ? kVecBytes : 0); });
    static constexpr ByteTable high = MakeByteTable(
        [](int i) { return 32 + i / 32 * 16 + i / 4 % 8 + i % 2 * 8 + (i & 2 ? kVecBytes : 0); });
    const auto half = [=](Byte* to, const Colours& c) {
      const Vec blueGreen = PackUnsigned16(c.blue, c.green);
      const Vec redAlpha = PackUnsigned16(c.red, Splat16(255));
      store(to, PermuteBytes2(blueGreen, Load(low.b), redAlpha));
      store(to + kVecBytes, PermuteBytes2(blueGreen, Load(high.b), redAlpha));
    };
    half(dst, first);
    half(dst + 2 * kVecBytes, second);
  } else {
    const Vec blue = PackUnsigned16(first.blue, second.blue);
    const Vec green = PackUnsigned16(first.green, second.green);
    const Vec red = PackUnsigned16(first.red, second.red), alpha = Splat8(255);
    const Vec lowBG = InterleaveLow8(blue, green), lowRA = InterleaveLow8(red, alpha);
    const Vec highBG = InterleaveHigh8(blue, green), highRA = InterleaveHigh8(red, alpha);
    // Four pixels in each lane.
    const Vec a = InterleaveLow16(lowBG, lowRA), b = InterleaveHigh16(lowBG, lowRA);
    const Vec c = InterleaveLow16(highBG, highRA), d = InterleaveHigh16(highBG, highRA);
    const bool ordered = kDeals || kLanes128 == 1;
    store(dst, ordered ? a : JoinEvenLanes(a, b));
    store(dst + kVecBytes, ordered ? b : JoinEvenLanes(c, d));
    store(dst + 2 * kVecBytes, ordered ? c : JoinOddLanes(a, b));
    store(dst + 3 * kVecBytes, ordered ? d : JoinOddLanes(c, d));
  }
}

// ---- Rows of samples ----------------------------------------------------------------------------

// Pairs are in the order of a pixel's bytes, or `swapped`.
struct ChromaPair {
  Vec p, q;
};

QV_INLINE ChromaPair SplitPairs256(Vec pairs, bool swapped) {
  const Vec low = ShiftLeft16<8>(pairs), high = HighBytes(pairs);
  return swapped ? ChromaPair{high, low} : ChromaPair{low, high};
}

}  // namespace qv::QV_LEVEL

#endif
#endif
