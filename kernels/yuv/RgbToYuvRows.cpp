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
  Byte* luma[2];
  int lumaApart;
  Byte* chroma[2];
  int apart;
  bool halfWidth;
  ptrdiff_t width, samples;
};

RowPair RowsOf(const RgbFrame<const Byte>& src, const YuvFrame<Byte>& dst, IppiSize size,
               ptrdiff_t y) {
  const ptrdiff_t below = dst.halfHeight && y + 1 < size.height ? y + 1 : y;
  const ptrdiff_t k = dst.halfHeight ? y / 2 : y;
  return {{RowAt(src.pixels, src.step, y), RowAt(src.pixels, src.step, below)},
          src.channels,
          {RowAt(dst.luma, dst.lumaStep, y), RowAt(dst.luma, dst.lumaStep, below)},
          dst.lumaApart,
          {RowAt(dst.chroma[0], dst.chromaStep[0], k), RowAt(dst.chroma[1], dst.chromaStep[1], k)},
          dst.chromaApart,
          dst.halfWidth,
          size.width,
          dst.halfWidth ? (size.width - 1) / 2 + 1 : size.width};
}

QV_INLINE int MulHigh(int a, int b) {
  return static_cast<int>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b) >> 16);
}

// Byte c of pixel x of a row, or of all three from the one that there is.
QV_INLINE int ByteAt(const RowPair& rows, int row, ptrdiff_t x, int c) {
  return rows.pixels[row][x * rows.channels + (rows.channels == 1 ? 0 : c)];
}

QV_INLINE Byte LumaAt(const RowPair& rows, int row, ptrdiff_t x, const RgbToYuvTerms& t) {
  int sum = t.lumaOffset;
  for (int c = 0; c < 3; ++c) sum += MulHigh(ByteAt(rows, row, x, c) << 8, t.luma[c]);
  return static_cast<Byte>(sum >> 8);
}

// The mean of byte c for chroma sample i, in 256ths. Each row has a weight of four.
QV_INLINE int MeanAt(const RowPair& rows, ptrdiff_t i, int c, ChromaSiting siting) {
  int sum = 0;
  for (int row = 0; row < 2; ++row) {
    if (!rows.halfWidth) {
      sum += 4 * ByteAt(rows, row, i, c);
      continue;
    }
    const ptrdiff_t x = 2 * i, right = x + 1 < rows.width ? x + 1 : x, left = x > 0 ? x - 1 : x;
    sum += 2 * ByteAt(rows, row, x, c) + ByteAt(rows, row, right, c) +
           ByteAt(rows, row, siting == ChromaSiting::Left ? left : right, c);
  }
  return 32 * sum;
}

// Chroma samples `from` to `to` - 1.
void ChromaPlain(const RowPair& rows, const RgbToYuvTerms& t, ChromaSiting siting, ptrdiff_t from,
                 ptrdiff_t to) {
  for (ptrdiff_t i = from; i < to; ++i) {
    int mean[3];
    for (int c = 0; c < 3; ++c) mean[c] = MeanAt(rows, i, c, siting);
    for (int c = 0; c < 2; ++c) {
      const int sum = MulHigh(mean[2 * c], t.half) - MulHigh(mean[1], t.less[c][0]) -
                      MulHigh(mean[2 - 2 * c], t.less[c][1]) + t.chromaOffset;
      rows.chroma[c][i * rows.apart] = static_cast<Byte>(sum >> 8);
    }
  }
}

// The luma of pixels `from` to `to` - 1 of both rows.
void LumaPlain(const RowPair& rows, const RgbToYuvTerms& t, ptrdiff_t from, ptrdiff_t to) {
  for (ptrdiff_t x = from; x < to; ++x)
    for (int row = 0; row < 2; ++row) rows.luma[row][x * rows.lumaApart] = LumaAt(rows, row, x, t);
}

#if !QV_HAS_VECTORS

QV_INLINE void ConvertPair(const RowPair& rows, const RgbToYuvTerms& t, ChromaSiting siting,
                           bool) {
  LumaPlain(rows, t, 0, rows.width);
  ChromaPlain(rows, t, siting, 0, rows.samples);
}

#else

// ---- Vector rows --------------------------------------------------------------------------------

// A byte of a block's even pixels and of its odd ones, times 256.
struct EvenOdd {
  Vec even, odd;
};

// The three bytes of a block of pixels.
struct BlockPixels {
  EvenOdd at[3];
};

template <int kChannels>
QV_INLINE BlockPixels LoadPixels256(const Byte* src) {
  const ByteVectors bytes = LoadPixels<kChannels>(src);
  BlockPixels block;
  for (int c = 0; c < 3; ++c) block.at[c] = {ShiftLeft16<8>(bytes.at[c]), HighBytes(bytes.at[c])};
  return block;
}

// Bytes of even and of odd places from the high bytes of 16-bit lanes.
QV_INLINE Vec JoinHighBytes(Vec even, Vec odd) { return Or(ShiftRight16<8>(even), HighBytes(odd)); }

QV_INLINE Vec LumaOf(Vec a, Vec b, Vec c, const RgbToYuvTerms& t) {
  return Add16(
      Add16(MulHighUnsigned16(a, Splat16(t.luma[0])), MulHighUnsigned16(b, Splat16(t.luma[1]))),
      Add16(MulHighUnsigned16(c, Splat16(t.luma[2])), Splat16(t.lumaOffset)));
}

QV_INLINE Vec LumaOf(const BlockPixels& block, const RgbToYuvTerms& t) {
  const EvenOdd(&at)[3] = block.at;
  return JoinHighBytes(LumaOf(at[0].even, at[1].even, at[2].even, t),
                       LumaOf(at[0].odd, at[1].odd, at[2].odd, t));
}

// The two chroma samples in the high bytes of 16-bit lanes, of bytes or means times 256.
QV_INLINE ChromaPair ChromaOf(Vec a, Vec b, Vec c, const RgbToYuvTerms& t) {
  const auto product = [](Vec v, int factor) { return MulHighUnsigned16(v, Splat16(factor)); };
  const auto chroma = [=](Vec own, Vec other, const uint16_t(&less)[2]) {
    return Sub16(Add16(product(own, t.half), Splat16(t.chromaOffset)),
                 Add16(product(b, less[0]), product(other, less[1])));
  };
  return {chroma(a, c, t.less[0]), chroma(c, a, t.less[1])};
}

// Means of multiples of 32 or more are exact: none is odd before the last.
struct Means {
  Vec at[3];
};

// Over two columns, or three with `left` the pixels before the even ones.
QV_INLINE Means MeansOf(const BlockPixels& block) {
  Means means;
  for (int c = 0; c < 3; ++c) means.at[c] = AverageUp16(block.at[c].even, block.at[c].odd);
  return means;
}

template <int kChannels>
QV_INLINE Means SitedMeansOf(const BlockPixels& block, const Byte* src) {
  const ByteVectors before = LoadPixels<kChannels>(src - kChannels);
  Means means;
  for (int c = 0; c < 3; ++c)
    means.at[c] =
        AverageUp16(block.at[c].even, AverageUp16(ShiftLeft16<8>(before.at[c]), block.at[c].odd));
  return means;
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

// Pixels `from` to `to` - 1, an even number from an even one; false if there are fewer than a block
// has. `kRows` rows that share their chroma.
template <int kChannels, int kRows, bool kSited>
bool HalfWidthRows(const RowPair& rows, const RgbToYuvTerms& t, ptrdiff_t from, ptrdiff_t to,
                   bool stream) {
  const bool swapped = rows.chroma[1] < rows.chroma[0];
  Byte* const first = swapped ? rows.chroma[1] : rows.chroma[0];
  const bool lumaFirst = rows.luma[0] < first;
  const auto block = [=](ptrdiff_t at, auto store) {
    const ptrdiff_t x = from + at;
    Vec luma[kRows];
    Means means[kRows];
    for (int row = 0; row < kRows; ++row) {
      const Byte* const src = rows.pixels[row] + kChannels * x;
      if (stream) PrefetchPixels<kChannels>(src);
      const BlockPixels pixels = LoadPixels256<kChannels>(src);
      luma[row] = LumaOf(pixels, t);
      means[row] = kSited ? SitedMeansOf<kChannels>(pixels, src) : MeansOf(pixels);
    }
    if (kRows == 2)
      for (int c = 0; c < 3; ++c)
        means[0].at[c] = AverageUp16(means[0].at[c], means[kRows - 1].at[c]);
    const ChromaPair chroma = ChromaOf(means[0].at[0], means[0].at[1], means[0].at[2], t);
    if (rows.lumaApart == 2) {
      const Vec pairs = JoinPairs(chroma.p, chroma.q, swapped);
      if (lumaFirst)
        StoreInTurns8(rows.luma[0] + 2 * x, luma[0], pairs, store);
      else
        StoreInTurns8(first + 2 * x, pairs, luma[0], store);
      return;
    }
    for (int row = 0; row < kRows; ++row) store(rows.luma[row] + x, luma[row]);
    if (rows.apart == 2) {
      store(first + x, JoinPairs(chroma.p, chroma.q, swapped));
    } else {
      StoreHighBytes(rows.chroma[0] + x / 2, chroma.p, store);
      StoreHighBytes(rows.chroma[1] + x / 2, chroma.q, store);
    }
  };
  const ptrdiff_t second = SecondBlock(rows, first, from);
  return CoverWithBlocks<kVecBytes>(to - from, stream && second > 0, block,
                                    second > 0 ? second : kVecBytes);
}

template <int kChannels>
bool FullWidthRow(const RowPair& rows, const RgbToYuvTerms& t, bool stream) {
  const auto block = [=](ptrdiff_t x, auto store) {
    const BlockPixels pixels = LoadPixels256<kChannels>(rows.pixels[0] + kChannels * x);
    const EvenOdd(&at)[3] = pixels.at;
    store(rows.luma[0] + x, LumaOf(pixels, t));
    const ChromaPair even = ChromaOf(at[0].even, at[1].even, at[2].even, t);
    const ChromaPair odd = ChromaOf(at[0].odd, at[1].odd, at[2].odd, t);
    store(rows.chroma[0] + x, JoinHighBytes(even.p, odd.p));
    store(rows.chroma[1] + x, JoinHighBytes(even.q, odd.q));
  };
  const ptrdiff_t second = BytesToAlign(rows.luma[0]);
  const bool aligns =
      BytesToAlign(rows.chroma[0]) == second && BytesToAlign(rows.chroma[1]) == second;
  return CoverWithBlocks<kVecBytes>(rows.width, stream && aligns, block,
                                    aligns ? second : kVecBytes);
}

// The plain rows do what blocks leave: an odd last pixel, and a first pair that has no pixel before
// it.
template <int kChannels>
void ConvertPairOf(const RowPair& rows, const RgbToYuvTerms& t, ChromaSiting siting, bool stream) {
  if (!rows.halfWidth) {
    if (FullWidthRow<kChannels>(rows, t, stream)) return;
    LumaPlain(rows, t, 0, rows.width);
    ChromaPlain(rows, t, siting, 0, rows.samples);
    return;
  }
  const ptrdiff_t even = rows.width & ~ptrdiff_t{1};
  const bool sited = siting == ChromaSiting::Left, two = rows.luma[0] != rows.luma[1];
  const auto one = sited ? HalfWidthRows<kChannels, 1, true> : HalfWidthRows<kChannels, 1, false>;
  const auto both = sited ? HalfWidthRows<kChannels, 2, true> : HalfWidthRows<kChannels, 2, false>;
  const auto convert = two ? both : one;
  const ptrdiff_t from = sited ? 2 : 0;
  const bool done = convert(rows, t, from, even, stream);
  const ptrdiff_t head = done ? from : 0, tail = done ? even : 0;
  LumaPlain(rows, t, 0, head);
  ChromaPlain(rows, t, siting, 0, head / 2);
  LumaPlain(rows, t, tail, rows.width);
  ChromaPlain(rows, t, siting, tail / 2, rows.samples);
}

QV_INLINE void ConvertPair(const RowPair& rows, const RgbToYuvTerms& t, ChromaSiting siting,
                           bool stream) {
  const auto convert = rows.channels == 1   ? ConvertPairOf<1>
                       : rows.channels == 3 ? ConvertPairOf<3>
                                            : ConvertPairOf<4>;
  convert(rows, t, siting, stream);
}

#endif

}  // namespace

void RgbToYuv_8u(const RgbFrame<const Byte>* src, const YuvFrame<Byte>* dst, const RgbToYuvTerms* t,
                 ChromaSiting siting, IppiSize size, int firstRow, int rows) {
  const int64_t end = int64_t{firstRow} + rows;
  const bool stream = PassesCaches(size.width, size.height, dst->halfWidth ? 2 : 3);
  for (int64_t y = firstRow; y < end; y += dst->halfHeight ? 2 : 1) {
    const RowPair pair = RowsOf(*src, *dst, size, static_cast<ptrdiff_t>(y));
    ConvertPair(pair, *t, siting, stream);
    if (pair.lumaApart == 2 && pair.width % 2)
      for (int row = 0; row < 2; ++row)
        pair.luma[row][2 * pair.width] = pair.luma[row][2 * pair.width - 2];
  }
  if (stream) StreamFence();
}

}  // namespace qv::QV_LEVEL
