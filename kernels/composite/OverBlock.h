// The colours of a few pixels merged in single precision: the block that the over merge's vector
// rows are made of, in three shapes.
//
//   OverBlock(pixels)         kOverPixels pixels, three bytes each, the foreground in place
//   OverPart(pixels, bytes)   the pixels of the first `bytes` colour bytes
//
// A block may read kOverReads colour bytes and kOverPixels alphas; it stores 3 * kOverPixels bytes.
// A part, of up to 3 * kOverPixels bytes, touches nothing past it.
#ifndef QV_KERNELS_COMPOSITE_OVERBLOCK_H
#define QV_KERNELS_COMPOSITE_OVERBLOCK_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

// Where the colours, three bytes a pixel, and the alphas, one byte a pixel, of a block begin.
struct OverPixels {
  Byte* fg;
  const Byte *fgAlpha, *bg, *bgAlpha, *merged;
};

// x / 255, rounded, of integers from 0 to 256: x / 255 = p + p / 65535 with p = x * 257 / 65536,
// which is exact. The second term is so small that its own rounding never shows in the sum; all 257
// values are those of a division.
constexpr float k257Over65536 = 257.0f / 65536.0f;
QV_INLINE Floats AddOver65535(Floats p) {
  const Floats part = SplatFloat(1.0f / 65535.0f);
  if constexpr (kHasFusedMultiply) return FusedMulAdd(p, part, p);
  return AddFloat(p, MulFloat(p, part));
}
QV_INLINE Floats Over255(Floats x) { return AddOver65535(MulFloat(x, SplatFloat(k257Over65536))); }

// What the alphas of a pixel make of its colours: (F * foreground + background * B) / divisor.
struct OverWeights {
  Floats foreground, background, divisor;
};

// Of alphas over 255; the merged one comes with the 1 added before.
QV_INLINE OverWeights WeightsOf(Floats fgAlpha, Floats bgAlpha, Floats divisor) {
  return {fgAlpha, MulFloat(SubFloat(SplatFloat(1.0f), fgAlpha), bgAlpha), divisor};
}

// Bytes from the 32-bit lanes of three vectors, which saturate twice: to 16 bits, then to bytes.
// Every 128-bit lane gets four bytes of each vector's.
QV_INLINE Vec PackThree(const Vec (&v)[3]) {
  return PackUnsigned16(PackSigned32(v[0], v[1]), PackSigned32(v[2], v[2]));
}

// ---- Sixteen pixels, where bytes are permuted across a vector and multiplications fused ---------

// The bytes that `index` picks, one for each 32-bit lane, as numbers above 2^23: a byte in the low
// end of that number's significand.
QV_INLINE Floats BytesAbove23(Vec bytes, const ByteTable& index) {
  return AsFloats(
      PermuteBytesOver(Splat32(0x4B000000), 0x1111111111111111u, bytes, Load(index.b)));
}

// x * weight, rounded once, of x + 2^23: the fused operation takes 2^23 * weight, which is exact,
// off the exact product.
QV_INLINE Floats WeighAbove23(Floats x, Floats weight) {
  return FusedMulAdd(x, weight, MulFloat(weight, SplatFloat(-0x1p23f)));
}

// (x + plus) / 255 of 16 bytes x. A byte twice in the low end of the significand of 128 is 128 +
// x * 257 / 65536; the subtraction is exact.
template <int plus>
QV_INLINE Floats AlphasOver255(Vec alphas) {
  static constexpr ByteTable kIndex = MakeByteTable([](int i) { return i / 4; });
  const Vec above =
      PermuteBytesOver(Splat32(0x43000000), 0x3333333333333333u, alphas, Load(kIndex.b));
  return AddOver65535(SubFloat(AsFloats(above), SplatFloat(128.0f - plus * k257Over65536)));
}

// 1 / divisor in two terms. For every sum from 2^-20 to 256 and each of the 256 divisors, the
// integer nearest to sum * (high + low), rounded to single precision, is that of a division: they
// have been compared. Smaller quotients are below 1/2.
struct Reciprocal {
  Floats high, low;

  explicit Reciprocal(Floats divisor) {
    high = DivFloat(SplatFloat(1.0f), divisor);
    low = MulFloat(high, FusedNegMulAdd(high, divisor, SplatFloat(1.0f)));
  }
  Floats Times(Floats sum) const { return FusedMulAdd(sum, high, MulFloat(sum, low)); }
};

QV_INLINE Vec MergedColors(Vec f, Vec fgAlpha, Vec b, Vec bgAlpha, Vec merged) {
  static constexpr ByteTable kChannel[3] = {
      MakeByteTable([](int i) { return i / 4 * 3; }),
      MakeByteTable([](int i) { return i / 4 * 3 + 1; }),
      MakeByteTable([](int i) { return i / 4 * 3 + 2; })};
  static constexpr ByteTable kInterleave =
      MakeByteTable([](int i) { return i < 48 ? i / 12 * 16 + i % 3 * 4 + i / 3 % 4 : 0; });
  const OverWeights w = WeightsOf(AlphasOver255<0>(fgAlpha), AlphasOver255<0>(bgAlpha),
                                  AlphasOver255<1>(merged));
  const Reciprocal reciprocal(w.divisor);
  Vec result[3];
  for (int c = 0; c < 3; ++c) {
    const Floats sum = AddFloat(WeighAbove23(BytesAbove23(f, kChannel[c]), w.foreground),
                                WeighAbove23(BytesAbove23(b, kChannel[c]), w.background));
    result[c] = NearestInts(reciprocal.Times(sum));
  }
  return PermuteBytes(PackThree(result), Load(kInterleave.b));
}

QV_INLINE void OverPermuted(const OverPixels& p) {
  const auto alphas = [](const Byte* at) { return FromLane(Load128(at)); };
  const Vec colors = MergedColors(LoadOnce(p.fg), alphas(p.fgAlpha), LoadOnce(p.bg),
                                  alphas(p.bgAlpha), alphas(p.merged));
  // Not one masked store: the next block's load would have to wait for it.
  StoreLowHalf(p.fg, colors);
  Store128(p.fg + 32, Lane<2>(colors));
}

QV_INLINE void OverMasked(const OverPixels& p, ptrdiff_t bytes) {
  const unsigned long long colors = FirstOf64(bytes, 0), pixels = FirstOf64((bytes + 2) / 3, 0);
  StorePart(p.fg, MergedColors(LoadPart(p.fg, colors), LoadPart(p.fgAlpha, pixels),
                               LoadPart(p.bg, colors), LoadPart(p.bgAlpha, pixels),
                               LoadPart(p.merged, pixels)),
            colors);
}

// ---- Eight pixels, four in each of two 128-bit lanes --------------------------------------------

QV_INLINE Floats AlphaFloats(const Byte* alpha) { return ToFloats(LoadBytesAs32(alpha)); }

// Pixels 0 to 3 in the first twelve bytes of the low lane, 4 to 7 in the last twelve of the high
// one.
QV_INLINE Vec LoadColors(const Byte* p) {
  return LoadLanes([=](int i) { return p + 8 * i; });
}

QV_INLINE void OverTwoLanes(const OverPixels& p) {
  // Byte 3 * pixel + channel of a lane's pixels to the low end of a 32-bit lane, 0 above it.
  const auto channelIndex = [](int i, int c) {
    return i % 4 ? 0x80 : i % 16 / 4 * 3 + c + (i < 16 ? 0 : 4);
  };
  static constexpr ByteTable kChannel[3] = {
      MakeByteTable([=](int i) { return channelIndex(i, 0); }),
      MakeByteTable([=](int i) { return channelIndex(i, 1); }),
      MakeByteTable([=](int i) { return channelIndex(i, 2); })};
  // The way back: four bytes of each channel to four pixels, in the low twelve bytes of the low
  // lane and the high twelve of the high one.
  static constexpr ByteTable kInterleave = MakeByteTable([](int i) {
    const int byte = i < 16 ? i : i - 20;
    return byte < 0 || byte > 11 ? 0x80 : byte % 3 * 4 + byte / 3;
  });
  const OverWeights w =
      WeightsOf(Over255(AlphaFloats(p.fgAlpha)), Over255(AlphaFloats(p.bgAlpha)),
                Over255(AddFloat(AlphaFloats(p.merged), SplatFloat(1.0f))));
  const Vec f = LoadColors(p.fg), b = LoadColors(p.bg);
  Vec result[3];
  for (int c = 0; c < 3; ++c) {
    const Vec index = Load(kChannel[c].b);
    const Floats sum = AddFloat(MulFloat(ToFloats(ShuffleBytes(f, index)), w.foreground),
                                MulFloat(w.background, ToFloats(ShuffleBytes(b, index))));
    result[c] = NearestInts(DivFloat(sum, w.divisor));
  }
  const Vec colors = ShuffleBytes(PackThree(result), Load(kInterleave.b));
  const Vec128 low = Lane<0>(colors), high = Lane<1>(colors);
  Store64(p.fg, low);
  Store128(p.fg + 8, Or(ShiftBytesDown<8>(low), high));
}

// ---- Sixteen pixels, with 128-bit vectors -------------------------------------------------------

struct FourFloats {
  Floats f[4];
};

QV_INLINE FourFloats WidenBytes(Vec bytes) {
  const Vec low = InterleaveLow8(bytes, Zero()), high = InterleaveHigh8(bytes, Zero());
  return {{ToFloats(InterleaveLow16(low, Zero())), ToFloats(InterleaveHigh16(low, Zero())),
           ToFloats(InterleaveLow16(high, Zero())), ToFloats(InterleaveHigh16(high, Zero()))}};
}

// Four pixels' values each three times make three vectors; this is vector `third` of them.
template <int third>
QV_INLINE Floats Spread(Floats x) {
  if constexpr (third == 0) return ShuffleFloats<0, 0, 0, 1>(x);
  if constexpr (third == 1) return ShuffleFloats<1, 1, 2, 2>(x);
  return ShuffleFloats<2, 3, 3, 3>(x);
}

template <int third>
QV_INLINE Vec MergedQuad(Floats f, Floats b, const OverWeights& w) {
  const Floats sum = AddFloat(MulFloat(f, Spread<third>(w.foreground)),
                              MulFloat(Spread<third>(w.background), b));
  return NearestInts(DivFloat(sum, Spread<third>(w.divisor)));
}

QV_INLINE void OverQuads(const OverPixels& p) {
  const FourFloats fa = WidenBytes(Load(p.fgAlpha)), ba = WidenBytes(Load(p.bgAlpha)),
                   a = WidenBytes(Load(p.merged));
  OverWeights w[4];
  for (int q = 0; q < 4; ++q)
    w[q] = WeightsOf(Over255(fa.f[q]), Over255(ba.f[q]),
                     Over255(AddFloat(a.f[q], SplatFloat(1.0f))));
  // Twelve vectors of four colour bytes; vector q belongs to the pixels of w[q / 3].
  const auto merge = [&](int j, const auto& mergeFour) {
    const FourFloats f = WidenBytes(Load(p.fg + 16 * j)), b = WidenBytes(Load(p.bg + 16 * j));
    Store(p.fg + 16 * j, mergeFour(f, b));
  };
  const auto pack = [](Vec q0, Vec q1, Vec q2, Vec q3) {
    return PackUnsigned16(PackSigned32(q0, q1), PackSigned32(q2, q3));
  };
  merge(0, [&](const FourFloats& f, const FourFloats& b) {
    return pack(MergedQuad<0>(f.f[0], b.f[0], w[0]), MergedQuad<1>(f.f[1], b.f[1], w[0]),
                MergedQuad<2>(f.f[2], b.f[2], w[0]), MergedQuad<0>(f.f[3], b.f[3], w[1]));
  });
  merge(1, [&](const FourFloats& f, const FourFloats& b) {
    return pack(MergedQuad<1>(f.f[0], b.f[0], w[1]), MergedQuad<2>(f.f[1], b.f[1], w[1]),
                MergedQuad<0>(f.f[2], b.f[2], w[2]), MergedQuad<1>(f.f[3], b.f[3], w[2]));
  });
  merge(2, [&](const FourFloats& f, const FourFloats& b) {
    return pack(MergedQuad<2>(f.f[0], b.f[0], w[2]), MergedQuad<0>(f.f[1], b.f[1], w[3]),
                MergedQuad<1>(f.f[2], b.f[2], w[3]), MergedQuad<2>(f.f[3], b.f[3], w[3]));
  });
}

// ---- What the level has -------------------------------------------------------------------------

constexpr bool kOverPermuted = kHasBytePermute && kHasMaskedBytes && kHasFusedMultiply;
constexpr bool kOverTwoLanes = kHasByteShuffle && kLanes128 == 2;
static_assert(kOverPermuted || kOverTwoLanes || kLanes128 == 1);
constexpr int kOverPixels = kOverTwoLanes ? 8 : 16;
constexpr int kOverReads = kOverPermuted ? 64 : 3 * kOverPixels;

QV_INLINE void OverBlock(const OverPixels& p) {
  if constexpr (kOverPermuted)
    OverPermuted(p);
  else if constexpr (kOverTwoLanes)
    OverTwoLanes(p);
  else
    OverQuads(p);
}

// Goes through copies.
__attribute__((noinline)) inline void OverCopied(const OverPixels& p, ptrdiff_t bytes) {
  Byte f[kOverReads] = {}, b[kOverReads] = {};
  Byte alphas[3][kOverPixels] = {};
  const size_t colors = static_cast<size_t>(bytes), pixels = (colors + 2) / 3;
  memcpy(f, p.fg, colors);
  memcpy(b, p.bg, colors);
  memcpy(alphas[0], p.fgAlpha, pixels);
  memcpy(alphas[1], p.bgAlpha, pixels);
  memcpy(alphas[2], p.merged, pixels);
  OverBlock({f, alphas[0], b, alphas[1], alphas[2]});
  memcpy(p.fg, f, colors);
}

QV_INLINE void OverPart(const OverPixels& p, ptrdiff_t bytes) {
  if constexpr (kOverPermuted)
    OverMasked(p, bytes);
  else
    OverCopied(p, bytes);
}

}  // namespace qv::QV_LEVEL

#endif
