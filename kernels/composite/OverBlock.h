// The colours of a few pixels merged in single precision: the block that the over merge's vector
// rows are made of, in three shapes.
//
//   OverBlock(fg, fgAlpha, bg, bgAlpha, merged)   kOverPixels pixels, three bytes each, fg in place
//   OverPart(..., bytes)                          the pixels of the first `bytes` colour bytes
//
// Alphas are one byte a pixel. A block may read kOverReads colour bytes and kOverPixels alphas; it
// stores 3 * kOverPixels bytes. A part, of up to 3 * kOverPixels bytes, touches nothing behind it.
#ifndef QV_KERNELS_COMPOSITE_OVERBLOCK_H
#define QV_KERNELS_COMPOSITE_OVERBLOCK_H

#include "kernels/level/Floats.h"

namespace qv::QV_LEVEL {

// x / 255, rounded, of integers from 0 to 256: x / 255 = p + p / 65535 with p = x * 257 / 65536,
// which is exact. The second term is so small that its own rounding never shows in the sum; all 257
// values are those of a division.
constexpr float k257Over65536 = 257.0f / 65536.0f;
QV_INLINE Floats AddOver65535(Floats p) {
#if defined(__AVX512F__)
  return _mm512_fmadd_ps(p, SplatFloat(1.0f / 65535.0f), p);
#else
  return AddFloat(p, MulFloat(p, SplatFloat(1.0f / 65535.0f)));
#endif
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

#if defined(__AVX512VBMI__)

constexpr int kOverPixels = 16;
constexpr int kOverReads = 64;

// The bytes that `index` picks, one for each 32-bit lane, as numbers above 2^23: a byte in the low
// end of that number's significand.
QV_INLINE Floats BytesAbove23(Vec bytes, const ByteTable& index) {
  return AsFloats(
      PermuteBytesOver(Splat32(0x4B000000), 0x1111111111111111u, bytes, Load(index.b)));
}

// x * weight, rounded once, of x + 2^23: the fused operation takes 2^23 * weight, which is exact,
// off the exact product.
QV_INLINE Floats WeighAbove23(Floats x, Floats weight) {
  return _mm512_fmadd_ps(x, weight, MulFloat(weight, SplatFloat(-0x1p23f)));
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
    low = MulFloat(high, _mm512_fnmadd_ps(high, divisor, SplatFloat(1.0f)));
  }
  Floats Times(Floats sum) const { return _mm512_fmadd_ps(sum, high, MulFloat(sum, low)); }
};

QV_INLINE Vec MergedColours(Vec f, Vec fgAlpha, Vec b, Vec bgAlpha, Vec merged) {
  static constexpr ByteTable kChannel[3] = {
      MakeByteTable([](int i) { return i / 4 * 3; }),
      MakeByteTable([](int i) { return i / 4 * 3 + 1; }),
      MakeByteTable([](int i) { return i / 4 * 3 + 2; })};
  // After packing, every 16-byte lane holds four pixels: four bytes of each channel.
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
  // Saturates twice: to 16 bits, then to bytes.
  const Vec packed = PackUnsigned16(PackSigned32(result[0], result[1]),
                                    PackSigned32(result[2], result[2]));
  return PermuteBytes(packed, Load(kInterleave.b));
}

QV_INLINE void OverBlock(Byte* fg, const Byte* fgAlpha, const Byte* bg, const Byte* bgAlpha,
                         const Byte* merged) {
  const auto alphas = [](const Byte* p) { return FromLane(Load128(p)); };
  const Vec colours = MergedColours(LoadOnce(fg), alphas(fgAlpha), LoadOnce(bg), alphas(bgAlpha),
                                    alphas(merged));
  // Not one masked store: the next block's load would have to wait for it.
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(fg), _mm512_castsi512_si256(colours));
  Store128(fg + 32, _mm512_extracti32x4_epi32(colours, 2));
}

QV_INLINE void OverPart(Byte* fg, const Byte* fgAlpha, const Byte* bg, const Byte* bgAlpha,
                        const Byte* merged, ptrdiff_t bytes) {
  const unsigned long long colours = FirstOf64(bytes, 0), pixels = FirstOf64((bytes + 2) / 3, 0);
  StorePart(fg, MergedColours(LoadPart(fg, colours), LoadPart(fgAlpha, pixels),
                              LoadPart(bg, colours), LoadPart(bgAlpha, pixels),
                              LoadPart(merged, pixels)),
            colours);
}

#elif defined(__AVX2__)

constexpr int kOverPixels = 8;
constexpr int kOverReads = 24;

QV_INLINE Floats AlphaFloats(const Byte* alpha) {
  return ToFloats(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(alpha))));
}

// Pixels 0 to 3 in the first twelve bytes of the low lane, 4 to 7 in the last twelve of the high
// one.
QV_INLINE Vec LoadColours(const Byte* p) {
  return LoadLanes([=](int i) { return p + 8 * i; });
}

QV_INLINE void OverBlock(Byte* fg, const Byte* fgAlpha, const Byte* bg, const Byte* bgAlpha,
                         const Byte* merged) {
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
      WeightsOf(Over255(AlphaFloats(fgAlpha)), Over255(AlphaFloats(bgAlpha)),
                Over255(AddFloat(AlphaFloats(merged), SplatFloat(1.0f))));
  const Vec f = LoadColours(fg), b = LoadColours(bg);
  Vec result[3];
  for (int c = 0; c < 3; ++c) {
    const Vec index = Load(kChannel[c].b);
    const Floats sum = AddFloat(MulFloat(ToFloats(ShuffleBytes(f, index)), w.foreground),
                                MulFloat(w.background, ToFloats(ShuffleBytes(b, index))));
    result[c] = NearestInts(DivFloat(sum, w.divisor));
  }
  const Vec packed = PackUnsigned16(PackSigned32(result[0], result[1]),
                                    PackSigned32(result[2], result[2]));
  const Vec colours = ShuffleBytes(packed, Load(kInterleave.b));
  const Vec128 low = _mm256_castsi256_si128(colours), high = _mm256_extracti128_si256(colours, 1);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(fg), low);
  Store128(fg + 8, _mm_or_si128(_mm_srli_si128(low, 8), high));
}

#else

constexpr int kOverPixels = 16;
constexpr int kOverReads = 48;

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
  constexpr int kOrder = third == 0   ? _MM_SHUFFLE(1, 0, 0, 0)
                         : third == 1 ? _MM_SHUFFLE(2, 2, 1, 1)
                                      : _MM_SHUFFLE(3, 3, 3, 2);
  return _mm_shuffle_ps(x, x, kOrder);
}

template <int third>
QV_INLINE Vec MergedQuad(Floats f, Floats b, const OverWeights& w) {
  const Floats sum = AddFloat(MulFloat(f, Spread<third>(w.foreground)),
                              MulFloat(Spread<third>(w.background), b));
  return NearestInts(DivFloat(sum, Spread<third>(w.divisor)));
}

QV_INLINE void OverBlock(Byte* fg, const Byte* fgAlpha, const Byte* bg, const Byte* bgAlpha,
                         const Byte* merged) {
  const FourFloats fa = WidenBytes(Load(fgAlpha)), ba = WidenBytes(Load(bgAlpha)),
                   a = WidenBytes(Load(merged));
  OverWeights w[4];
  for (int q = 0; q < 4; ++q)
    w[q] = WeightsOf(Over255(fa.f[q]), Over255(ba.f[q]),
                     Over255(AddFloat(a.f[q], SplatFloat(1.0f))));
  // Twelve vectors of four colour bytes; vector q belongs to the pixels of w[q / 3].
  const auto merge = [&](int j, const auto& mergeFour) {
    const FourFloats f = WidenBytes(Load(fg + 16 * j)), b = WidenBytes(Load(bg + 16 * j));
    Store(fg + 16 * j, mergeFour(f, b));
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

#endif

#if !defined(__AVX512VBMI__)

// Goes through copies.
__attribute__((noinline)) inline void OverPart(Byte* fg, const Byte* fgAlpha, const Byte* bg,
                                        const Byte* bgAlpha, const Byte* merged,
                                        ptrdiff_t bytes) {
  Byte f[kOverReads] = {}, b[kOverReads] = {};
  Byte alphas[3][kOverPixels] = {};
  const size_t colours = static_cast<size_t>(bytes), pixels = (colours + 2) / 3;
  memcpy(f, fg, colours);
  memcpy(b, bg, colours);
  memcpy(alphas[0], fgAlpha, pixels);
  memcpy(alphas[1], bgAlpha, pixels);
  memcpy(alphas[2], merged, pixels);
  OverBlock(f, alphas[0], b, alphas[1], alphas[2]);
  memcpy(fg, f, colours);
}

#endif

}  // namespace qv::QV_LEVEL

#endif
