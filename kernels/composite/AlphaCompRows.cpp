// Composition of two images under constant alphas.
#include "kernels/composite/Composite.h"
#include "kernels/level/Div255.h"
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

struct Images {
  const Byte* a;
  int aStep;
  const Byte* b;
  int bStep;
  Byte* dst;
  int dstStep;
  ptrdiff_t rowBytes;
  int rows;
};

#if !QV_HAS_VECTORS

QV_INLINE int Scale(int x, const int (&factors)[2]) {
  return Div255(Div255(x * factors[0]) * factors[1]);
}

void ComposeImages(const Images& images, const Composition& c, bool) {
  for (int y = 0; y < images.rows; ++y) {
    const Byte* const a = RowAt(images.a, images.aStep, y);
    const Byte* const b = RowAt(images.b, images.bStep, y);
    Byte* const dst = RowAt(images.dst, images.dstStep, y);
    if (c.usesB)
      for (ptrdiff_t k = 0; k < images.rowBytes; ++k)
        dst[k] = ToByte(Scale(a[k], c.a) + Scale(b[k], c.b));
    else
      for (ptrdiff_t k = 0; k < images.rowBytes; ++k) dst[k] = static_cast<Byte>(Scale(a[k], c.a));
  }
}

#else

// The factors other than 255, in order.
struct Multipliers {
  Vec f[2];

  explicit Multipliers(const int (&factors)[2])
      : f{Fraction255(factors[0] != 255 ? factors[0] : factors[1]), Fraction255(factors[1])} {}

  static int CountOf(const int (&factors)[2]) {
    return (factors[0] != 255 ? 1 : 0) + (factors[1] != 255 ? 1 : 0);
  }

  template <int kCount>
  QV_INLINE Vec Scale(Vec x) const {
    if constexpr (kCount > 0) x = MulHighUnsigned16(x, f[0]);
    if constexpr (kCount > 1) x = MulHighUnsigned16(x, f[1]);
    return x;
  }
};

// With kA factors on a and kB on b; kB below 0 does not read b.
template <int kA, int kB>
void ComposeBy(const Images& images, const Composition& c, bool stream) {
  const Multipliers fa(c.a), fb(c.b);
  const auto compose = [&](Vec x, [[maybe_unused]] auto loadB) {
    if constexpr (kA == 0 && kB < 0) return x;
    if constexpr (kA == 0 && kB == 0) return AddSaturated8(x, loadB());
    Vec low = fa.Scale<kA>(InterleaveLow8(x, Zero()));
    Vec high = fa.Scale<kA>(InterleaveHigh8(x, Zero()));
    if constexpr (kB >= 0) {
      const Vec y = loadB();
      low = Add16(low, fb.Scale<kB>(InterleaveLow8(y, Zero())));
      high = Add16(high, fb.Scale<kB>(InterleaveHigh8(y, Zero())));
    }
    return PackUnsigned16(low, high);
  };
  const ptrdiff_t bytes = images.rowBytes;
  for (int y = 0; y < images.rows; ++y) {
    const Byte* const a = RowAt(images.a, images.aStep, y);
    const Byte* const b = RowAt(images.b, images.bStep, y);
    Byte* const dst = RowAt(images.dst, images.dstStep, y);
    const bool done = CoverInPlace<kVecBytes, kVecBytes == 16 ? 1 : 2>(
        bytes, stream, BytesToAlign(dst),
        [&](ptrdiff_t i) { return compose(Load(a + i), [&] { return Load(b + i); }); },
        [&](ptrdiff_t i, Vec result, auto store) { store(dst + i, result); });
    if (!done)
      StoreShort(dst, compose(LoadShort(a, bytes), [&] { return LoadShort(b, bytes); }), bytes);
  }
}

void ComposeImages(const Images& images, const Composition& c, bool stream) {
  static constexpr decltype(&ComposeImages) kBy[3][4] = {
      {ComposeBy<0, -1>, ComposeBy<0, 0>, ComposeBy<0, 1>, ComposeBy<0, 2>},
      {ComposeBy<1, -1>, ComposeBy<1, 0>, ComposeBy<1, 1>, ComposeBy<1, 2>},
      {ComposeBy<2, -1>, ComposeBy<2, 0>, ComposeBy<2, 1>, ComposeBy<2, 2>}};
  kBy[Multipliers::CountOf(c.a)][c.usesB ? 1 + Multipliers::CountOf(c.b) : 0](images, c, stream);
}

#endif

template <int kChannels>
QV_INLINE IppStatus Compose(const Byte* src1, int src1Step, int alpha1, const Byte* src2,
                            int src2Step, int alpha2, Byte* dst, int dstStep, IppiSize size,
                            int alphaType) {
  if (!src1 || !src2 || !dst) return StatusNullPtrErr;
  if (size.width < 1 || size.height < 1) return StatusSizeErr;
  if (alphaType < AlphaOver || alphaType > AlphaPlusPremul) return StatusAlphaTypeErr;
  const bool inPlace = dst == src1 || dst == src2;
  const bool stream = !inPlace && PassesCaches(size.width, size.height, kChannels);
  ComposeImages({src1, src1Step, src2, src2Step, dst, dstStep,
                 static_cast<ptrdiff_t>(size.width) * kChannels, size.height},
                CompositionOf(alphaType, alpha1, alpha2), stream);
  if (stream) StreamFence();
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
