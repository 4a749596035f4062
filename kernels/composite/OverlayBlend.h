// The arithmetic of an overlay: a vector of foreground bytes F over one of the frame's bytes B,
// with an alpha a for each byte, in four kinds.
//
//   opacity 255   straight        round((F * a + B * (255 - a)) / 255)
//                 premultiplied   F + round(B * (255 - a) / 255), at most 255
//   less          with A = a * opacity
//                 straight        round((F * A + B * (65025 - A)) / 65025)
//                 premultiplied   round((F * 255 * opacity + B * (65025 - A)) / 65025), at most 255
//
// Both divisors are odd, so that no quotient lies halfway between two integers.
#ifndef QV_KERNELS_COMPOSITE_OVERLAYBLEND_H
#define QV_KERNELS_COMPOSITE_OVERLAYBLEND_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

// x / 255, rounded, of t = x + 128 in 16-bit lanes, x up to 65025: with t = 255 k + s, s from 1 to
// 255, that is k, and t * 257 / 65536 = k + s / 255 - t / 255 / 65536. What is taken off lies
// between 0 and 1 / 255.
QV_INLINE Vec RoundedOver255(Vec t) { return MulHighUnsigned16(t, Splat16(257)); }

// ---- Opacity 255 --------------------------------------------------------------------------------

// F * a + B * (255 - a) + 128 of the bytes of one half. Where pairs of bytes are multiplied and
// added, one factor is signed: it is the colours, less 128. Their sum is 255 * 128 less, which
// fits, and the addition of 32768 makes up for it and rounds.
struct OpaqueStraight {
  static constexpr bool kAdds = false;

  QV_INLINE Vec operator()(Vec f, Vec b, Vec alpha) const {
    const Vec rest = Complement(alpha);
    if constexpr (kHasByteShuffle) {
      f = Xor(f, Splat8(-128)), b = Xor(b, Splat8(-128));
      return PackUnsigned16(
          Mixed(InterleaveLow8(alpha, rest), InterleaveLow8(f, b)),
          Mixed(InterleaveHigh8(alpha, rest), InterleaveHigh8(f, b)));
    }
    return PackUnsigned16(
        Mixed16(InterleaveLow8(f, Zero()), InterleaveLow8(b, Zero()),
                InterleaveLow8(alpha, Zero()), InterleaveLow8(rest, Zero())),
        Mixed16(InterleaveHigh8(f, Zero()), InterleaveHigh8(b, Zero()),
                InterleaveHigh8(alpha, Zero()), InterleaveHigh8(rest, Zero())));
  }

 private:
  static QV_INLINE Vec Mixed(Vec weights, Vec colours) {
    return RoundedOver255(Add16(MulAddBytes(weights, colours), Splat16(-32768)));
  }
  static QV_INLINE Vec Mixed16(Vec f, Vec b, Vec alpha, Vec rest) {
    return RoundedOver255(
        Add16(Add16(MulLow16(f, alpha), MulLow16(b, rest)), Splat16(128)));
  }
};

struct OpaquePremultiplied {
  static constexpr bool kAdds = true;

  QV_INLINE Vec operator()(Vec f, Vec b, Vec alpha) const {
    const Vec rest = Complement(alpha);
    return AddSaturated8(
        f, PackUnsigned16(Left(InterleaveLow8(b, Zero()), InterleaveLow8(rest, Zero())),
                          Left(InterleaveHigh8(b, Zero()), InterleaveHigh8(rest, Zero()))));
  }

 private:
  static QV_INLINE Vec Left(Vec b, Vec rest) {
    return RoundedOver255(Add16(MulLow16(b, rest), Splat16(128)));
  }
};

// ---- Less ---------------------------------------------------------------------------------------

// floor(m / 65025) in 32-bit lanes, m below 2^31. The factor is 2^47 / 65025, rounded up: the
// product passes m * 2^47 / 65025 by less than m, and 2^47 / 65025 is missing to the next integer
// at least.
QV_INLINE Vec Over65025(Vec m) {
  constexpr long long kFactor = ((1ll << 47) + 65024) / 65025;
  const Vec factor = Splat64(kFactor);
  const Vec even = ShiftRight64<47>(MulEven32(m, factor));
  const Vec odd = ShiftRight64<47>(MulEven32(ShiftRight64<32>(m), factor));
  return Or(even, ShiftLeft64<32>(odd));
}

// The weights of a pair of colours, up to 65025, are brought into signed 16 bits by 32768, and the
// sum gets that many times both colours back.
template <bool kPremultiplied>
struct Translucent {
  static constexpr bool kAdds = kPremultiplied;
  Vec opacity, constant;

  explicit Translucent(int o) : opacity(Splat16(o)), constant(Splat16(255 * o - 32768)) {}

  QV_INLINE Vec operator()(Vec f, Vec b, Vec alpha) const {
    return PackUnsigned16(
        Mixed16(InterleaveLow8(f, Zero()), InterleaveLow8(b, Zero()),
                InterleaveLow8(alpha, Zero())),
        Mixed16(InterleaveHigh8(f, Zero()), InterleaveHigh8(b, Zero()),
                InterleaveHigh8(alpha, Zero())));
  }

 private:
  QV_INLINE Vec Mixed16(Vec f, Vec b, Vec alpha) const {
    const Vec share = MulLow16(alpha, opacity), both = Add16(f, b);
    const Vec ofF = kPremultiplied ? constant : Add16(share, Splat16(-32768));
    const Vec ofB = Sub16(Splat16(65025 - 32768), share);
    return PackSigned32(
        Mixed32(InterleaveLow16(f, b), InterleaveLow16(ofF, ofB), InterleaveLow16(both, Zero())),
        Mixed32(InterleaveHigh16(f, b), InterleaveHigh16(ofF, ofB),
                InterleaveHigh16(both, Zero())));
  }
  static QV_INLINE Vec Mixed32(Vec colours, Vec weights, Vec both) {
    return Over65025(Add32(MulAddPairs16(colours, weights),
                           Add32(ShiftLeft32<15>(both), Splat32(65025 / 2))));
  }
};

}  // namespace qv::QV_LEVEL

#endif
