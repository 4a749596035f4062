// Mixing a colour image into another one under an alpha plane.
#include "kernels/composite/Composite.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// The foreground's share is divided by 255, the background's by 256.
QV_INLINE Byte MixByte(unsigned alpha, unsigned src, unsigned dst) {
  const unsigned p = alpha * src;
  const unsigned q = (255 - alpha) * dst;
  return ToByte(static_cast<int>(((p + 1 + (p >> 8)) >> 8) + ((q + 1) >> 8)));
}

template <int kChannels>
void MixRow(Byte* srcDst, const Byte* src, const Byte* alpha, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; ++x)
    for (ptrdiff_t i = kChannels * x; i < kChannels * (x + 1); ++i)
      srcDst[i] = MixByte(alpha[x], src[i], srcDst[i]);
}

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
