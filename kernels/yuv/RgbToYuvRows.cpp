// Pixels of one, three or four bytes to luma and chroma of any layout.
#include "kernels/level/Level.h"
#include "kernels/yuv/Yuv.h"

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
  ptrdiff_t width;
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
          size.width};
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
  for (ptrdiff_t i = from; i < to; ++i)
    for (int c = 0; c < 2; ++c) {
      const int own = MeanAt(rows, i, 2 * c, siting), other = MeanAt(rows, i, 2 - 2 * c, siting);
      const int sum = MulHigh(own, t.half) - MulHigh(MeanAt(rows, i, 1, siting), t.less[c][0]) -
                      MulHigh(other, t.less[c][1]) + t.chromaOffset;
      rows.chroma[c][i * rows.apart] = static_cast<Byte>(sum >> 8);
    }
}

// The luma of pixels `from` to `to` - 1 of both rows.
void LumaPlain(const RowPair& rows, const RgbToYuvTerms& t, ptrdiff_t from, ptrdiff_t to) {
  for (ptrdiff_t x = from; x < to; ++x)
    for (int row = 0; row < 2; ++row)
      rows.luma[row][x * rows.lumaApart] = LumaAt(rows, row, x, t);
}

#if 1  // TEMP

QV_INLINE void ConvertPair(const RowPair& rows, const RgbToYuvTerms& t, ChromaSiting siting) {
  LumaPlain(rows, t, 0, rows.width);
  ChromaPlain(rows, t, siting, 0, rows.halfWidth ? (rows.width + 1) / 2 : rows.width);
}

#else
#endif

}  // namespace

void RgbToYuv_8u(const RgbFrame<const Byte>* src, const YuvFrame<Byte>* dst,
                 const RgbToYuvTerms* t, ChromaSiting siting, IppiSize size, int firstRow,
                 int rows) {
  const ptrdiff_t end = ptrdiff_t{firstRow} + rows;
  for (ptrdiff_t y = firstRow; y < end; y += dst->halfHeight ? 2 : 1) {
    const RowPair pair = RowsOf(*src, *dst, size, y);
    ConvertPair(pair, *t, siting);
    if (pair.lumaApart == 2 && pair.width % 2)
      for (int row = 0; row < 2; ++row)
        pair.luma[row][2 * pair.width] = pair.luma[row][2 * pair.width - 2];
  }
}

}  // namespace qv::QV_LEVEL
