// Composition of two images under constant alphas.
#include "kernels/composite/Composite.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// Every composition is A scaled by up to two factors, plus B scaled by up to two. A factor of 255
// leaves a byte as it is.
struct Composition {
  int a[2];
  int b[2];
  bool usesB;
};

// The weighted forms 0, 3 and 4 are sums modulo 256, all others saturate. It need not be told
// apart: the terms of these three are at most alpha1 and 255 - alpha1, so they never pass 255.
Composition CompositionOf(int type, int alpha1, int alpha2) {
  const int rest1 = 255 - alpha1, rest2 = 255 - alpha2;
  switch (type) {
    case AlphaOver: return {{alpha1, 255}, {alpha2, rest1}, true};
    case AlphaIn: return {{alpha1, alpha2}, {0, 0}, false};
    case AlphaOut: return {{alpha1, rest2}, {0, 0}, false};
    case AlphaAtop: return {{alpha1, alpha2}, {alpha2, rest1}, true};
    case AlphaXor: return {{alpha1, rest2}, {alpha2, rest1}, true};
    case AlphaPlus: return {{alpha1, 255}, {alpha2, 255}, true};
    case AlphaOverPremul: return {{255, 255}, {rest1, 255}, true};
    case AlphaInPremul: return {{alpha2, 255}, {0, 0}, false};
    case AlphaOutPremul: return {{rest2, 255}, {0, 0}, false};
    case AlphaAtopPremul: return {{alpha2, 255}, {rest1, 255}, true};
    case AlphaXorPremul: return {{rest2, 255}, {rest1, 255}, true};
    default: return {{255, 255}, {255, 255}, true};  // AlphaPlusPremul
  }
}

// floor(x / 255) for x up to 65025.
QV_INLINE int Div255(int x) { return (x + 1 + (x >> 8)) >> 8; }

QV_INLINE int Scale(int x, const int (&factors)[2]) {
  return Div255(Div255(x * factors[0]) * factors[1]);
}

void ComposeRow(const Byte* a, const Byte* b, Byte* dst, ptrdiff_t bytes, const Composition& c) {
  if (c.usesB)
    for (ptrdiff_t k = 0; k < bytes; ++k) dst[k] = ToByte(Scale(a[k], c.a) + Scale(b[k], c.b));
  else
    for (ptrdiff_t k = 0; k < bytes; ++k) dst[k] = static_cast<Byte>(Scale(a[k], c.a));
}

template <int kChannels>
QV_INLINE IppStatus Compose(const Byte* src1, int src1Step, int alpha1, const Byte* src2,
                            int src2Step, int alpha2, Byte* dst, int dstStep, IppiSize size,
                            int alphaType) {
  if (!src1 || !src2 || !dst) return StatusNullPtrErr;
  if (size.width < 1 || size.height < 1) return StatusSizeErr;
  if (alphaType < AlphaOver || alphaType > AlphaPlusPremul) return StatusAlphaTypeErr;
  const Composition composition = CompositionOf(alphaType, alpha1, alpha2);
  const ptrdiff_t rowBytes = static_cast<ptrdiff_t>(size.width) * kChannels;
  for (int y = 0; y < size.height; ++y)
    ComposeRow(RowAt(src1, src1Step, y), RowAt(src2, src2Step, y), RowAt(dst, dstStep, y),
               rowBytes, composition);
  return StatusOk;
}

}  // namespace

IppStatus AlphaCompC_8u_C1(const Byte* src1, int src1Step, Byte alpha1, const Byte* src2,
                           int src2Step, Byte alpha2, Byte* dst, int dstStep, IppiSize size,
                           IppiAlphaType alphaType) {
  return Compose<1>(src1, src1Step, alpha1, src2, src2Step, alpha2, dst, dstStep, size, alphaType);
}

IppStatus AlphaCompC_8u_C3(const Byte* src1, int src1Step, Byte alpha1, const Byte* src2,
                           int src2Step, Byte alpha2, Byte* dst, int dstStep, IppiSize size,
                           IppiAlphaType alphaType) {
  return Compose<3>(src1, src1Step, alpha1, src2, src2Step, alpha2, dst, dstStep, size, alphaType);
}

}  // namespace qv::QV_LEVEL
