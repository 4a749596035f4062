// Pixels of one, three or four bytes to luma and chroma of any layout.
#include "kernels/level/Level.h"
#include "kernels/yuv/Yuv.h"
#include "kernels/yuv/YuvVectors.h"
#include "kernels/yuv/PixelLoads.h"

namespace qv::QV_LEVEL {

namespace {

// What the rows that share a row of chroma go from and to: one row, twice, or two.
struct RowPair {
  const Byte* pixels[2];
  int channels;
  int blue, green, red;  // bytes of a pixel
  Byte* luma[2];
  int lumaApart;
  Byte* chroma[2];
  int apart;
  bool halfWidth;
  ptrdiff_t width;
};

QV_INLINE RowPair RowsOf(const RgbFrame<const Byte>& src, const YuvFrame<Byte>& dst, IppiSize size,
                         ptrdiff_t y) {
  const ptrdiff_t below = dst.halfHeight && y + 1 < size.height ? y + 1 : y;
  const ptrdiff_t k = dst.halfHeight ? y / 2 : y;
  const int last = src.channels == 1 ? 0 : 2;  // of the bytes that are looked at
  return {{RowAt(src.pixels, src.step, y), RowAt(src.pixels, src.step, below)},
          src.channels,
          src.redFirst ? last : 0,
          last / 2,
          src.redFirst ? 0 : last,
          {RowAt(dst.luma, dst.lumaStep, y), RowAt(dst.luma, dst.lumaStep, below)},
          dst.lumaApart,
          {RowAt(dst.chroma[0], dst.chromaStep[0], k), RowAt(dst.chroma[1], dst.chromaStep[1], k)},
          dst.chromaApart,
          dst.halfWidth,
          size.width};
}

QV_INLINE int MulHigh(int a, int b) {
  return static_cast<int>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b) >> 16);
}

// What B and R of a column have beyond its luma, in parts.
struct Difference {
  int blue, red;
};

// A column of one row or two: their luma is stored.
QV_INLINE Difference ConvertColumn(const RowPair& rows, const RgbToYuvTerms& t, ptrdiff_t x) {
  int blue[2], red[2], luma[2];
  const int count = rows.luma[0] == rows.luma[1] ? 1 : 2;
  for (int row = 0; row < count; ++row) {
    const Byte* const pixel = rows.pixels[row] + x * rows.channels;
    const int pair = pixel[rows.blue] * t.pair[0] + pixel[rows.green] * t.pair[1];
    blue[row] = pixel[rows.blue] * t.unit;
    red[row] = pixel[rows.red] * t.unit;
    luma[row] = MulHigh(pair, t.ofPair) + MulHigh(red[row], t.ofRed);
    rows.luma[row][x * rows.lumaApart] =
        static_cast<Byte>(((luma[row] + t.lumaOffset) * t.toLuma + (1 << 14)) >> 15);
  }
  const auto mean = [=](const int(&of)[2]) { return (of[0] + of[count - 1] + 1) >> 1; };
  const int middle = mean(luma);
  return {mean(blue) - middle, mean(red) - middle};
}

// Of the sum of four differences.
QV_INLINE Byte ToChroma(int sum, int quarter) {
  return ToByte((((sum * quarter) >> 16) + 16 + 128 * 32) >> 5);
}

// Pixels `from` to `to` - 1; of rows of half the width from an even one on.
void ConvertPlain(const RowPair& givenRows, const RgbToYuvTerms& givenTerms, ChromaSiting siting,
                  ptrdiff_t from, ptrdiff_t to) {
  if (from >= to) return;
  // Copies: bytes that are stored could change others.
  const RowPair rows = givenRows;
  const RgbToYuvTerms t = givenTerms;
  const auto store = [&](ptrdiff_t i, const Difference& sum) {
    rows.chroma[0][i * rows.apart] = ToChroma(sum.blue, t.quarter[0]);
    rows.chroma[1][i * rows.apart] = ToChroma(sum.red, t.quarter[1]);
  };
  if (!rows.halfWidth) {
    for (ptrdiff_t x = from; x < to; ++x) {
      const Difference d = ConvertColumn(rows, t, x);
      store(x, {4 * d.blue, 4 * d.red});
    }
    return;
  }
  Difference before = ConvertColumn(rows, t, from > 0 ? from - 1 : 0);
  for (ptrdiff_t x = from; x < to; x += 2) {
    const Difference own = ConvertColumn(rows, t, x);
    const Difference after = x + 1 < rows.width ? ConvertColumn(rows, t, x + 1) : own;
    const Difference beside = siting == ChromaSiting::Left ? before : after;
    store(x / 2, {2 * own.blue + after.blue + beside.blue, 2 * own.red + after.red + beside.red});
    before = after;
  }
}

void RepeatLastLuma(const RowPair& rows) {
  if (rows.lumaApart == 2 && rows.width % 2)
    rows.luma[0][2 * rows.width] = rows.luma[0][2 * rows.width - 2];
}

#if !QV_HAS_VECTORS

void ConvertRows(const RgbFrame<const Byte>& src, const YuvFrame<Byte>& dst, const RgbToYuvTerms& t,
                 ChromaSiting siting, IppiSize size, int64_t first, int64_t end) {
  for (int64_t y = first; y < end; y += dst.halfHeight ? 2 : 1) {
    const RowPair rows = RowsOf(src, dst, size, static_cast<ptrdiff_t>(y));
    ConvertPlain(rows, t, siting, 0, rows.width);
    RepeatLastLuma(rows);
  }
}

#else

// ---- Vector rows --------------------------------------------------------------------------------

// Signed bytes in turns.
QV_INLINE Vec SplatPair8(int even, int odd) { return Splat16(odd * 256 + even); }

// The terms in all lanes. Made once a call and read from memory: there are not enough registers.
struct VectorTerms {
  VectorTerms(const RgbToYuvTerms& t, const PixelOrder& pixelOrder)
      : order(pixelOrder),
        unit(SplatPair8(t.unit, 0)),
        pair(SplatPair8(t.pair[0], t.pair[1])),
        ofPair(Splat16(t.ofPair)),
        ofRed(Splat16(t.ofRed)),
        lumaOffset(Splat16(t.lumaOffset)),
        toLuma(Splat16(t.toLuma)) {
    for (int c = 0; c < 2; ++c) {
      all[c] = Splat16(4 * t.quarter[c]);
      halves[c] = Splat16(2 * t.quarter[c]);
      ownAndAfter[c] = SplatPair16(2 * t.quarter[c], t.quarter[c]);
      before[c] = SplatPair16(t.quarter[c], 0);
    }
  }
  PixelOrder order;
  Vec unit, pair, ofPair, ofRed, lumaOffset, toLuma;
  Vec all[2], halves[2], ownAndAfter[2], before[2];  // of differences
};

// Of the pixels of half a block, in parts.
struct PixelParts {
  Vec blue, red, luma;
};

QV_INLINE PixelParts PartsOf(const BytePairs& pixels, const VectorTerms& t) {
  const Vec pair = MulAddBytes(pixels.blueGreen, t.pair);
  const Vec red = MulAddBytes(pixels.red, t.unit);
  return {MulAddBytes(pixels.blueGreen, t.unit), red,
          Add16(MulHighUnsigned16(pair, t.ofPair), MulHighUnsigned16(red, t.ofRed))};
}

struct BlockParts {
  PixelParts half[2];
};

template <int kChannels>
QV_INLINE BlockParts LoadParts(const Byte* src, const VectorTerms& t) {
  const BlockPairs pixels = LoadPixels<kChannels>(src, t.order);
  return {{PartsOf(pixels.half[0], t), PartsOf(pixels.half[1], t)}};
}

QV_INLINE Vec LumaOf(const BlockParts& parts, const VectorTerms& t) {
  const auto bytes = [&](const PixelParts& p) {
    return MulRounded15(Add16(p.luma, t.lumaOffset), t.toLuma);
  };
  return InOrder(PackUnsigned16(bytes(parts.half[0]), bytes(parts.half[1])));
}

struct Differences {
  Vec blue, red;
};

QV_INLINE Differences DifferencesOf(const PixelParts& p) {
  return {Sub16(p.blue, p.luma), Sub16(p.red, p.luma)};
}

// Of the mean of two rows.
QV_INLINE Differences DifferencesOf(const PixelParts& a, const PixelParts& b) {
  return DifferencesOf(PixelParts{AverageUp16(a.blue, b.blue), AverageUp16(a.red, b.red),
                                  AverageUp16(a.luma, b.luma)});
}

// Bytes of chroma, in order, from 32nds of what differs from 128.
QV_INLINE Vec ChromaBytes(Vec low, Vec high) {
  const auto rounded = [](Vec v) { return MulRounded15(v, Splat16(1 << 10)); };
  return Xor(InOrder(PackSigned16(rounded(low), rounded(high))), Splat8(128));
}

// Where the second block begins, counted from the first, so that all that is stored from there on
// is aligned; 0 if there is no such place.
ptrdiff_t SecondBlock(const RowPair& rows, const Byte* chroma, ptrdiff_t from) {
  if (rows.lumaApart == 2) {
    const Byte* const groups = rows.luma[0] < chroma ? rows.luma[0] : chroma;
    const ptrdiff_t bytes = BytesToAlign(groups + 2 * from);
    return bytes % 4 == 0 ? kVecBytes - (kVecBytes - bytes) / 2 : 0;
  }
  const ptrdiff_t second = BytesToAlign(rows.luma[0] + from);
  if (second % 2 != 0 || BytesToAlign(rows.luma[1] + from) != second) return 0;
  if (rows.apart == 2) return BytesToAlign(chroma + from) == second ? second : 0;
  for (const Byte* plane : rows.chroma)
    if (BytesToAlign<kVecBytes / 2>(plane + from / 2) != second / 2) return 0;
  return second;
}

// Of frames that come from memory: two rows at a time, a processor does not look far enough ahead.
template <int kChannels>
QV_INLINE void PrefetchPixels(const Byte* src) {
  for (int line = 0; line < kChannels * kVecBytes; line += 64)
    __builtin_prefetch(src + 2048 + line);
}

// Sums over the columns of chroma samples, in pairs of 16 bits, from half a block; `before` is the
// one that begins a pixel before it.
template <bool kSited>
QV_INLINE Vec SumColumns(const Differences& d, const Differences& before, const VectorTerms& t,
                         bool swapped) {
  const auto sum = [&](Vec own, Vec left, int c) {
    if (!kSited) return MulAddPairs16(own, t.halves[c]);
    return Add32(MulAddPairs16(own, t.ownAndAfter[c]), MulAddPairs16(left, t.before[c]));
  };
  const Vec cb = sum(d.blue, before.blue, 0), cr = sum(d.red, before.red, 1);
  return swapped ? HighHalves16(cr, cb) : HighHalves16(cb, cr);
}

// Pixels `from` to `to` - 1, an even number from an even one; false if there are fewer than a block
// has. `kRows` rows that share their chroma.
template <int kChannels, int kRows, bool kSited>
QV_INLINE bool HalfWidthRows(const RowPair& rows, const VectorTerms& t, ptrdiff_t from,
                             ptrdiff_t to, bool stream) {
  const bool packed = rows.lumaApart == 2, planes = rows.apart == 1;
  const bool swapped = !planes && rows.chroma[1] < rows.chroma[0];
  Byte* const chroma = rows.chroma[swapped] + (planes ? from / 2 : from * rows.lumaApart);
  Byte* const second = rows.chroma[1] + from / 2;
  const Byte* const src[] = {rows.pixels[0] + kChannels * from, rows.pixels[1] + kChannels * from};
  Byte* const luma[] = {rows.luma[0] + from * rows.lumaApart, rows.luma[1] + from};
  const bool lumaFirst = luma[0] < chroma;
  const auto block = [=, &t](ptrdiff_t x, auto store) QV_INLINE_LAMBDA {
    BlockParts parts[kRows], before[kRows];
    Vec bytes[kRows];
    for (int row = 0; row < kRows; ++row) {
      const Byte* const pixels = src[row] + kChannels * x;
      if (stream) PrefetchPixels<kChannels>(pixels);
      parts[row] = LoadParts<kChannels>(pixels, t);
      bytes[row] = LumaOf(parts[row], t);
      if (kSited) before[row] = LoadParts<kChannels>(pixels - kChannels, t);
    }
    const auto differences = [](const BlockParts(&of)[kRows], int h) {
      return kRows == 1 ? DifferencesOf(of[0].half[h])
                        : DifferencesOf(of[0].half[h], of[kRows - 1].half[h]);
    };
    Vec sums[2];
    for (int h = 0; h < 2; ++h)
      sums[h] = SumColumns<kSited>(differences(parts, h),
                                   kSited ? differences(before, h) : Differences{}, t, swapped);
    const Vec pairs = ChromaBytes(sums[0], sums[1]);
    if (packed) {
      if (lumaFirst)
        StoreInTurns8(luma[0] + 2 * x, bytes[0], pairs, store);
      else
        StoreInTurns8(chroma + 2 * x, pairs, bytes[0], store);
      return;
    }
    for (int row = 0; row < kRows; ++row) store(luma[row] + x, bytes[row]);
    if (planes) {
      const Vec apart = SplitPairs8(pairs);
      store.LowHalf(chroma + x / 2, apart);
      store.LowHalf(second + x / 2, HighHalf(apart));
    } else {
      store(chroma + x, pairs);
    }
  };
  const ptrdiff_t next = SecondBlock(rows, rows.chroma[swapped], from);
  return CoverWithBlocks<kVecBytes>(to - from, stream && next > 0, block,
                                    next > 0 ? next : kVecBytes);
}

template <int kChannels>
QV_INLINE bool FullWidthRow(const RowPair& rows, const VectorTerms& t, bool stream) {
  const Byte* const src = rows.pixels[0];
  Byte* const luma = rows.luma[0];
  Byte* const chroma[] = {rows.chroma[0], rows.chroma[1]};
  const auto block = [=, &t](ptrdiff_t x, auto store) QV_INLINE_LAMBDA {
    const BlockParts parts = LoadParts<kChannels>(src + kChannels * x, t);
    store(luma + x, LumaOf(parts, t));
    const Differences low = DifferencesOf(parts.half[0]), high = DifferencesOf(parts.half[1]);
    const auto bytes = [&](Vec a, Vec b, int c) {
      return ChromaBytes(MulHighSigned16(a, t.all[c]), MulHighSigned16(b, t.all[c]));
    };
    store(chroma[0] + x, bytes(low.blue, high.blue, 0));
    store(chroma[1] + x, bytes(low.red, high.red, 1));
  };
  const ptrdiff_t second = BytesToAlign(luma);
  const bool aligns = BytesToAlign(chroma[0]) == second && BytesToAlign(chroma[1]) == second;
  return CoverWithBlocks<kVecBytes>(rows.width, stream && aligns, block,
                                    aligns ? second : kVecBytes);
}

// Rows are described anew for each pair, in registers: what has just been stored is slow to be
// loaded in other pieces. The plain rows do what blocks leave: an odd last pixel, and a first pair
// that has no pixel before it.
template <int kChannels>
void ConvertRowsOf(const RgbFrame<const Byte>& src, const YuvFrame<Byte>& dst,
                   const RgbToYuvTerms& t, ChromaSiting siting, IppiSize size, int64_t first,
                   int64_t end) {
  const VectorTerms vectors(t, PixelOrderOf<kChannels>(src.redFirst));
  const bool stream = PassesCaches(size.width, size.height, dst.halfWidth ? 2 : 3);
  const bool sited = dst.halfWidth && siting == ChromaSiting::Left;
  const ptrdiff_t from = sited ? 2 : 0, to = dst.halfWidth ? size.width & ~1 : size.width;
  for (int64_t y = first; y < end; y += dst.halfHeight ? 2 : 1) {
    const RowPair rows = RowsOf(src, dst, size, static_cast<ptrdiff_t>(y));
    bool done;
    if (!rows.halfWidth)
      done = FullWidthRow<kChannels>(rows, vectors, stream);
    else if (rows.luma[0] == rows.luma[1])
      done = sited ? HalfWidthRows<kChannels, 1, true>(rows, vectors, from, to, stream)
                   : HalfWidthRows<kChannels, 1, false>(rows, vectors, from, to, stream);
    else
      done = sited ? HalfWidthRows<kChannels, 2, true>(rows, vectors, from, to, stream)
                   : HalfWidthRows<kChannels, 2, false>(rows, vectors, from, to, stream);
    ConvertPlain(rows, t, siting, 0, done ? from : 0);
    ConvertPlain(rows, t, siting, done ? to : 0, rows.width);
    RepeatLastLuma(rows);
  }
  if (stream) StreamFence();
}

void ConvertRows(const RgbFrame<const Byte>& src, const YuvFrame<Byte>& dst, const RgbToYuvTerms& t,
                 ChromaSiting siting, IppiSize size, int64_t first, int64_t end) {
  const auto convert = src.channels == 1   ? ConvertRowsOf<1>
                       : src.channels == 3 ? ConvertRowsOf<3>
                                           : ConvertRowsOf<4>;
  convert(src, dst, t, siting, size, first, end);
}

#endif

}  // namespace

void RgbToYuv_8u(const RgbFrame<const Byte>* src, const YuvFrame<Byte>* dst, const RgbToYuvTerms* t,
                 ChromaSiting siting, IppiSize size, int firstRow, int rows) {
  ConvertRows(*src, *dst, *t, siting, size, firstRow, int64_t{firstRow} + rows);
}

}  // namespace qv::QV_LEVEL
