// B, G and R of pixel pairs in 16.16 fixed point, exact in 32 bits.
//
// The coefficients are wider than the 16 bits that a multiply-add of pairs takes, but they have
// factors: 76284 = 4 * 19071, 132186 = 6 * 22031 and 104595 = 5 * 20919, and 4, 6 and 5 times a
// byte is a small number. 53281 has none: it is 65536 - 12255. No sum passes 2^27.
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
  const Vec green = SubOdd16(MulAddPairs16(chroma, SplatPair16(-25690, 12255)), chroma);
  return {Add32(MulAddPairs16(scaled, SplatPair16(22031, 0)), Splat32(offsets.blue)),
          Add32(green, Splat32(offsets.green)),
          Add32(MulAddPairs16(scaled, SplatPair16(0, 20919)), Splat32(offsets.red))};
}

// `fourY` has 4 times the luma of a pair's pixels in its even and odd 16-bit lanes.
QV_INLINE Colors AddLuma(Vec fourY, const ChromaTerms& chroma) {
  const Vec even = MulAddPairs16(fourY, SplatPair16(19071, 0));
  const Vec odd = MulAddPairs16(fourY, SplatPair16(0, 19071));
  return {HighHalves16(Add32(even, chroma.blue), Add32(odd, chroma.blue)),
          HighHalves16(Add32(even, chroma.green), Add32(odd, chroma.green)),
          HighHalves16(Add32(even, chroma.red), Add32(odd, chroma.red))};
}

}  // namespace qv::QV_LEVEL

#endif
#endif
