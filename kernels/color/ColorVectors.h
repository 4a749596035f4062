// What the vector rows of the colour conversions need beyond the vocabulary: sums in 16.16 fixed
// point made into bytes, and bytes into pixels B, G, R.
//
// A row is worked on in blocks of kVecBytes pixels, as two halves of kVecBytes / 2, whose 16-bit
// lanes are the pixels in order. Vectors of two 128-bit lanes whose bytes cannot be permuted take
// eight pixels at a time in turns instead, so that packing within lanes puts them in order.
#ifndef QV_KERNELS_COLOR_COLORVECTORS_H
#define QV_KERNELS_COLOR_COLORVECTORS_H

#include "kernels/level/Level.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

constexpr int kBlockPixels = kVecBytes;

// Pixels from dst to the next multiple of a vector, 2 to kBlockPixels of them, if that is an even
// number, as it is at even addresses; else 0.
QV_INLINE ptrdiff_t EvenPixelsToAlign3(const Byte* dst) {
  const ptrdiff_t pixels = PixelsToAlign3(dst);
  return pixels % 2 == 0 ? pixels : 0;
}

// The colours of half a block, in signed 16-bit lanes, not yet limited to a byte.
struct Colours {
  Vec blue, green, red;
};

QV_INLINE Vec SplatPair16(int low, int high) {
  return Splat32(static_cast<int>((static_cast<unsigned>(high) << 16) |
                                  (static_cast<unsigned>(low) & 0xffff)));
}

QV_INLINE Vec FourTimesEvenBytes(Vec v) {
  if constexpr (kHasByteShuffle) return MulAddBytes(v, Splat16(4));
  return ShiftLeft16<2>(And(v, Splat16(0xff)));
}

// ---- Loads of a block ---------------------------------------------------------------------------

// Two bytes a pixel.
QV_INLINE void LoadPacked(const Byte* src, Vec& first, Vec& second) {
  if constexpr (kHasBytePermute) {
    first = Load(src);
    second = Load(src + kVecBytes);
  } else {
    first = LoadLanes([=](int i) { return src + 32 * i; });
    second = LoadLanes([=](int i) { return src + 16 + 32 * i; });
  }
}

// Luma bytes as 16-bit lanes.
QV_INLINE void LoadLuma(const Byte* src, Vec& first, Vec& second) {
  if constexpr (kHasBytePermute) {
    first = LoadBytesAs16(src);
    second = LoadBytesAs16(src + kVecBytes / 2);
  } else {
    const Vec all = Load(src);
    first = InterleaveLow8(all, Zero());
    second = InterleaveHigh8(all, Zero());
  }
}

// Half as many bytes of each of two chroma planes, as pairs of 16-bit lanes.
QV_INLINE void LoadChroma(const Byte* cb, const Byte* cr, Vec& first, Vec& second) {
  if constexpr (kHasBytePermute) {
    const Vec both = LoadHalves(cb, cr);
    static constexpr ByteTable low = MakeByteTable([](int i) { return i % 4 * 16 + i / 4; });
    static constexpr ByteTable high = MakeByteTable([](int i) { return i % 4 * 16 + i / 4 + 16; });
    constexpr unsigned long long even = 0x5555555555555555u;
    first = PermuteBytesPart(even, both, Load(low.b));
    second = PermuteBytesPart(even, both, Load(high.b));
  } else {
    const Vec wideCb = LoadBytesAs16(cb), wideCr = LoadBytesAs16(cr);
    first = InterleaveLow16(wideCb, wideCr);
    second = InterleaveHigh16(wideCb, wideCr);
  }
}

// ---- Stores of a block, where bytes are permuted across a vector --------------------------------

// Where the bytes of 64 three-byte pixels are found in three vectors: source 0 has blue and green
// of pixels 0 to 31 in lanes of eight, source 1 those of pixels 32 to 63, and lane l of source 2
// has red of pixels 8 l to 8 l + 7 and of those 32 further on.
struct Place {
  int source, index;
};

constexpr Place PlaceInBlock(int byte) {
  const int pixel = byte / 3, channel = byte % 3, lane = pixel % 32 / 8;
  if (channel == 2) return {2, 16 * lane + pixel / 32 * 8 + pixel % 8};
  return {pixel / 32, 16 * lane + 8 * channel + pixel % 8};
}

// The permutation of `source` for vector `part` of the pixels, and which of its bytes it gives.
struct BlockIndex {
  alignas(64) Byte at[64];
  unsigned long long mask;
  constexpr BlockIndex(int part, int source) : at(), mask(0) {
    for (int i = 0; i < 64; ++i) {
      const Place place = PlaceInBlock(64 * part + i);
      if (place.source != source) continue;
      at[i] = static_cast<Byte>(place.index);
      mask |= 1ull << i;
    }
  }
};

template <int part, int source>
QV_INLINE Vec PickFromBlock(Vec v) {
  static constexpr BlockIndex index(part, source);
  return PermuteBytes(v, Load(index.at));
}

template <int part, int source>
QV_INLINE Vec PickFromBlock(Vec v, Vec others) {
  static constexpr BlockIndex index(part, source);
  return PermuteBytesOver(others, index.mask, v, Load(index.at));
}

template <class Store>
QV_INLINE void StorePermuted(Byte* dst, const Colours& first, const Colours& second, Store store) {
  const Vec low = PackUnsigned16(first.blue, first.green);
  const Vec high = PackUnsigned16(second.blue, second.green);
  const Vec red = PackUnsigned16(first.red, second.red);
  const Vec bytes[3] = {
      PickFromBlock<0, 2>(red, PickFromBlock<0, 0>(low)),
      PickFromBlock<1, 2>(red, PickFromBlock<1, 1>(high, PickFromBlock<1, 0>(low))),
      PickFromBlock<2, 2>(red, PickFromBlock<2, 1>(high))};
  for (int i = 0; i < 3; ++i) store(dst + 64 * i, bytes[i]);
}

// ---- Where they are shuffled within 128-bit lanes -----------------------------------------------

// The same for the 48 bytes of a lane's 16 pixels: blue and green of pixels 0 to 7, as eight bytes
// each, are in source 0, those of pixels 8 to 15 in source 1, and red of all 16 in source 2.
constexpr Place PlaceInLane(int byte) {
  const int pixel = byte / 3, channel = byte % 3;
  if (channel == 2) return {2, pixel};
  return {pixel / 8, pixel % 8 + 8 * channel};
}

// The shuffle of `source` for 16 bytes of a lane's 48, from byte 16 * part.
struct LaneIndex {
  alignas(16) Byte at[16];
  constexpr LaneIndex(int part, int source) : at() {
    for (int i = 0; i < 16; ++i) {
      const Place place = PlaceInLane(16 * part + i);
      at[i] = place.source == source ? static_cast<Byte>(place.index) : 0x80;
    }
  }
};

template <int part, int source>
QV_INLINE Vec PickFromLanes(Vec v) {
  static constexpr LaneIndex index(part, source);
  return ShuffleBytes(v, LoadSplat128(index.at));
}

template <class Store>
QV_INLINE void StoreShuffled(Byte* dst, const Colours& first, const Colours& second, Store store) {
  const Vec low = PackUnsigned16(first.blue, first.green);
  const Vec high = PackUnsigned16(second.blue, second.green);
  const Vec red = PackUnsigned16(first.red, second.red);
  Vec a = Or(PickFromLanes<0, 0>(low), PickFromLanes<0, 2>(red));
  Vec b = Or(Or(PickFromLanes<1, 0>(low), PickFromLanes<1, 1>(high)), PickFromLanes<1, 2>(red));
  Vec c = Or(PickFromLanes<2, 1>(high), PickFromLanes<2, 2>(red));
  LanesInTurns(a, b, c);
  store(dst, a);
  store(dst + kVecBytes, b);
  store(dst + 2 * kVecBytes, c);
}

// ---- And where they are not, with 128-bit vectors -----------------------------------------------

// Two pixels B, G, R, 0 in each half become six bytes, the lowest of the half.
QV_INLINE Vec Squeeze(Vec v) {
  const Vec left = Splat64(0xffffff);
  return Or(And(v, left), ShiftRight64<8>(AndNot(left, v)));
}

// Six bytes at a time, the two stored too many being overwritten by the next six.
QV_INLINE void StorePixelPairs(Byte* dst, Vec v) {
  StoreLowHalf(dst, v);
  StoreLowHalf(dst + 6, InterleaveHigh64(v, v));
}

QV_INLINE void StoreSqueezed(Byte* dst, const Colours& first, const Colours& second) {
  const Vec blue = PackUnsigned16(first.blue, second.blue);
  const Vec green = PackUnsigned16(first.green, second.green);
  const Vec red = PackUnsigned16(first.red, second.red);
  const Vec low = InterleaveLow8(blue, green), high = InterleaveHigh8(blue, green);
  const Vec redLow = InterleaveLow8(red, Zero()), redHigh = InterleaveHigh8(red, Zero());
  StorePixelPairs(dst, Squeeze(InterleaveLow16(low, redLow)));
  StorePixelPairs(dst + 12, Squeeze(InterleaveHigh16(low, redLow)));
  StorePixelPairs(dst + 24, Squeeze(InterleaveLow16(high, redHigh)));
  const Vec last = Squeeze(InterleaveHigh16(high, redHigh));
  StoreLowHalf(dst + 36, last);
  // The last six bytes alone, since nothing follows them.
  const Vec128 lane = LowLane(last);
  Store32(dst + 42, ShiftBytesDown<8>(lane));
  Store32(dst + 44, ShiftBytesDown<10>(lane));
}

// A block of pixels. Pieces of six bytes do not go past the caches.
template <class Store>
QV_INLINE void StoreBGR(Byte* dst, const Colours& first, const Colours& second, Store store) {
  if constexpr (kHasBytePermute)
    StorePermuted(dst, first, second, store);
  else if constexpr (kHasByteShuffle)
    StoreShuffled(dst, first, second, store);
  else
    StoreSqueezed(dst, first, second);
}

}  // namespace qv::QV_LEVEL

#endif
#endif
