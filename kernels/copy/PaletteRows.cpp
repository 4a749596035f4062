// Palette lookup.
#include "kernels/copy/Copy.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

QV_INLINE void LookupRowPlain(const Byte* src, Byte* dst, ptrdiff_t width, const Byte* palette,
                              int mask) {
  for (ptrdiff_t k = 0; k < width; ++k)
    for (int c = 0; c < 3; ++c) dst[3 * k + c] = palette[3 * (src[k] & mask) + c];
}

#if QV_HAS_VECTORS

template <bool kHasPermute>
struct PreparedPalette;

QV_INLINE void StoreWord(Byte* p, uint32_t word) { memcpy(p, &word, 4); }

// The palette as one word an entry, repeated to 256 entries so that an index needs no mask.
template <>
struct PreparedPalette<false> {
  uint32_t entry[256];

  PreparedPalette(const Byte* palette, int mask) {
    for (int k = 0; k <= mask; ++k)
      entry[k] = palette[3 * k] | palette[3 * k + 1] << 8 | palette[3 * k + 2] << 16;
    for (int k = mask + 1; k < 256; ++k) entry[k] = entry[k & mask];
  }

  // Four pixels make three words.
  void Row(const Byte* src, Byte* dst, ptrdiff_t width) const {
    ptrdiff_t k = 0;
    for (; k <= width - 4; k += 4) {
      const uint32_t p0 = entry[src[k]], p1 = entry[src[k + 1]], p2 = entry[src[k + 2]],
                     p3 = entry[src[k + 3]];
      StoreWord(dst + 3 * k, p0 | p1 << 24);
      StoreWord(dst + 3 * k + 4, p1 >> 8 | p2 << 16);
      StoreWord(dst + 3 * k + 8, p2 >> 16 | p3 << 8);
    }
    for (; k < width; ++k) {
      const uint32_t p = entry[src[k]];
      for (int c = 0; c < 3; ++c) dst[3 * k + c] = static_cast<Byte>(p >> (8 * c));
    }
  }
};

// The bytes first, first + 3, ... of a vector.
constexpr unsigned long long EveryThird(int first) {
  unsigned long long mask = 0;
  for (int j = first; j < 64; j += 3) mask |= 1ull << j;
  return mask;
}

// The palette as three planes of 256 bytes, four vectors each: a lookup is two permutes of a pair of
// vectors by the low seven bits of the index and a choice by the eighth.
template <>
struct PreparedPalette<true> {
  Vec plane[3][4];

  PreparedPalette(const Byte* palette, int mask) {
    Byte bytes[3][256];
    for (int c = 0; c < 3; ++c) {
      for (int k = 0; k < 256; ++k) bytes[c][k] = palette[3 * (k & mask) + c];
      for (int i = 0; i < 4; ++i) plane[c][i] = Load(bytes[c] + i * kVecBytes);
    }
  }

  QV_INLINE Vec Lookup(int c, Vec index, unsigned long long upper) const {
    return Select(upper, PermuteBytes2(plane[c][0], index, plane[c][1]),
                  PermuteBytes2(plane[c][2], index, plane[c][3]));
  }

  void Row(const Byte* src, Byte* dst, ptrdiff_t width) const {
    // Byte j of vector v of the pixels is channel (64 v + j) % 3 of pixel (64 v + j) / 3.
    static constexpr ByteTable blueGreen[3] = {
        MakeByteTable([](int j) { return j / 3 + j % 3 * 64; }),
        MakeByteTable([](int j) { return (64 + j) / 3 + (64 + j) % 3 * 64; }),
        MakeByteTable([](int j) { return (128 + j) / 3 + (128 + j) % 3 * 64; })};
    constexpr unsigned long long red[3] = {EveryThird(2), EveryThird(1), EveryThird(0)};
    for (ptrdiff_t k = 0; k < width; k += 64) {
      const ptrdiff_t rest = width - k;
      const Vec index = LoadPart(src + k, FirstOf64(rest, 0));
      const unsigned long long upper = TopBits(index);
      const Vec b = Lookup(0, index, upper), g = Lookup(1, index, upper),
                r = Lookup(2, index, upper);
      for (int v = 0; v < 3; ++v) {
        const Vec from = Load(&blueGreen[v]);
        const Vec bgr = PermuteBytesOver(PermuteBytes2(b, from, g), red[v], r, from);
        StorePart(dst + 3 * k + 64 * v, bgr, FirstOf64(3 * rest, 64 * v));
      }
    }
  }
};

#endif

}  // namespace

IppStatus LookupPalette_8u_C1C3(const Byte* src, int srcStep, Byte* dst, int dstStep, int width,
                                int height, const Byte* palette, int bitSize) {
  if (!palette) return StatusNullPtrErr;
  if (const IppStatus status = CheckImages(src, dst, width, height); status != StatusOk)
    return status;
  if (bitSize < 1 || bitSize > 8) return StatusOutOfRangeErr;
  const int mask = (1 << bitSize) - 1;
#if QV_HAS_VECTORS
  using Palette = PreparedPalette<kHasBytePermute>;
  constexpr ptrdiff_t kFewPixels = 512;  // below, preparing 256 entries costs more than it saves
  if (static_cast<long long>(width) * height >= kFewPixels) {
    const Palette prepared(palette, mask);
    for (int y = 0; y < height; ++y)
      prepared.Row(RowAt(src, srcStep, y), RowAt(dst, dstStep, y), width);
    return StatusOk;
  }
#endif
  for (int y = 0; y < height; ++y)
    LookupRowPlain(RowAt(src, srcStep, y), RowAt(dst, dstStep, y), width, palette, mask);
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
