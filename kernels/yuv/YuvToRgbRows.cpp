// Luma and chroma of any layout to pixels of three or four bytes.
#include "kernels/level/Level.h"
#include "kernels/yuv/Yuv.h"
#include "kernels/yuv/YuvVectors.h"

namespace qv::QV_LEVEL {

namespace {

// What a row of pixels is made from: its luma, the row of chroma that it lies in, and the one that
// it lies next to (the same where chroma rows are not mixed).
struct SampleRows {
  const Byte* luma;
  int lumaApart;
  const Byte* near[2];
  const Byte* next[2];
  int apart;
  bool halfWidth;
  ptrdiff_t last;  // chroma sample
};

SampleRows RowsOf(const YuvFrame<const Byte>& src, ChromaSiting siting, IppiSize size,
                  ptrdiff_t y) {
  const ptrdiff_t near = src.halfHeight ? y / 2 : y;
  ptrdiff_t next = near;
  if (src.halfHeight && siting != ChromaSiting::Repeat) {
    next += y % 2 ? 1 : -1;
    if (next < 0 || next > (size.height - 1) / 2) next = near;
  }
  SampleRows rows = {RowAt(src.luma, src.lumaStep, y),
                     src.lumaApart,
                     {},
                     {},
                     src.chromaApart,
                     src.halfWidth,
                     (size.width - 1) / (src.halfWidth ? 2 : 1)};
  for (int c = 0; c < 2; ++c) {
    rows.near[c] = RowAt(src.chroma[c], src.chromaStep[c], near);
    rows.next[c] = RowAt(src.chroma[c], src.chromaStep[c], next);
  }
  return rows;
}

// Of a pixel, in 256ths.
QV_INLINE int ChromaAt(const SampleRows& rows, int c, ptrdiff_t x, ChromaSiting siting) {
  const ptrdiff_t i = rows.halfWidth ? x / 2 : x;
  if (!rows.halfWidth || siting == ChromaSiting::Repeat) return rows.near[c][i * rows.apart] << 8;
  ptrdiff_t beside = i;
  if (siting == ChromaSiting::Left) beside += x % 2;
  if (siting == ChromaSiting::Centre) beside += x % 2 ? 1 : -1;
  if (beside < 0 || beside > rows.last) beside = i;
  const int weight = siting == ChromaSiting::Left ? 2 : 1;
  const auto fourfold = [&](ptrdiff_t at) {
    return 3 * rows.near[c][at * rows.apart] + rows.next[c][at * rows.apart];
  };
  return 16 * ((4 - weight) * fourfold(i) + weight * fourfold(beside));
}

QV_INLINE int MulHigh(int a, int b) {
  return static_cast<int>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b) >> 16);
}

// Pixels `from` to `to` - 1. Rows and terms are copies: bytes that are stored could change others.
void PixelsPlain(SampleRows rows, YuvToRgbTerms t, ChromaSiting siting, Byte* dst, int channels,
                 ptrdiff_t from, ptrdiff_t to) {
  for (ptrdiff_t x = from; x < to; ++x) {
    const int luma = MulHigh(rows.luma[x * rows.lumaApart] << 8, t.luma);
    const int p = ChromaAt(rows, 0, x, siting), q = ChromaAt(rows, 1, x, siting);
    Byte* const pixel = dst + x * channels;
    pixel[0] = ToByte((luma + MulHigh(p, t.first) + t.offset[0]) >> 6);
    pixel[1] =
        ToByte((luma - MulHigh(p, t.second[0]) - MulHigh(q, t.second[1]) + t.offset[1]) >> 6);
    pixel[2] = ToByte((luma + MulHigh(q, t.third) + t.offset[2]) >> 6);
    if (channels == 4) pixel[3] = 255;
  }
}

#if !QV_HAS_VECTORS

QV_INLINE void ConvertRows(const YuvFrame<const Byte>& src, const RgbFrame<Byte>& dst,
                           const YuvToRgbTerms& t, ChromaSiting siting, IppiSize size,
                           ptrdiff_t first, ptrdiff_t end) {
  for (ptrdiff_t y = first; y < end; ++y)
    PixelsPlain(RowsOf(src, siting, size, y), t, siting, RowAt(dst.pixels, dst.step, y),
                dst.channels, 0, size.width);
}

#else

// ---- Vector rows --------------------------------------------------------------------------------

// What the terms of chroma add to luma, of pixels or of samples; signed.
using ChromaTerms = Colors;

QV_INLINE ChromaTerms TermsOf(ChromaPair chroma, const YuvToRgbTerms& t) {
  const auto product = [](Vec v, int factor) { return MulHighUnsigned16(v, Splat16(factor)); };
  return {Add16(product(chroma.p, t.first), Splat16(t.offset[0])),
          Sub16(Sub16(Splat16(t.offset[1]), product(chroma.p, t.second[0])),
                product(chroma.q, t.second[1])),
          Add16(product(chroma.q, t.third), Splat16(t.offset[2]))};
}

// Half a block. Sums above 32767 are above 255 as a byte, and stay so.
QV_INLINE Colors AddLuma(Vec luma256, const ChromaTerms& chroma, const YuvToRgbTerms& t) {
  const Vec luma = MulHighUnsigned16(luma256, Splat16(t.luma));
  const auto sum = [=](Vec term) {
    return ShiftRightSigned16<6>(AddSaturatedSigned16(luma, term));
  };
  return {sum(chroma.blue), sum(chroma.green), sum(chroma.red)};
}

// The terms of a block of pixels, half by half.
struct BlockTerms {
  ChromaTerms first, second;
};

QV_INLINE BlockTerms Twice(const ChromaTerms& t) {
  return {{FirstTwice16(t.blue), FirstTwice16(t.green), FirstTwice16(t.red)},
          {SecondTwice16(t.blue), SecondTwice16(t.green), SecondTwice16(t.red)}};
}

QV_INLINE BlockTerms InTurns(const ChromaTerms& even, const ChromaTerms& odd) {
  return {{FirstInTurns16(even.blue, odd.blue), FirstInTurns16(even.green, odd.green),
           FirstInTurns16(even.red, odd.red)},
          {SecondInTurns16(even.blue, odd.blue), SecondInTurns16(even.green, odd.green),
           SecondInTurns16(even.red, odd.red)}};
}

template <int kChannels, class Store>
QV_INLINE void StorePixels(Byte* dst, Vec luma, const BlockTerms& terms, const YuvToRgbTerms& t,
                           Store store) {
  const Colors first = AddLuma(FirstBytes256(luma), terms.first, t);
  const Colors second = AddLuma(SecondBytes256(luma), terms.second, t);
  if constexpr (kChannels == 3)
    StoreBGR(dst, first, second, store);
  else
    StoreBGRA(dst, first, second, store);
}

// Rows that share their chroma, and where they go.
template <int kRows>
struct Target {
  const Byte* luma[kRows];
  Byte* dst[kRows];
};

// The most pixels up to a block from dst to a multiple of a vector, if that is an even number of
// them; else 0.
template <int kChannels>
QV_INLINE ptrdiff_t EvenPixelsToAlign(const Byte* dst) {
  if constexpr (kChannels == 3) return EvenPixelsToAlign3(dst);
  const ptrdiff_t bytes = BytesToAlign(dst);
  return bytes % 8 == 0 ? kBlockPixels - (kVecBytes - bytes) / 4 : 0;
}

// Calls block(x, store) for blocks that cover `width` pixels, an even number, each at an even one;
// false if there are fewer than a block has. Past the caches only where all rows allow it.
template <int kChannels, int kRows, class Block>
QV_INLINE bool CoverRows(const Target<kRows>& target, ptrdiff_t width, bool stream, Block block) {
  const ptrdiff_t second = EvenPixelsToAlign<kChannels>(target.dst[0]);
  const bool aligns = second > 0 && second == EvenPixelsToAlign<kChannels>(target.dst[kRows - 1]);
  return CoverWithBlocks<kBlockPixels>(width, stream && aligns, block,
                                       aligns ? second : kBlockPixels);
}

// The samples of a packed row from its first group on, or of pairs.
QV_INLINE const Byte* FirstOf(const SampleRows& rows) {
  const Byte* const first = rows.near[0] < rows.near[1] ? rows.near[0] : rows.near[1];
  return rows.lumaApart == 2 && rows.luma < first ? rows.luma : first;
}

QV_INLINE void LoadGroups(const Byte* groups, bool lumaFirst, Vec& luma, Vec& pairs) {
  Vec low, high, even, odd;
  LoadPacked(groups, low, high);
  if constexpr (kHasBytePermute) {
    even = EvenBytes(low, high);
    odd = OddBytes(low, high);
  } else {  // lanes are loaded such that they are in order when they are packed
    even = PackUnsigned16(And(low, Splat16(0xff)), And(high, Splat16(0xff)));
    odd = PackUnsigned16(ShiftRight16<8>(low), ShiftRight16<8>(high));
  }
  luma = lumaFirst ? even : odd;
  pairs = lumaFirst ? odd : even;
}

// Chroma repeated.
template <int kChannels, int kRows>
bool RepeatedRows(const SampleRows& rows, const Target<kRows>& target, const YuvToRgbTerms& t,
                  ptrdiff_t width, bool stream) {
  const bool swapped = rows.near[1] < rows.near[0];
  const Byte* const pairs = FirstOf(rows);
  return CoverRows<kChannels>(target, width, stream, [=](ptrdiff_t x, auto store) {
    ChromaPair chroma;
    if (rows.apart == 1)
      chroma = {ShiftLeft16<8>(LoadBytesAs16(rows.near[0] + x / 2)),
                ShiftLeft16<8>(LoadBytesAs16(rows.near[1] + x / 2))};
    else
      chroma = SplitPairs256(Load(pairs + x), swapped);
    const BlockTerms terms = Twice(TermsOf(chroma, t));
    for (int row = 0; row < kRows; ++row)
      StorePixels<kChannels>(target.dst[row] + kChannels * x, Load(target.luma[row] + x), terms, t,
                             store);
  });
}

template <int kChannels>
bool PackedRow(const SampleRows& rows, const Target<1>& target, const YuvToRgbTerms& t,
               ptrdiff_t width, bool stream) {
  const Byte* const groups = FirstOf(rows);
  const bool lumaFirst = groups == rows.luma, swapped = rows.near[1] < rows.near[0];
  return CoverRows<kChannels>(target, width, stream, [=](ptrdiff_t x, auto store) {
    Vec luma, pairs;
    LoadGroups(groups + 2 * x, lumaFirst, luma, pairs);
    const BlockTerms terms = Twice(TermsOf(SplitPairs256(pairs, swapped), t));
    StorePixels<kChannels>(target.dst[0] + kChannels * x, luma, terms, t, store);
  });
}

// A sample for every pixel.
template <int kChannels>
bool FullRow(const SampleRows& rows, const Target<1>& target, const YuvToRgbTerms& t,
             ptrdiff_t width, bool stream) {
  return CoverRows<kChannels>(target, width, stream, [=](ptrdiff_t x, auto store) {
    const Vec p = Load(rows.near[0] + x), q = Load(rows.near[1] + x);
    const BlockTerms terms = {TermsOf({FirstBytes256(p), FirstBytes256(q)}, t),
                              TermsOf({SecondBytes256(p), SecondBytes256(q)}, t)};
    StorePixels<kChannels>(target.dst[0] + kChannels * x, Load(rows.luma + x), terms, t, store);
  });
}

// ---- Chroma interpolated ------------------------------------------------------------------------

// Pixels that are worked on at a time, so that their chroma stays in the first cache.
constexpr ptrdiff_t kPiece = 512;
constexpr ptrdiff_t kPieceSamples = kPiece / 2;

// Chroma of a piece, mixed from two rows, times four. Sample i of the piece is at[c][i + 1]: there
// is one more on either side.
struct MixedChroma {
  uint16_t at[2][kPieceSamples + 2];
};

// 3 * near + next, of bytes in 16-bit lanes.
QV_INLINE Vec Mix(Vec near, Vec next) { return Add16(Add16(near, near), Add16(near, next)); }

QV_INLINE ChromaPair LoadPair(const SampleRows& rows, const Byte* const from[2], ptrdiff_t i) {
  if (rows.apart == 1) return {LoadBytesAs16(from[0] + i), LoadBytesAs16(from[1] + i)};
  const Byte* const first = from[0] < from[1] ? from[0] : from[1];
  Vec pairs;
  if (rows.apart == 2) {
    pairs = Load(first + 2 * i);
  } else {
    Vec luma;
    const bool lumaFirst = rows.luma < rows.near[0] && rows.luma < rows.near[1];
    LoadGroups(first + 4 * i - (lumaFirst ? 1 : 0), lumaFirst, luma, pairs);
  }
  const Vec low = And(pairs, Splat16(0xff)), high = ShiftRight16<8>(pairs);
  return from[1] < from[0] ? ChromaPair{high, low} : ChromaPair{low, high};
}

// Samples `first` to `first` + count - 1 of a row. Those beyond its ends are those of the ends.
void MixRows(const SampleRows& rows, ptrdiff_t first, ptrdiff_t count, MixedChroma& mixed) {
  const ptrdiff_t from = first > 0 ? first - 1 : 0;
  const ptrdiff_t to = first + count <= rows.last ? first + count : rows.last;
  uint16_t* const at[2] = {mixed.at[0] + 1 - first, mixed.at[1] + 1 - first};
  const bool done = CoverWithBlocks<kVecBytes / 2>(to - from + 1, [=, &rows](ptrdiff_t i) {
    const ChromaPair near = LoadPair(rows, rows.near, from + i);
    const ChromaPair next = LoadPair(rows, rows.next, from + i);
    Store(at[0] + from + i, Mix(near.p, next.p));
    Store(at[1] + from + i, Mix(near.q, next.q));
  });
  for (int c = 0; c < 2; ++c) {
    for (ptrdiff_t i = from; !done && i <= to; ++i)
      at[c][i] =
          static_cast<uint16_t>(3 * rows.near[c][i * rows.apart] + rows.next[c][i * rows.apart]);
    if (first == 0) at[c][-1] = at[c][0];
    if (to < first + count) at[c][to + 1] = at[c][to];
  }
}

// Weights in 64ths, since four times a sample goes in: of the sample that a pixel lies in, and of
// the one beside it, for even and for odd pixels.
struct Weights {
  int even, evenBeside, odd, oddBeside;
};

constexpr Weights kWeights[] = {{64, 0, 64, 0}, {64, 0, 32, 32}, {48, 16, 48, 16}};

template <int kChannels>
bool InterpolatedPiece(const SampleRows& rows, const MixedChroma& mixed, Byte* dst,
                       const YuvToRgbTerms& t, const Weights& weights, ptrdiff_t from,
                       ptrdiff_t width, bool stream) {
  const Target<1> target = {{nullptr}, {dst + kChannels * from}};
  const bool packed = rows.lumaApart == 2;
  const Byte* const samples = packed ? FirstOf(rows) + 2 * from : rows.luma + from;
  const bool lumaFirst = packed && FirstOf(rows) == rows.luma;
  return CoverRows<kChannels>(target, width, stream, [=, &mixed](ptrdiff_t x, auto store) {
    const auto weighted = [](Vec own, int weight, Vec beside, int besideWeight) {
      return Add16(MulLow16(own, Splat16(weight)), MulLow16(beside, Splat16(besideWeight)));
    };
    Vec even[2], odd[2];
    for (int c = 0; c < 2; ++c) {
      const uint16_t* const own = mixed.at[c] + 1 + x / 2;
      even[c] = weighted(Load(own), weights.even, Load(own - 1), weights.evenBeside);
      odd[c] = weighted(Load(own), weights.odd, Load(own + 1), weights.oddBeside);
    }
    const BlockTerms terms = InTurns(TermsOf({even[0], even[1]}, t), TermsOf({odd[0], odd[1]}, t));
    Vec luma, pairs;
    if (packed)
      LoadGroups(samples + 2 * x, lumaFirst, luma, pairs);
    else
      luma = Load(samples + x);
    StorePixels<kChannels>(target.dst[0] + kChannels * x, luma, terms, t, store);
  });
}

template <int kChannels>
bool InterpolatedRow(const SampleRows& rows, const Target<1>& target, const YuvToRgbTerms& t,
                     ChromaSiting siting, ptrdiff_t width, bool stream) {
  if (width < kBlockPixels) return false;
  for (ptrdiff_t x = 0; x < width; x += kPiece) {
    // The last piece ends with the row.
    const ptrdiff_t count = width < kPiece ? width : kPiece;
    const ptrdiff_t from = x + count <= width ? x : width - count;
    MixedChroma mixed;
    MixRows(rows, from / 2, count / 2, mixed);
    InterpolatedPiece<kChannels>(rows, mixed, target.dst[0], t, kWeights[static_cast<int>(siting)],
                                 from, count, stream);
  }
  return true;
}

// ---- Rows of any form ---------------------------------------------------------------------------

template <int kChannels>
void ConvertRow(const SampleRows& rows, Byte* dst, const YuvToRgbTerms& t, ChromaSiting siting,
                ptrdiff_t width, bool stream) {
  const Target<1> target = {{rows.luma}, {dst}};
  const ptrdiff_t even = width & ~ptrdiff_t{1};
  bool done;
  if (!rows.halfWidth)
    done = FullRow<kChannels>(rows, target, t, even, stream);
  else if (siting != ChromaSiting::Repeat)
    done = InterpolatedRow<kChannels>(rows, target, t, siting, even, stream);
  else if (rows.lumaApart == 2)
    done = PackedRow<kChannels>(rows, target, t, even, stream);
  else
    done = RepeatedRows<kChannels>(rows, target, t, even, stream);
  PixelsPlain(rows, t, siting, dst, kChannels, done ? even : 0, width);
}

template <int kChannels>
void ConvertRowsOf(const YuvFrame<const Byte>& src, const RgbFrame<Byte>& dst,
                   const YuvToRgbTerms& t, ChromaSiting siting, IppiSize size, ptrdiff_t first,
                   ptrdiff_t end) {
  const bool stream = PassesCaches(size.width, size.height, kChannels);
  const ptrdiff_t even = size.width & ~1;
  ptrdiff_t y = first;
  // Rows in twos share the chroma that is repeated.
  if (src.halfHeight && siting == ChromaSiting::Repeat)
    for (; end - y >= 2; y += 2) {
      const SampleRows rows[2] = {RowsOf(src, siting, size, y), RowsOf(src, siting, size, y + 1)};
      const Target<2> target = {
          {rows[0].luma, rows[1].luma},
          {RowAt(dst.pixels, dst.step, y), RowAt(dst.pixels, dst.step, y + 1)}};
      const bool done = RepeatedRows<kChannels>(rows[0], target, t, even, stream);
      for (int row = 0; row < 2; ++row)
        PixelsPlain(rows[row], t, siting, target.dst[row], kChannels, done ? even : 0, size.width);
    }
  for (; y < end; ++y)
    ConvertRow<kChannels>(RowsOf(src, siting, size, y), RowAt(dst.pixels, dst.step, y), t, siting,
                          size.width, stream);
  if (stream) StreamFence();
}

QV_INLINE void ConvertRows(const YuvFrame<const Byte>& src, const RgbFrame<Byte>& dst,
                           const YuvToRgbTerms& t, ChromaSiting siting, IppiSize size,
                           ptrdiff_t first, ptrdiff_t end) {
  const auto convert = dst.channels == 3 ? ConvertRowsOf<3> : ConvertRowsOf<4>;
  convert(src, dst, t, siting, size, first, end);
}

#endif

}  // namespace

void YuvToRgb_8u(const YuvFrame<const Byte>* src, const RgbFrame<Byte>* dst, const YuvToRgbTerms* t,
                 ChromaSiting siting, IppiSize size, int firstRow, int rows) {
  ConvertRows(*src, *dst, *t, siting, size, firstRow, ptrdiff_t{firstRow} + rows);
}

}  // namespace qv::QV_LEVEL
