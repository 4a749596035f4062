// B, G and R of pixel pairs in 16.16 fixed point, exact in 32 bits.
//
// The coefficients are wider than the 16 bits that a multiply-add of pairs takes, but they have
// factors: 76284 = 4 * 19071, 132186 = 6 * 22031 and 104595 = 5 * 20919, and 4, 6 and 5 times a
// byte is a small number. 53281 has none, but is 65536 - 12255: a pair of Cb and Cr is as a 32-bit
// number Cb + 65536 * Cr, and is taken off as it is, with a Cb less in the products. No sum passes
// 2^27.
#ifndef QV_KERNELS_COLOR_COLORSUMS_H
#define QV_KERNELS_COLOR_COLORSUMS_H

#include "kernels/color/ColorVectors.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

// What is added to the products.
struct Offsets {
  int blue, green, red;
};

// Chroma terms and offsets of pairs of pixels, in 32-bit lanes.
struct ChromaTerms {
  Vec blue, green, red;
};

// `chroma` has Cb in its even and Cr in its odd 16-bit lanes.
QV_INLINE ChromaTerms MakeChromaTerms(Vec chroma, const Offsets& offsets) {
  const Vec scaled = MulLow16(chroma, SplatPair16(6, 5));
  const Vec green = Sub32(MulAddPairs16(chroma, SplatPair16(1 - 25690, 12255)), chroma);
  return {Add32(MulAddPairs16(scaled, SplatPair16(22031, 0)), Splat32(offsets.blue)),
          Add32(green, Splat32(offsets.green)),
          Add32(MulAddPairs16(scaled, SplatPair16(0, 20919)), Splat32(offsets.red))};
}

// A colour of half a block in 32-bit lanes: the sums of the even pixels and of the odd ones.
struct Sums {
  Vec even, odd;
};
struct ColorSums {
  Sums blue, green, red;
};

// `fourY` has 4 times the luma of a pair's pixels in its even and odd 16-bit lanes.
QV_INLINE ColorSums AddLuma(Vec fourY, const ChromaTerms& chroma) {
  const Vec even = MulAddPairs16(fourY, SplatPair16(19071, 0));
  const Vec odd = MulAddPairs16(fourY, SplatPair16(0, 19071));
  return {{Add32(even, chroma.blue), Add32(odd, chroma.blue)},
          {Add32(even, chroma.green), Add32(odd, chroma.green)},
          {Add32(even, chroma.red), Add32(odd, chroma.red)}};
}

QV_INLINE Vec Wholes(const Sums& sums) { return HighHalves16(sums.even, sums.odd); }
QV_INLINE Colours Wholes(const ColorSums& sums) {
  return {Wholes(sums.blue), Wholes(sums.green), Wholes(sums.red)};
}

// ---- Stores of a block, where bytes are shuffled within 128-bit lanes ---------------------------

// The bytes of a colour, each after one of what was its fraction. A lane has eight pixels of each
// half: 0, 2, 4, 6, 1, 3, 5, 7.
QV_INLINE Vec AfterFractions(const Sums& sums) { return PackUnsigned16(sums.even, sums.odd); }

// Blue and green share a vector, blue where fractions were. Red is alone: nothing takes its
// fractions.
QV_INLINE Vec BlueAndGreen(const ColorSums& half) {
  return Or(ShiftRight16<8>(AfterFractions(half.blue)),
            And(AfterFractions(half.green), Splat16(0xFF00)));
}

// Where byte `byte` of a lane's 48 bytes B, G, R is found. The first 16 come from the first half,
// the last ones from the second half, and those between from both, of which OddThenEven32 keeps
// pixels 4, 6, 5, 7 and 8, 10, 9, 11.
constexpr int PlaceOfSum(int byte) {
  const int pixel = byte / 3;
  const int place = byte / 16 == 1 ? pixel / 8 * 4 + pixel % 2 * 2 + pixel % 4 / 2
                                   : pixel % 2 * 4 + pixel % 8 / 2;
  return 2 * place + (byte % 3 > 0);
}

// The shuffle for 16 bytes of a lane's 48, from byte 16 * part: those of red, or the others.
struct SumIndex {
  alignas(16) Byte at[16];
  constexpr SumIndex(int part, bool red) : at() {
    for (int i = 0; i < 16; ++i) {
      const int byte = 16 * part + i;
      at[i] = (byte % 3 == 2) == red ? static_cast<Byte>(PlaceOfSum(byte)) : 0x80;
    }
  }
};

template <int part>
QV_INLINE Vec JoinColours(Vec blueGreen, Vec red) {
  static constexpr SumIndex index[2] = {{part, false}, {part, true}};
  return Or(ShuffleBytes(blueGreen, LoadSplat128(index[0].at)),
            ShuffleBytes(red, LoadSplat128(index[1].at)));
}

// A block of pixels.
template <class Store>
QV_INLINE void StoreBGR(Byte* dst, const ColorSums& first, const ColorSums& second, Store store) {
  if constexpr (kHasBytePermute || !kHasByteShuffle) {
    StoreBGR(dst, Wholes(first), Wholes(second), store);
  } else {
    const Vec low = BlueAndGreen(first), high = BlueAndGreen(second);
    const Vec lowRed = AfterFractions(first.red), highRed = AfterFractions(second.red);
    Vec a = JoinColours<0>(low, lowRed);
    Vec b = JoinColours<1>(OddThenEven32(low, high), OddThenEven32(lowRed, highRed));
    Vec c = JoinColours<2>(high, highRed);
    LanesInTurns(a, b, c);
    store(dst, a);
    store(dst + kVecBytes, b);
    store(dst + 2 * kVecBytes, c);
  }
}

}  // namespace qv::QV_LEVEL

#endif
#endif
