// A foreground with alpha laid over a frame, in place.
#include "kernels/composite/Composite.h"
#include "kernels/level/Level.h"

#if QV_HAS_VECTORS
#include "kernels/composite/Alphas.h"
#include "kernels/composite/OverlayBlend.h"
#endif

namespace qv::QV_LEVEL {

namespace {

// What is laid over, from some pixel on: a null alpha is one of 255 everywhere.
struct Layer {
  const Byte *colours, *alpha;
};

// Bytes a pixel of the foreground, with its own alpha if these are four, and of the frame.
template <int kFg, int kFrame>
struct Layout {
  static constexpr int fg = kFg, frame = kFrame;

  static Layer At(const Layer& row, ptrdiff_t x) {
    return {row.colours + kFg * x, row.alpha ? row.alpha + x : nullptr};
  }
};

struct Strength {
  int opacity;
  bool premultiplied;
};

[[maybe_unused]] QV_INLINE Byte OverByte(int f, int b, int alpha, const Strength& s) {
  const int share = alpha * s.opacity;
  const int sum = f * (s.premultiplied ? 255 * s.opacity : share) + b * (65025 - share);
  return ToByte((sum + 65025 / 2) / 65025);
}

template <class L>
void OverRowPlain(Byte* frame, const Layer& layer, ptrdiff_t width, const Strength& s) {
  for (ptrdiff_t x = 0; x < width; ++x, frame += L::frame) {
    const Layer at = L::At(layer, x);
    const int alpha = L::fg == 4 ? at.colours[3] : at.alpha ? *at.alpha : 255;
    for (int c = 0; c < (L::frame == 1 ? 1 : 3); ++c)
      frame[c] = OverByte(at.colours[c], frame[c], alpha, s);
  }
}

#if QV_HAS_VECTORS

// ---- How the vectors of a block lie in memory ---------------------------------------------------

// One after the other; its first pixels alone; or, of sixteen pixels for each 128-bit lane, with
// their lanes apart.
struct Whole {
  template <int kPixel>
  QV_INLINE Vec Get(const Byte* p, int j) const {
    return Load(p + kVecBytes * j);
  }
  template <int kPixel>
  QV_INLINE void Put(Byte* p, int j, Vec v) const {
    Store(p + kVecBytes * j, v);
  }
};

struct FirstPixels {
  ptrdiff_t pixels;

  template <int kPixel>
  QV_INLINE Vec Get(const Byte* p, int j) const {
    return LoadPart(p + kVecBytes * j, FirstOf64(kPixel * pixels, kVecBytes * j));
  }
  template <int kPixel>
  QV_INLINE void Put(Byte* p, int j, Vec v) const {
    StorePart(p + kVecBytes * j, v, FirstOf64(kPixel * pixels, kVecBytes * j));
  }
};

struct LanesApart {
  template <int kPixel>
  QV_INLINE Vec Get(const Byte* p, int j) const {
    return LoadLanes(p + 16 * j, 16 * kPixel);
  }
  template <int kPixel>
  QV_INLINE void Put(Byte* p, int j, Vec v) const {
    StoreLanes(v, [=](int i) { return p + 16 * j + 16 * kPixel * i; });
  }
};

// ---- The foreground of a block ------------------------------------------------------------------

// Colours as the frame has them, an alpha for each byte, and whether they change anything.
template <int kVectors>
struct Foreground {
  Vec colour[kVectors], alpha[kVectors];
  bool shows;
};

// kAdds: the foreground's colours are added, whatever its alpha.
template <bool kAdds, class L>
struct ForegroundOf;

// Alphas in a plane of their own.
template <bool kAdds, int kChannels>
struct ForegroundOf<kAdds, Layout<kChannels, kChannels>> {
  static constexpr int kVectors = kChannels, kPixels = kVecBytes;

  template <class Access>
  static QV_INLINE Foreground<kVectors> Get(const Layer& at, const Access& access, Vec constant) {
    Foreground<kVectors> f;
    const Vec alpha = at.alpha ? access.template Get<1>(at.alpha, 0) : constant;
    Vec all = alpha;
    for (int j = 0; j < kVectors; ++j) {
      f.colour[j] = access.template Get<kChannels>(at.colours, j);
      if constexpr (kAdds) all = Or(all, f.colour[j]);
    }
    f.shows = AnyBits(all);
    f.alpha[0] = AlphasOf<kChannels, 0>(alpha);
    if constexpr (kChannels == 3) {
      f.alpha[1] = AlphasOf<3, 1>(alpha);
      f.alpha[2] = AlphasOf<3, 2>(alpha);
    }
    return f;
  }
};

// Four bytes over four. The fourth one of the frame stays: its alpha is 0, and its colour too where
// that is added.
template <bool kAdds>
struct ForegroundOf<kAdds, Layout<4, 4>> {
  static constexpr int kVectors = 1, kPixels = kVecBytes / 4;

  template <class Access>
  static QV_INLINE Foreground<1> Get(const Layer& at, const Access& access, Vec) {
    const Vec v = access.template Get<4>(at.colours, 0);
    const bool shows = AnyBits(kAdds ? v : And(v, Splat32(-0x1000000)));
    return {{kAdds ? And(v, Splat32(0xFFFFFF)) : v}, {ThreeAlphas(v)}, shows};
  }

 private:
  static QV_INLINE Vec ThreeAlphas(Vec v) {
    if constexpr (kHasByteShuffle) {
      static constexpr ByteTable kIndex =
          MakeByteTable([](int i) { return i % 4 == 3 ? 0x80 : i % 16 | 3; });
      return ShuffleBytes(v, Load(kIndex.b));
    }
    const Vec alpha = ShiftRight32<24>(v);
    return Or(alpha, Or(ShiftLeft32<8>(alpha), ShiftLeft32<16>(alpha)));
  }
};

// Four bytes over three.
template <bool kAdds>
struct ForegroundOf<kAdds, Layout<4, 3>> {
  static constexpr int kVectors = 3, kPixels = kVecBytes;

  template <class Access>
  static QV_INLINE Foreground<3> Get(const Layer& at, const Access& access, Vec) {
    Vec v[4];
    for (int j = 0; j < 4; ++j) v[j] = access.template Get<4>(at.colours, j);
    const Vec all = Or(Or(v[0], v[1]), Or(v[2], v[3]));
    Foreground<3> f;
    f.shows = AnyBits(kAdds ? all : And(all, Splat32(-0x1000000)));
    Gather<false>(v, f.colour);
    Gather<true>(v, f.alpha);
    return f;
  }

 private:
  // Where byte i of three bytes a pixel is found among four, as a colour or as its pixel's alpha.
  static constexpr int From(int i, bool alpha) {
    return alpha ? i / 3 * 4 + 3 : WithoutFourths(i);
  }
  template <bool kAlpha>
  static constexpr ByteTable kAcross[3] = {
      MakeByteTable([](int i) { return From(i, kAlpha); }),
      MakeByteTable([](int i) { return From(kVecBytes + i, kAlpha) - kVecBytes; }),
      MakeByteTable([](int i) { return From(2 * kVecBytes + i, kAlpha) - 2 * kVecBytes; })};
  // The shuffles that JoinTwelves wants.
  template <bool kAlpha, int i>
  static constexpr ByteTable kTwelve = MakeTwelve(i, [](int k) { return From(k, kAlpha); });

  template <bool kAlpha>
  static QV_INLINE void Gather(const Vec (&v)[4], Vec (&to)[3]) {
    if constexpr (kHasBytePermute) {
      for (int j = 0; j < 3; ++j)
        to[j] = PermuteBytes2(v[j], Load(kAcross<kAlpha>[j].b), v[j + 1]);
    } else {
      to[0] = ShuffleBytes(v[0], Load(&kTwelve<kAlpha, 0>));
      to[1] = ShuffleBytes(v[1], Load(&kTwelve<kAlpha, 1>));
      to[2] = ShuffleBytes(v[2], Load(&kTwelve<kAlpha, 2>));
      JoinTwelves(to[0], to[1], to[2], ShuffleBytes(v[3], Load(&kTwelve<kAlpha, 3>)));
    }
  }
};

// ---- Rows ---------------------------------------------------------------------------------------

// Bytes of the frame to store, if any.
template <int kVectors>
struct Blended {
  Vec v[kVectors];
  bool shows;
};

template <class L, class Blend, class Access>
QV_INLINE auto BlendBlock(const Byte* frame, const Layer& at, const Access& access, Vec constant,
                          const Blend& blend) {
  using Source = ForegroundOf<Blend::kAdds, L>;
  Blended<Source::kVectors> result;
  const auto f = Source::Get(at, access, constant);
  result.shows = f.shows;
  if (f.shows)
    for (int j = 0; j < Source::kVectors; ++j)
      result.v[j] =
          blend(f.colour[j], access.template Get<L::frame>(frame, j), f.alpha[j]);
  return result;
}

template <class L, class Access, int kVectors>
QV_INLINE void PutBlock(Byte* frame, const Access& access, const Blended<kVectors>& result) {
  if (!result.shows) return;
  for (int j = 0; j < kVectors; ++j) access.template Put<L::frame>(frame, j, result.v[j]);
}

// Where only shuffles within lanes take four bytes to three.
template <class L>
constexpr bool kLanesApart = L::fg != L::frame && !kHasBytePermute;
template <class L>
constexpr bool kPlainOnly = L::fg != L::frame && !kHasByteShuffle;

template <bool kApart> struct AccessTo { using Type = Whole; };
template <> struct AccessTo<true> { using Type = LanesApart; };

template <int kFrame>
QV_INLINE ptrdiff_t PixelsToAlign(const Byte* frame) {
  if constexpr (kFrame == 3) return PixelsToAlign3(frame);
  return (BytesToAlign(frame) + kFrame - 1) / kFrame;
}

template <class L, class Blend>
void OverRow(Byte* frame, const Layer& layer, ptrdiff_t width, const Strength& s, Vec constant,
             const Blend& blend) {
  if constexpr (kPlainOnly<L>) return OverRowPlain<L>(frame, layer, width, s);
  const typename AccessTo<kLanesApart<L>>::Type access;
  const bool done = CoverInPlace<ForegroundOf<Blend::kAdds, L>::kPixels>(
      width, false, PixelsToAlign<L::frame>(frame),
      [&](ptrdiff_t x) {
        return BlendBlock<L>(frame + L::frame * x, L::At(layer, x), access, constant, blend);
      },
      [&](ptrdiff_t x, const auto& result, auto) {
        PutBlock<L>(frame + L::frame * x, access, result);
      });
  if (done) return;
  if constexpr (kHasMaskedBytes) {
    const FirstPixels part{width};
    PutBlock<L>(frame, part, BlendBlock<L>(frame, layer, part, constant, blend));
  } else {
    OverRowPlain<L>(frame, layer, width, s);
  }
}

#endif

template <class Row>
QV_INLINE void EachRow(Byte* frame, int frameStep, const Layer& layer, int fgStep, int alphaStep,
                       int height, Row row) {
  for (int y = 0; y < height; ++y)
    row(RowAt(frame, frameStep, y),
        Layer{RowAt(layer.colours, fgStep, y),
              layer.alpha ? RowAt(layer.alpha, alphaStep, y) : nullptr});
}

template <class L>
QV_INLINE IppStatus Overlay(Byte* frame, int frameStep, const Byte* fg, int fgStep,
                            const Byte* alpha, int alphaStep, IppiSize size, int opacity,
                            bool premultiplied) {
  const Strength s = {opacity, premultiplied};
  const auto rows = [&](auto row) {
    EachRow(frame, frameStep, {fg, alpha}, fgStep, alphaStep, size.height, row);
  };
#if QV_HAS_VECTORS
  // Under alphas of 255 both sums are 255 times that of a constant alpha of o and an opacity of
  // 255.
  const bool even = L::fg != 4 && !alpha;
  const Vec constant = Splat8(opacity);
  const auto by = [&](const auto& blend) {
    rows([&](Byte* to, const Layer& from) {
      OverRow<L>(to, from, size.width, s, constant, blend);
    });
  };
  if (opacity == 255 && premultiplied)
    by(OpaquePremultiplied());
  else if (opacity == 255 || even)
    by(OpaqueStraight());
  else if (premultiplied)
    by(Translucent<true>(opacity));
  else
    by(Translucent<false>(opacity));
#else
  rows([&](Byte* to, const Layer& from) { OverRowPlain<L>(to, from, size.width, s); });
#endif
  return StatusOk;
}

}  // namespace

#define QV_OVERLAY(kernel, fgBytes, frameBytes)                                                   \
  IppStatus kernel(Byte* frame, int frameStep, const Byte* fg, int fgStep, const Byte* alpha,     \
                   int alphaStep, IppiSize size, int opacity, bool premultiplied) {               \
    return Overlay<Layout<fgBytes, frameBytes>>(frame, frameStep, fg, fgStep, alpha, alphaStep,   \
                                                size, opacity, premultiplied);                    \
  }
QV_OVERLAY(Overlay_8u_C1, 1, 1)
QV_OVERLAY(Overlay_8u_C3, 3, 3)
QV_OVERLAY(Overlay_8u_AC4, 4, 4)
QV_OVERLAY(Overlay_8u_AC4C3, 4, 3)

}  // namespace qv::QV_LEVEL
