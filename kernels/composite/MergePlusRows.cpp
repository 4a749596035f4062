// Mixing a colour image into another one under an alpha plane.
#include "kernels/composite/Composite.h"
#include "kernels/level/Div255.h"
#include "kernels/level/Level.h"

#if QV_HAS_VECTORS
#include "kernels/composite/Alphas.h"
#include "kernels/level/Ahead.h"
#endif

namespace qv::QV_LEVEL {

namespace {

// The foreground's share is divided by 255, the background's by 256.
QV_INLINE Byte MixByte(int alpha, int src, int dst) {
  const int q = (255 - alpha) * dst;
  return ToByte(Div255(alpha * src) + ((q + 1) >> 8));
}

template <int kChannels>
void MixRowPlain(Byte* srcDst, const Byte* src, const Byte* alpha, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; ++x)
    for (ptrdiff_t i = kChannels * x; i < kChannels * (x + 1); ++i)
      srcDst[i] = MixByte(alpha[x], src[i], srcDst[i]);
}

#if QV_HAS_VECTORS

// Both shares are worked out in 16-bit lanes whose high byte is the share and whose low byte is of
// no account, so that one addition of bytes joins them. It needs no saturation: the shares are at
// most a and 255 - a.
//
// floor(a * s / 255) is the high byte of (257 * a) * (256 * s + 1) >> 16: that is a * s / 255, less
// a * s / 255 / 65536, plus 257 * a / 2^24. The addition makes up for the loss, as s is below 256,
// and is less than 1 / 255, so that it reaches no further integer.
QV_INLINE Vec MixLanes(Vec alphaTwice, Vec srcAndOne, Vec background) {
  return Add8(MulHighUnsigned16(alphaTwice, srcAndOne), Add16(background, Splat16(1)));
}

// The bytes at even and at odd places apart, where bytes are permuted. Those at odd places are
// multiplied in the high bytes of their lanes, and their results are in place.
template <int kChannels, int j>
QV_INLINE Vec MixApart(Vec alpha, Vec src, Vec dst) {
  static constexpr ByteTable kEven = TwinIndex<1>(0, 0), kUpper = TwinIndex<1>(0, 1);
  const Vec low = Splat16(0xFF), high = Splat16(0xFF00), one = Splat16(1);
  const TwinAlphas a = TwinsOf<kChannels, j>(alpha);
  const Vec evenAndOne = PermuteBytesOver(one, 0xAAAAAAAAAAAAAAAAu, src, Load(kEven.b));
  const Vec even =
      MixLanes(a.first, evenAndOne, MulLow16(AndNot(a.first, low), And(dst, low)));
  const Vec odd = MixLanes(a.second, Or(And(src, high), one),
                           MulHighUnsigned16(AndNot(a.second, high), And(dst, high)));
  return PermuteBytesOver(odd, 0x5555555555555555u, even, Load(kUpper.b));
}

// The bytes of the low and of the high halves apart.
template <int kChannels, int j>
QV_INLINE Vec MixHalves(Vec alpha, Vec src, Vec dst) {
  const TwinAlphas a = TwinsOf<kChannels, j>(alpha);
  const Vec byte = Splat16(0xFF), one = Splat8(1);
  const Vec low = MixLanes(a.first, InterleaveLow8(one, src),
                           MulLow16(AndNot(a.first, byte), InterleaveLow8(dst, Zero())));
  const Vec high = MixLanes(a.second, InterleaveHigh8(one, src),
                            MulLow16(AndNot(a.second, byte), InterleaveHigh8(dst, Zero())));
  return PackUnsigned16(ShiftRight16<8>(low), ShiftRight16<8>(high));
}

template <int kChannels, int j>
QV_INLINE Vec MixBytes(Vec alpha, Vec src, Vec dst) {
  if constexpr (kHasBytePermute) return MixApart<kChannels, j>(alpha, src, dst);
  return MixHalves<kChannels, j>(alpha, src, dst);
}

// The colours of kVecBytes pixels.
template <int kChannels>
struct Colours {
  Vec v[kChannels];
};

template <int kChannels, bool kAhead>
void MixRow(Byte* srcDst, const Byte* src, const Byte* alpha, ptrdiff_t width) {
  const bool done = CoverInPlace<kVecBytes>(
      width, false, kChannels == 1 ? BytesToAlign(srcDst) : PixelsToAlign3(srcDst),
      [&](ptrdiff_t x) {
        const Byte* const s = src + kChannels * x;
        const Byte* const d = srcDst + kChannels * x;
        if constexpr (kAhead) {
          Prefetch<kChannels * kVecBytes>(s + kPageBytes);
          Prefetch<kChannels * kVecBytes>(d + kPageBytes);
          Prefetch<kVecBytes>(alpha + x + kPageBytes / kChannels);
        }
        const Vec a = Load(alpha + x);
        Colours<kChannels> mixed;
        mixed.v[0] = MixBytes<kChannels, 0>(a, Load(s), Load(d));
        if constexpr (kChannels == 3) {
          mixed.v[1] = MixBytes<3, 1>(a, Load(s + kVecBytes), Load(d + kVecBytes));
          mixed.v[2] = MixBytes<3, 2>(a, Load(s + 2 * kVecBytes), Load(d + 2 * kVecBytes));
        }
        return mixed;
      },
      [&](ptrdiff_t x, const Colours<kChannels>& mixed, auto store) {
        for (int j = 0; j < kChannels; ++j)
          store(srcDst + kChannels * x + j * kVecBytes, mixed.v[j]);
      });
  if (!done) MixRowPlain<kChannels>(srcDst, src, alpha, width);
}

#else

template <int kChannels, bool>
void MixRow(Byte* srcDst, const Byte* src, const Byte* alpha, ptrdiff_t width) {
  MixRowPlain<kChannels>(srcDst, src, alpha, width);
}

#endif

template <int kChannels, bool kAhead>
__attribute__((noinline)) void MixRows(Byte* srcDst, int srcDstStep, const Byte* src, int srcStep,
                                       const Byte* alpha, int alphaStep, int width, int height) {
  for (int y = 0; y < height; ++y)
    MixRow<kChannels, kAhead>(RowAt(srcDst, srcDstStep, y), RowAt(src, srcStep, y),
                              RowAt(alpha, alphaStep, y), width);
}

template <int kChannels>
QV_INLINE IppStatus Mix(Byte* srcDst, int srcDstStep, const Byte* src, int srcStep,
                        const Byte* alpha, int alphaStep, int width, int height) {
  if (PassesCaches(width, height, 2 * kChannels + 1))
    MixRows<kChannels, true>(srcDst, srcDstStep, src, srcStep, alpha, alphaStep, width, height);
  else
    MixRows<kChannels, false>(srcDst, srcDstStep, src, srcStep, alpha, alphaStep, width, height);
  return StatusOk;
}

}  // namespace

IppStatus MergeAlphaPlus_8u_C1(Byte* srcDst, int srcDstStep, const Byte* src, int srcStep,
                               const Byte* alpha, int alphaStep, int width, int height) {
  return Mix<1>(srcDst, srcDstStep, src, srcStep, alpha, alphaStep, width, height);
}

IppStatus MergeAlphaPlus_8u_C3(Byte* srcDst, int srcDstStep, const Byte* src, int srcStep,
                               const Byte* alpha, int alphaStep, int width, int height) {
  return Mix<3>(srcDst, srcDstStep, src, srcStep, alpha, alphaStep, width, height);
}

}  // namespace qv::QV_LEVEL
