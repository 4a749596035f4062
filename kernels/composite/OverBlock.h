// The colours of a few pixels merged in single precision: the block that the over merge's vector
// rows are made of, in two shapes.
//
//   OverBlock(pixels)         kOverPixels pixels, three bytes each, the foreground in place
//   OverPart(pixels, bytes)   the pixels of the first `bytes` colour bytes, up to kPartPixels
//
// Neither touches anything past its pixels.
#ifndef QV_KERNELS_COMPOSITE_OVERBLOCK_H
#define QV_KERNELS_COMPOSITE_OVERBLOCK_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

// Where the colours, three bytes a pixel, and the alphas, one byte a pixel, of a block begin.
struct OverPixels {
  Byte* fg;
  const Byte *fgAlpha, *bg, *bgAlpha, *merged;
};

// What the alphas of a pixel make of its colours: (F * foreground + background * B) / divisor.
struct OverWeights {
  Floats foreground, background, divisor;
};

// Of alphas over 255; the merged one comes with the 1 added before.
QV_INLINE OverWeights WeightsOf(Floats fgAlpha, Floats bgAlpha, Floats divisor) {
  return {fgAlpha, MulFloat(SubFloat(SplatFloat(1.0f), fgAlpha), bgAlpha), divisor};
}

// Of bytes x three times in the low end of 32-bit lanes. For integers x from 1 to 256, the float
// nearest to x / 255 is the next one above s = x * 0x10101 / 2^24, which is exact: x / 255 = s +
// s / (2^24 - 1), and that is more than half of the last place of s, and less than all of it. The
// next float is the next integer; 0 comes out negative.
QV_INLINE OverWeights WeightsOfTriples(Vec fgAlpha, Vec bgAlpha, Vec merged) {
  const auto over255 = [](Vec triples) QV_INLINE_LAMBDA {
    return Add32(AsInts(ToFloats(triples)), Splat32(1 - (24 << 23)));
  };
  return WeightsOf(AsFloats(Max32(over255(fgAlpha), Zero())),
                   AsFloats(Max32(over255(bgAlpha), Zero())),
                   AsFloats(over255(Add32(merged, Splat32(0x10101)))));
}

// Bytes from the 32-bit lanes of three vectors, which saturate twice: to 16 bits, then to bytes.
// Every 128-bit lane gets four bytes of each vector's.
QV_INLINE Vec PackThree(const Vec (&v)[3]) {
  return PackUnsigned16(PackSigned32(v[0], v[1]), PackSigned32(v[2], v[2]));
}

// ---- Thirty-two pixels, where bytes are permuted across a vector and multiplications fused ------

// (x + plus) / 255 of 16 bytes x. A byte twice in the low end of the significand of 128 is 128 + p
// with p = x * 257 / 65536; the subtraction is exact, and x / 255 = p + p / 65535. All 257 values
// are those of a division.
template <int plus>
QV_INLINE Floats AlphasOver255(Vec alphas) {
  static constexpr ByteTable kIndex = MakeByteTable([](int i) { return i / 4; });
  const Vec above =
      PermuteBytesOver(Splat32(0x43000000), 0x3333333333333333u, alphas, Load(kIndex.b));
  const Floats p = SubFloat(AsFloats(above), SplatFloat(128.0f - plus * (257.0f / 65536.0f)));
  return FusedMulAdd(p, SplatFloat(1.0f / 65535.0f), p);
}

QV_INLINE OverWeights WeightsOfSixteen(Vec fgAlpha, Vec bgAlpha, Vec merged) {
  return WeightsOf(AlphasOver255<0>(fgAlpha), AlphasOver255<0>(bgAlpha), AlphasOver255<1>(merged));
}

// 1 / divisor in two terms. For every sum from 2^-20 to 256 and each of the 256 divisors, the
// integer nearest to sum * (high + low), rounded to single precision, is that of a division: they
// have been compared. Smaller quotients are below 1/2. Three divisions take longer, but not where
// QuickDivision says so.
struct Reciprocal {
  Floats high, low;

  explicit Reciprocal(Floats divisor) {
    high = DivFloat(SplatFloat(1.0f), divisor);
    low = MulFloat(high, FusedNegMulAdd(high, divisor, SplatFloat(1.0f)));
  }
  Floats Times(Floats sum) const { return FusedMulAdd(sum, high, MulFloat(sum, low)); }
};

// The three channels of sixteen pixels whose colours begin at byte `first` of a vector.
struct Channels {
  Vec c[3];
};

template <int first, bool kByDivision>
QV_INLINE Channels MergedChannels(Vec f, Vec b, const OverWeights& w) {
  static constexpr ByteTable kChannel[3] = {
      MakeByteTable([](int i) { return first + i / 4 * 3; }),
      MakeByteTable([](int i) { return first + i / 4 * 3 + 1; }),
      MakeByteTable([](int i) { return first + i / 4 * 3 + 2; })};
  const Reciprocal reciprocal(w.divisor);
  Channels merged;
  for (int c = 0; c < 3; ++c) {
    const auto channel = [&](Vec v) QV_INLINE_LAMBDA {
      return ToFloats(PermuteBytesPart(0x1111111111111111u, v, Load(kChannel[c].b)));
    };
    const Floats sum = AddFloat(MulFloat(channel(f), w.foreground),
                                MulFloat(w.background, channel(b)));
    merged.c[c] = NearestInts(kByDivision ? DivFloat(sum, w.divisor) : reciprocal.Times(sum));
  }
  return merged;
}

// Where byte i of pixels is after packing, four of them to a 128-bit lane: four bytes of channel 0,
// four of channel 1, and four of channel 2 from byte `third` of the lane.
constexpr int ByteOfQuads(int i, int third) {
  return i / 12 * 16 + (i % 3 == 2 ? third : i % 3 * 4) + i / 3 % 4;
}

// Two vectors at once, and the weights of both first: so most is under way at any time. Colours are
// converted and multiplied, not taken out of a fused multiplication that begins with 2^23 + x: its
// third operand and the merging permute's made an AMD Zen wait.
template <bool kByDivision>
QV_INLINE void OverPermuted(const OverPixels& p) {
  // The bytes of a whole vector, and then of the half that follows.
  static constexpr ByteTable kWhole = MakeByteTable(
      [](int i) { return i < 48 ? ByteOfQuads(i, 8) : 64 + ByteOfQuads(i - 48, 12); });
  static constexpr ByteTable kHalf =
      MakeByteTable([](int i) { return i < 32 ? ByteOfQuads(i + 16, 12) : 0; });
  const auto weights = [&](int x) QV_INLINE_LAMBDA {
    const auto alphas = [=](const Byte* from) { return FromLane(Load128(from + x)); };
    return WeightsOfSixteen(alphas(p.fgAlpha), alphas(p.bgAlpha), alphas(p.merged));
  };
  const OverWeights w = weights(0), w2 = weights(16);
  const Channels r = MergedChannels<0, kByDivision>(LoadOnce(p.fg), LoadOnce(p.bg), w);
  const Channels r2 = MergedChannels<16, kByDivision>(LoadOnce(p.fg + 32), LoadOnce(p.bg + 32), w2);
  const Vec third = PackSigned32(r.c[2], r2.c[2]);
  const Vec quads = PackUnsigned16(PackSigned32(r.c[0], r.c[1]), third);
  const Vec quads2 = PackUnsigned16(PackSigned32(r2.c[0], r2.c[1]), third);
  Store(p.fg, PermuteBytes2(quads, Load(kWhole.b), quads2));
  StoreLowHalf(p.fg + 64, PermuteBytes(quads2, Load(kHalf.b)));
}

QV_INLINE void OverMasked(const OverPixels& p, ptrdiff_t bytes) {
  static constexpr ByteTable kInterleave =
      MakeByteTable([](int i) { return i < 48 ? ByteOfQuads(i, 8) : 0; });
  const unsigned long long colours = FirstOf64(bytes, 0), pixels = FirstOf64((bytes + 2) / 3, 0);
  const OverWeights w = WeightsOfSixteen(
      LoadPart(p.fgAlpha, pixels), LoadPart(p.bgAlpha, pixels), LoadPart(p.merged, pixels));
  const Channels r = MergedChannels<0, false>(LoadPart(p.fg, colours), LoadPart(p.bg, colours), w);
  const Vec merged = PermuteBytes(PackThree(r.c), Load(kInterleave.b));
  if (bytes < 48) {
    StorePart(p.fg, merged, colours);
  } else {  // another part follows, whose load would have to wait for a masked store
    StoreLowHalf(p.fg, merged);
    Store128(p.fg + 32, Lane<2>(merged));
  }
}

// ---- Eight pixels, four in each of two 128-bit lanes --------------------------------------------

QV_INLINE uint64_t EightAlphas(const Byte* alphas) {
  uint64_t eight;
  memcpy(&eight, alphas, sizeof eight);
  return eight;
}

// Eight alphas, each three times in the low end of its 32-bit lane.
QV_INLINE Vec AlphaTriples(const Byte* alphas) {
  static constexpr ByteTable kIndex =
      MakeByteTable([](int i) { return i % 4 == 3 ? 0x80 : i / 4; });
  return ShuffleBytes(Splat64(static_cast<long long>(EightAlphas(alphas))), Load(kIndex.b));
}

// Pixels 0 to 3 in the first twelve bytes of the low lane, 4 to 7 in the last twelve of the high
// one.
QV_INLINE Vec LoadColours(const Byte* p) {
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
  // The way back: four bytes of each channel to four pixels, in the low twelve bytes of each lane,
  // of which kTwelves makes 24 in a row.
  static constexpr ByteTable kInterleave = MakeByteTable([](int i) {
    const int byte = i % 16;
    return byte > 11 ? 0x80 : byte % 3 * 4 + byte / 3;
  });
  static constexpr int32_t kTwelves[8] = {0, 1, 2, 4, 5, 6, 3, 7};
  const OverWeights w = WeightsOfTriples(AlphaTriples(p.fgAlpha), AlphaTriples(p.bgAlpha),
                                         AlphaTriples(p.merged));
  const Vec f = LoadColours(p.fg), b = LoadColours(p.bg);
  Vec result[3];
  for (int c = 0; c < 3; ++c) {
    const Vec index = Load(kChannel[c].b);
    const Floats sum = AddFloat(MulFloat(ToFloats(ShuffleBytes(f, index)), w.foreground),
                                MulFloat(w.background, ToFloats(ShuffleBytes(b, index))));
    result[c] = NearestInts(DivFloat(sum, w.divisor));
  }
  const Vec colours =
      PermuteLanes32(ShuffleBytes(PackThree(result), Load(kInterleave.b)), Load(kTwelves));
  Store128(p.fg, Lane<0>(colours));
  Store64(p.fg + 16, Lane<1>(colours));
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

// Sixteen bytes, each three times in the low end of its 32-bit lane.
struct FourTriples {
  Vec v[4];

  explicit FourTriples(Vec bytes) {
    const Vec twice = InterleaveLow8(bytes, bytes), once = InterleaveLow8(bytes, Zero());
    const Vec twice2 = InterleaveHigh8(bytes, bytes), once2 = InterleaveHigh8(bytes, Zero());
    v[0] = InterleaveLow16(twice, once);
    v[1] = InterleaveHigh16(twice, once);
    v[2] = InterleaveLow16(twice2, once2);
    v[3] = InterleaveHigh16(twice2, once2);
  }
};

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
  const FourTriples fa(Load(p.fgAlpha)), ba(Load(p.bgAlpha)), a(Load(p.merged));
  OverWeights w[4];
  for (int q = 0; q < 4; ++q) w[q] = WeightsOfTriples(fa.v[q], ba.v[q], a.v[q]);
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
constexpr int kOverPixels = kOverPermuted ? 32 : kOverTwoLanes ? 8 : 16;
constexpr int kPartPixels = kOverPermuted ? 16 : kOverPixels;

template <bool kByDivision = false>
QV_INLINE void OverBlock(const OverPixels& p) {
  if constexpr (kOverPermuted)
    OverPermuted<kByDivision>(p);
  else if constexpr (kOverTwoLanes)
    OverTwoLanes(p);
  else
    OverQuads(p);
}

// Goes through copies.
__attribute__((noinline)) inline void OverCopied(const OverPixels& p, ptrdiff_t bytes) {
  Byte f[3 * kOverPixels] = {}, b[3 * kOverPixels] = {};
  Byte alphas[3][kOverPixels] = {};
  const size_t colours = static_cast<size_t>(bytes), pixels = (colours + 2) / 3;
  memcpy(f, p.fg, colours);
  memcpy(b, p.bg, colours);
  memcpy(alphas[0], p.fgAlpha, pixels);
  memcpy(alphas[1], p.bgAlpha, pixels);
  memcpy(alphas[2], p.merged, pixels);
  OverBlock({f, alphas[0], b, alphas[1], alphas[2]});
  memcpy(p.fg, f, colours);
}

QV_INLINE void OverPart(const OverPixels& p, ptrdiff_t bytes) {
  if constexpr (kOverPermuted)
    OverMasked(p, bytes);
  else
    OverCopied(p, bytes);
}

}  // namespace qv::QV_LEVEL

#endif
