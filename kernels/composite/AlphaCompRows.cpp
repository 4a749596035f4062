// Composition of two images under constant alphas.
#include "kernels/composite/Composite.h"
#include "kernels/level/Level.h"

#if QV_HAS_VECTORS
#include "kernels/composite/InPlace.h"
#endif

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

void ComposeRowPlain(const Byte* a, const Byte* b, Byte* dst, ptrdiff_t bytes,
                     const Composition& c) {
  if (c.usesB)
    for (ptrdiff_t k = 0; k < bytes; ++k) dst[k] = ToByte(Scale(a[k], c.a) + Scale(b[k], c.b));
  else
    for (ptrdiff_t k = 0; k < bytes; ++k) dst[k] = static_cast<Byte>(Scale(a[k], c.a));
}

#if QV_HAS_VECTORS

// floor(x * c / 255) of a byte x in a 16-bit lane is x * (257 * c + 1) >> 16 for c up to 254: with
// x * c = 255 k + r, the product is 65535 k + 257 r + x, at least 65536 k as k <= x, and below
// 65536 (k + 1) as 257 r + x <= 257 * 254 + 255. The factor 255 changes nothing and is left out.
struct Factors {
  Vec f[2];
  int count;

  explicit Factors(const int (&factors)[2]) : f{Zero(), Zero()}, count(0) {
    for (const int factor : factors)
      if (factor != 255) f[count++] = Splat16(257 * factor + 1);
  }
};

template <int kCount>
QV_INLINE Vec ScaleWords(Vec x, const Factors& factors) {
  if constexpr (kCount > 0) x = MulHighUnsigned16(x, factors.f[0]);
  if constexpr (kCount > 1) x = MulHighUnsigned16(x, factors.f[1]);
  return x;
}

// A row with kA factors on a and kB on b; kB below 0 does not read b.
template <int kA, int kB>
void ComposeRowBy(const Byte* a, const Byte* b, Byte* dst, ptrdiff_t bytes,
                  const Composition& c) {
  const Factors fa(c.a), fb(c.b);
  const bool done = CoverInPlace<kVecBytes>(
      bytes, BytesToAlign(dst),
      [&](ptrdiff_t i) {
        const Vec x = Load(a + i);
        if constexpr (kA == 0 && kB < 0) return x;
        if constexpr (kA == 0 && kB == 0) return AddSaturated8(x, Load(b + i));
        Vec low = ScaleWords<kA>(InterleaveLow8(x, Zero()), fa);
        Vec high = ScaleWords<kA>(InterleaveHigh8(x, Zero()), fa);
        if constexpr (kB >= 0) {
          const Vec y = Load(b + i);
          low = Add16(low, ScaleWords<kB>(InterleaveLow8(y, Zero()), fb));
          high = Add16(high, ScaleWords<kB>(InterleaveHigh8(y, Zero()), fb));
        }
        return PackUnsigned16(low, high);
      },
      [&](ptrdiff_t i, Vec result) { Store(dst + i, result); });
  if (!done) ComposeRowPlain(a, b, dst, bytes, c);
}

using RowFunction = void(const Byte* a, const Byte* b, Byte* dst, ptrdiff_t bytes,
                         const Composition& c);

RowFunction* RowOf(const Composition& c) {
  static constexpr RowFunction* kRows[3][4] = {
      {ComposeRowBy<0, -1>, ComposeRowBy<0, 0>, ComposeRowBy<0, 1>, ComposeRowBy<0, 2>},
      {ComposeRowBy<1, -1>, ComposeRowBy<1, 0>, ComposeRowBy<1, 1>, ComposeRowBy<1, 2>},
      {ComposeRowBy<2, -1>, ComposeRowBy<2, 0>, ComposeRowBy<2, 1>, ComposeRowBy<2, 2>}};
  return kRows[Factors(c.a).count][c.usesB ? 1 + Factors(c.b).count : 0];
}

#else

constexpr auto RowOf(const Composition&) { return ComposeRowPlain; }

#endif

template <int kChannels>
QV_INLINE IppStatus Compose(const Byte* src1, int src1Step, int alpha1, const Byte* src2,
                            int src2Step, int alpha2, Byte* dst, int dstStep, IppiSize size,
                            int alphaType) {
  if (!src1 || !src2 || !dst) return StatusNullPtrErr;
  if (size.width < 1 || size.height < 1) return StatusSizeErr;
  if (alphaType < AlphaOver || alphaType > AlphaPlusPremul) return StatusAlphaTypeErr;
  const Composition composition = CompositionOf(alphaType, alpha1, alpha2);
  const auto composeRow = RowOf(composition);
  const ptrdiff_t rowBytes = static_cast<ptrdiff_t>(size.width) * kChannels;
  for (int y = 0; y < size.height; ++y)
    composeRow(RowAt(src1, src1Step, y), RowAt(src2, src2Step, y), RowAt(dst, dstStep, y),
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
