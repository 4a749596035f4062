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

QV_INLINE SampleRows RowsOf(const YuvFrame<const Byte>& src, ChromaSiting siting, IppiSize size,
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

QV_INLINE int MulHigh(int a, int b) {
  return static_cast<int>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b) >> 16);
}

// Pixels that the plain rows work on at a time.
constexpr ptrdiff_t kPlainPiece = 256;

// Chroma of `count` pixels from x on, in 256ths; where rows have half the width x is even, and as
// much of the next pixel may be written.
void ChromaPlain(const SampleRows& rows, int c, ChromaSiting siting, ptrdiff_t x, ptrdiff_t count,
                 uint16_t* chroma) {
  const Byte* const near = rows.near[c];
  const Byte* const next = rows.next[c];
  const ptrdiff_t apart = rows.apart;
  if (!rows.halfWidth) {
    for (ptrdiff_t i = 0; i < count; ++i)
      chroma[i] = static_cast<uint16_t>(near[(x + i) * apart] << 8);
    return;
  }
  const auto fourfold = [=](ptrdiff_t i) { return 3 * near[i * apart] + next[i * apart]; };
  const ptrdiff_t first = x / 2, samples = (count + 1) / 2;
  int before = fourfold(first > 0 ? first - 1 : 0), own = fourfold(first);
  for (ptrdiff_t i = 0; i < samples; ++i) {
    const int after = first + i < rows.last ? fourfold(first + i + 1) : own;
    int even = 64 * own, odd = 32 * (own + after);  // Left
    if (siting == ChromaSiting::Repeat) even = odd = near[(first + i) * apart] << 8;
    if (siting == ChromaSiting::Centre) {
      even = 16 * (3 * own + before);
      odd = 16 * (3 * own + after);
    }
    chroma[2 * i] = static_cast<uint16_t>(even);
    chroma[2 * i + 1] = static_cast<uint16_t>(odd);
    before = own;
    own = after;
  }
}

template <int kChannels>
void PixelsOf(const Byte* luma, ptrdiff_t apart, const uint16_t* p, const uint16_t* q,
              YuvToRgbTerms t, Byte* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int y = MulHigh(luma[i * apart] << 8, t.luma);
    Byte* const pixel = dst + i * kChannels;
    pixel[0] = ToByte((y + MulHigh(p[i], t.first) + t.offset[0]) >> 6);
    pixel[1] =
        ToByte((y - MulHigh(p[i], t.second[0]) - MulHigh(q[i], t.second[1]) + t.offset[1]) >> 6);
    pixel[2] = ToByte((y + MulHigh(q[i], t.third) + t.offset[2]) >> 6);
    if (kChannels == 4) pixel[3] = 255;
  }
}

// Pixels `from`, an even number, to `to` - 1.
void PixelsPlain(const SampleRows& rows, const YuvToRgbTerms& t, ChromaSiting siting, Byte* dst,
                 int channels, ptrdiff_t from, ptrdiff_t to) {
  const auto convert = channels == 3 ? PixelsOf<3> : PixelsOf<4>;
  for (ptrdiff_t x = from; x < to; x += kPlainPiece) {
    const ptrdiff_t count = to - x < kPlainPiece ? to - x : kPlainPiece;
    uint16_t chroma[2][kPlainPiece];
    for (int c = 0; c < 2; ++c) ChromaPlain(rows, c, siting, x, count, chroma[c]);
    convert(rows.luma + x * rows.lumaApart, rows.lumaApart, chroma[0], chroma[1], t,
            dst + x * channels, count);
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

// 64ths are rounded by a multiplication, where that is one operation: there are shuffles enough
// that compete with shifts.
constexpr bool kMultiplies = kHasByteShuffle;

QV_INLINE Vec ToUnits(Vec v) {
  if constexpr (kMultiplies) return MulRounded15(v, Splat16(1 << 9));
  return ShiftRightSigned16<6>(v);
}

// The terms in all lanes. Made once a call and read from memory: there are not enough registers.
struct VectorTerms {
  explicit VectorTerms(const YuvToRgbTerms& t)
      : luma(Splat16(t.luma)),
        first(Splat16(t.first)),
        third(Splat16(t.third)),
        second{Splat16(t.second[0]), Splat16(t.second[1])} {
    // The half that offsets have in them is that of ToUnits.
    for (int c = 0; c < 3; ++c) offset[c] = Splat16(t.offset[c] - (kMultiplies ? 32 : 0));
  }
  Vec luma, first, third, second[2], offset[3];
};

// What the terms of chroma add to luma, of pixels or of samples; signed.
using ChromaTerms = Colours;

QV_INLINE ChromaTerms TermsOf(ChromaPair chroma, const VectorTerms& t) {
  return {Add16(MulHighUnsigned16(chroma.p, t.first), t.offset[0]),
          Sub16(Sub16(t.offset[1], MulHighUnsigned16(chroma.p, t.second[0])),
                MulHighUnsigned16(chroma.q, t.second[1])),
          Add16(MulHighUnsigned16(chroma.q, t.third), t.offset[2])};
}

// Half a block. Sums above 32767 are above 255 as a byte, and stay so.
QV_INLINE Colours AddLuma(Vec luma256, const ChromaTerms& chroma, const VectorTerms& t) {
  const Vec luma = MulHighUnsigned16(luma256, t.luma);
  const auto sum = [=](Vec term) { return ToUnits(AddSaturatedSigned16(luma, term)); };
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

template <int kChannels, bool kDeals, class Store>
QV_INLINE void StorePixels(Byte* dst, const Block256& luma, const BlockTerms& terms,
                           const VectorTerms& t, Store store) {
  const Colours first = AddLuma(luma.first, terms.first, t);
  const Colours second = AddLuma(luma.second, terms.second, t);
  if constexpr (kChannels == 3)
    StoreBGR(dst, first, second, store);
  else
    StoreBGRA<kDeals>(dst, first, second, store);
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

// A block of packed groups: luma, and bytes of chroma in pairs.
template <bool kDeals = false>
QV_INLINE void LoadGroups(const Byte* groups, bool lumaFirst, Block256& luma, Vec& pairs) {
  Vec low, high;
  if constexpr (kDeals) {
    low = DealHalves(Load(groups));
    high = DealHalves(Load(groups + kVecBytes));
  } else {
    LoadPacked(groups, low, high);
  }
  if (lumaFirst) {
    luma = {ShiftLeft16<8>(low), ShiftLeft16<8>(high)};
    if constexpr (kHasBytePermute)
      pairs = OddBytes(low, high);
    else  // lanes are loaded such that they are in order when they are packed
      pairs = PackUnsigned16(ShiftRight16<8>(low), ShiftRight16<8>(high));
  } else {
    luma = {HighBytes(low), HighBytes(high)};
    if constexpr (kHasBytePermute)
      pairs = EvenBytes(low, high);
    else
      pairs = PackUnsigned16(And(low, Splat16(0xff)), And(high, Splat16(0xff)));
  }
}

// Chroma repeated.
template <int kChannels, int kRows>
QV_INLINE bool RepeatedRows(const SampleRows& rows, const Target<kRows>& target,
                            const VectorTerms& t, ptrdiff_t width, bool stream) {
  constexpr bool deals = kDealt<kChannels>;
  const bool planes = rows.apart == 1, swapped = rows.near[1] < rows.near[0];
  const Byte* const p = planes ? rows.near[0] : FirstOf(rows);
  const Byte* const q = rows.near[1];
  return CoverRows<kChannels>(
      target, width, stream, [=, &t](ptrdiff_t x, auto store) QV_INLINE_LAMBDA {
        ChromaPair chroma;
        if (planes)
          chroma = {LoadBytes256<deals>(p + x / 2), LoadBytes256<deals>(q + x / 2)};
        else
          chroma = SplitPairs256(Deal<deals>(Load(p + x)), swapped);
        const BlockTerms terms = Twice(TermsOf(chroma, t));
        for (int row = 0; row < kRows; ++row)
          StorePixels<kChannels, deals>(target.dst[row] + kChannels * x,
                                        LoadBlock256<deals>(target.luma[row] + x), terms, t, store);
      });
}

template <int kChannels>
QV_INLINE bool PackedRow(const SampleRows& rows, const Target<1>& target, const VectorTerms& t,
                         ptrdiff_t width, bool stream) {
  constexpr bool deals = kDealt<kChannels>;
  const Byte* const groups = FirstOf(rows);
  const bool lumaFirst = groups == rows.luma, swapped = rows.near[1] < rows.near[0];
  return CoverRows<kChannels>(
      target, width, stream, [=, &t](ptrdiff_t x, auto store) QV_INLINE_LAMBDA {
        Block256 luma;
        Vec pairs;
        LoadGroups<deals>(groups + 2 * x, lumaFirst, luma, pairs);
        const BlockTerms terms = Twice(TermsOf(SplitPairs256(pairs, swapped), t));
        StorePixels<kChannels, deals>(target.dst[0] + kChannels * x, luma, terms, t, store);
      });
}

// A sample for every pixel.
template <int kChannels>
QV_INLINE bool FullRow(const SampleRows& rows, const Target<1>& target, const VectorTerms& t,
                       ptrdiff_t width, bool stream) {
  constexpr bool deals = kDealt<kChannels>;
  const Byte* const from[] = {rows.near[0], rows.near[1]};
  return CoverRows<kChannels>(
      target, width, stream, [=, &t](ptrdiff_t x, auto store) QV_INLINE_LAMBDA {
        const Block256 p = LoadBlock256<deals>(from[0] + x), q = LoadBlock256<deals>(from[1] + x);
        const BlockTerms terms = {TermsOf({p.first, q.first}, t), TermsOf({p.second, q.second}, t)};
        StorePixels<kChannels, deals>(target.dst[0] + kChannels * x,
                                      LoadBlock256<deals>(target.luma[0] + x), terms, t, store);
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
    Block256 luma;
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
QV_INLINE bool InterpolatedPiece(const SampleRows& rows, const MixedChroma& mixed, Byte* dst,
                                 const VectorTerms& t, const Weights& weights, ptrdiff_t from,
                                 ptrdiff_t width, bool stream) {
  const Target<1> target = {{nullptr}, {dst + kChannels * from}};
  const bool packed = rows.lumaApart == 2;
  const Byte* const samples = packed ? FirstOf(rows) + 2 * from : rows.luma + from;
  const bool lumaFirst = packed && FirstOf(rows) == rows.luma;
  const Vec even[] = {Splat16(weights.even), Splat16(weights.evenBeside)};
  const Vec odd[] = {Splat16(weights.odd), Splat16(weights.oddBeside)};
  return CoverRows<kChannels>(
      target, width, stream, [=, &mixed, &t](ptrdiff_t x, auto store) QV_INLINE_LAMBDA {
        const auto weighted = [](Vec own, Vec beside, const Vec(&by)[2]) {
          return Add16(MulLow16(own, by[0]), MulLow16(beside, by[1]));
        };
        const auto sample = [&](int c, ptrdiff_t beside, const Vec(&by)[2]) {
          const uint16_t* const own = mixed.at[c] + 1 + x / 2;
          return weighted(Load(own), Load(own + beside), by);
        };
        const BlockTerms terms = InTurns(TermsOf({sample(0, -1, even), sample(1, -1, even)}, t),
                                         TermsOf({sample(0, 1, odd), sample(1, 1, odd)}, t));
        Block256 luma;
        Vec pairs;
        if (packed)
          LoadGroups(samples + 2 * x, lumaFirst, luma, pairs);
        else
          luma = LoadBlock256<false>(samples + x);
        StorePixels<kChannels, false>(target.dst[0] + kChannels * x, luma, terms, t, store);
      });
}

template <int kChannels>
QV_INLINE bool InterpolatedRow(const SampleRows& rows, const Target<1>& target,
                               const VectorTerms& t, ChromaSiting siting, ptrdiff_t width,
                               bool stream) {
  if (width < kBlockPixels) return false;
  for (ptrdiff_t x = 0; x < width; x += kPiece) {
    // The last piece has at least a block, and ends with the row.
    const ptrdiff_t left = width - x < kPiece ? width - x : kPiece;
    const ptrdiff_t count = left < kBlockPixels ? kBlockPixels : left;
    const ptrdiff_t from = x + left - count;
    MixedChroma mixed;
    MixRows(rows, from / 2, count / 2, mixed);
    InterpolatedPiece<kChannels>(rows, mixed, target.dst[0], t, kWeights[static_cast<int>(siting)],
                                 from, count, stream);
  }
  return true;
}

// ---- Rows of any form ---------------------------------------------------------------------------

// Rows are described anew for each of them, in registers: what has just been stored is slow to be
// loaded in other pieces.
template <int kChannels>
void ConvertRowsOf(const YuvFrame<const Byte>& src, const RgbFrame<Byte>& dst,
                   const YuvToRgbTerms& t, ChromaSiting siting, IppiSize size, ptrdiff_t first,
                   ptrdiff_t end) {
  const VectorTerms vectors(t);
  const bool stream = PassesCaches(size.width, size.height, kChannels);
  const ptrdiff_t even = size.width & ~1;
  ptrdiff_t y = first;
  // Rows in twos share the chroma that is repeated.
  if (src.halfHeight && siting == ChromaSiting::Repeat)
    for (; end - y >= 2; y += 2) {
      const SampleRows rows = RowsOf(src, siting, size, y);
      const SampleRows below = RowsOf(src, siting, size, y + 1);
      const Target<2> target = {
          {rows.luma, below.luma},
          {RowAt(dst.pixels, dst.step, y), RowAt(dst.pixels, dst.step, y + 1)}};
      const bool done = RepeatedRows<kChannels>(rows, target, vectors, even, stream);
      PixelsPlain(rows, t, siting, target.dst[0], kChannels, done ? even : 0, size.width);
      PixelsPlain(below, t, siting, target.dst[1], kChannels, done ? even : 0, size.width);
    }
  for (; y < end; ++y) {
    const SampleRows rows = RowsOf(src, siting, size, y);
    const Target<1> target = {{rows.luma}, {RowAt(dst.pixels, dst.step, y)}};
    bool done;
    if (!rows.halfWidth)
      done = FullRow<kChannels>(rows, target, vectors, even, stream);
    else if (siting != ChromaSiting::Repeat)
      done = InterpolatedRow<kChannels>(rows, target, vectors, siting, even, stream);
    else if (rows.lumaApart == 2)
      done = PackedRow<kChannels>(rows, target, vectors, even, stream);
    else
      done = RepeatedRows<kChannels>(rows, target, vectors, even, stream);
    PixelsPlain(rows, t, siting, target.dst[0], kChannels, done ? even : 0, size.width);
  }
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
