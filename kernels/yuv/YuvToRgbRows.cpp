// Luma and chroma of any layout to pixels of three or four bytes.
#include "kernels/level/Level.h"
#include "kernels/yuv/Yuv.h"

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
  const ptrdiff_t chromaRows = (ptrdiff_t{size.height} + 1) / 2;
  const ptrdiff_t near = src.halfHeight ? y / 2 : y;
  ptrdiff_t next = near;
  if (src.halfHeight && siting != ChromaSiting::Repeat) {
    next += y % 2 ? 1 : -1;
    if (next < 0 || next == chromaRows) next = near;
  }
  SampleRows rows = {RowAt(src.luma, src.lumaStep, y), src.lumaApart, {}, {}, src.chromaApart,
                     src.halfWidth, (size.width - 1) / (src.halfWidth ? 2 : 1)};
  for (int c = 0; c < 2; ++c) {
    rows.near[c] = RowAt(src.chroma[c], src.chromaStep[c], near);
    rows.next[c] = RowAt(src.chroma[c], src.chromaStep[c], next);
  }
  return rows;
}

// Of a pixel, in 256ths.
QV_INLINE int ChromaAt(const SampleRows& rows, int c, ptrdiff_t x, ChromaSiting siting) {
  const auto fourfold = [&](ptrdiff_t i) {
    return 3 * rows.near[c][i * rows.apart] + rows.next[c][i * rows.apart];
  };
  if (!rows.halfWidth) return 64 * fourfold(x);
  const ptrdiff_t i = x / 2;
  ptrdiff_t other = i;
  if (siting == ChromaSiting::Left) other += x % 2;
  if (siting == ChromaSiting::Centre) other += x % 2 ? 1 : -1;
  if (other < 0 || other > rows.last) other = i;
  const int weight = siting == ChromaSiting::Left ? 2 : 1;
  return 16 * ((4 - weight) * fourfold(i) + weight * fourfold(other));
}

QV_INLINE int MulHigh(int a, int b) {
  return static_cast<int>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b) >> 16);
}

// Pixels `from` to `to` - 1.
void PixelsPlain(const SampleRows& rows, const YuvToRgbTerms& t, ChromaSiting siting, Byte* dst,
                 int channels, ptrdiff_t from, ptrdiff_t to) {
  for (ptrdiff_t x = from; x < to; ++x) {
    const int luma = MulHigh(rows.luma[x * rows.lumaApart] << 8, t.luma);
    const int p = ChromaAt(rows, 0, x, siting), q = ChromaAt(rows, 1, x, siting);
    Byte* const pixel = dst + x * channels;
    pixel[0] = ToByte((luma + MulHigh(p, t.first) + t.offset[0]) >> 6);
    pixel[1] = ToByte((luma - MulHigh(p, t.second[0]) - MulHigh(q, t.second[1]) + t.offset[1]) >> 6);
    pixel[2] = ToByte((luma + MulHigh(q, t.third) + t.offset[2]) >> 6);
    if (channels == 4) pixel[3] = 255;
  }
}

#if 1  // TEMP

QV_INLINE void ConvertRows(const YuvFrame<const Byte>& src, const RgbFrame<Byte>& dst,
                           const YuvToRgbTerms& t, ChromaSiting siting, IppiSize size,
                           ptrdiff_t first, ptrdiff_t end) {
  for (ptrdiff_t y = first; y < end; ++y)
    PixelsPlain(RowsOf(src, siting, size, y), t, siting, RowAt(dst.pixels, dst.step, y),
                dst.channels, 0, size.width);
}

#else
#endif

}  // namespace

void YuvToRgb_8u(const YuvFrame<const Byte>* src, const RgbFrame<Byte>* dst,
                 const YuvToRgbTerms* t, ChromaSiting siting, IppiSize size, int firstRow,
                 int rows) {
  ConvertRows(*src, *dst, *t, siting, size, firstRow, ptrdiff_t{firstRow} + rows);
}

}  // namespace qv::QV_LEVEL
