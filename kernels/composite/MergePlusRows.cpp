// Mixing a colour image into another one under an alpha plane.
#include "kernels/composite/Composite.h"
#include "kernels/level/Level.h"

#if QV_HAS_VECTORS
#include "kernels/composite/InPlace.h"
#include "kernels/composite/Triple.h"
#endif

namespace qv::QV_LEVEL {

namespace {

// The foreground's share is divided by 255, the background's by 256.
QV_INLINE Byte MixByte(unsigned alpha, unsigned src, unsigned dst) {
  const unsigned p = alpha * src;
  const unsigned q = (255 - alpha) * dst;
  return ToByte(static_cast<int>(((p + 1 + (p >> 8)) >> 8) + ((q + 1) >> 8)));
}

template <int kChannels>
void MixRowPlain(Byte* srcDst, const Byte* src, const Byte* alpha, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; ++x)
    for (ptrdiff_t i = kChannels * x; i < kChannels * (x + 1); ++i)
      srcDst[i] = MixByte(alpha[x], src[i], srcDst[i]);
}

#if QV_HAS_VECTORS

// Both shares are worked out in 16-bit lanes whose high byte is the share and whose low byte is of
// no account, so that one saturated addition of bytes joins them.
//
// floor(a * s / 255) is the high byte of (257 * a) * (256 * s + 1) >> 16: that is a * s / 255, less
// a * s / 255 / 65536, plus 257 * a / 2^24. The addition makes up for the loss, as s is below 256,
// and is less than 1 / 255, so that it reaches no further integer.
QV_INLINE Vec MixWords(Vec alphaTwice, Vec srcAndOne, Vec rest, Vec dst) {
  const Vec first = MulHighUnsigned16(alphaTwice, srcAndOne);
  const Vec second = Add16(MulLow16(rest, dst), Splat16(1));
  return ShiftRight16<8>(AddSaturated8(first, second));
}

QV_INLINE Vec MixBytes(Vec alpha, Vec src, Vec dst) {
  const Vec rest = Xor(alpha, Splat8(-1)), one = Splat8(1);
  return PackUnsigned16(
      MixWords(InterleaveLow8(alpha, alpha), InterleaveLow8(one, src),
               InterleaveLow8(rest, Zero()), InterleaveLow8(dst, Zero())),
      MixWords(InterleaveHigh8(alpha, alpha), InterleaveHigh8(one, src),
               InterleaveHigh8(rest, Zero()), InterleaveHigh8(dst, Zero())));
}

template <int kChannels>
void MixRow(Byte* srcDst, const Byte* src, const Byte* alpha, ptrdiff_t width) {
  bool done;
  if constexpr (kChannels == 1)
    done = CoverInPlace<kVecBytes>(
        width, BytesToAlign(srcDst),
        [&](ptrdiff_t x) {
          return MixBytes(Load(alpha + x), Load(src + x), Load(srcDst + x));
        },
        [&](ptrdiff_t x, Vec result) { Store(srcDst + x, result); });
  else
    done = CoverInPlace<kVecBytes>(
        width, PixelsToAlign3(srcDst),
        [&](ptrdiff_t x) {
          Vec3 v = TripleBytes(Load(alpha + x));
          for (int j = 0; j < 3; ++j)
            v.v[j] = MixBytes(v.v[j], Load(src + 3 * x + j * kVecBytes),
                              Load(srcDst + 3 * x + j * kVecBytes));
          return v;
        },
        [&](ptrdiff_t x, const Vec3& v) {
          for (int j = 0; j < 3; ++j) Store(srcDst + 3 * x + j * kVecBytes, v.v[j]);
        });
  if (!done) MixRowPlain<kChannels>(srcDst, src, alpha, width);
}

#else

template <int kChannels>
void MixRow(Byte* srcDst, const Byte* src, const Byte* alpha, ptrdiff_t width) {
  MixRowPlain<kChannels>(srcDst, src, alpha, width);
}

#endif

template <int kChannels>
QV_INLINE IppStatus Mix(Byte* srcDst, int srcDstStep, const Byte* src, int srcStep,
                        const Byte* alpha, int alphaStep, int width, int height) {
  for (int y = 0; y < height; ++y)
    MixRow<kChannels>(RowAt(srcDst, srcDstStep, y), RowAt(src, srcStep, y),
                      RowAt(alpha, alphaStep, y), width);
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
