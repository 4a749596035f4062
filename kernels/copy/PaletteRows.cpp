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

// The palette as one word an entry, repeated to 256 entries so that an index needs no mask.
template <>
struct PreparedPalette<false> {
  alignas(64) uint32_t entry[256];

  PreparedPalette(const Byte* palette, int mask) {
    for (int k = 0; k < mask; ++k) {
      memcpy(entry + k, palette + 3 * k, 4);
      entry[k] &= 0xFFFFFF;
    }
    entry[mask] = palette[3 * mask] | palette[3 * mask + 1] << 8 | palette[3 * mask + 2] << 16;
    for (int n = mask + 1; n < 256; n *= 2) memcpy(entry + n, entry, 4 * static_cast<size_t>(n));
  }

  // Two pixels at a time in words of eight bytes, whose last two the next pair overwrites; four
  // pairs in turn, since the loop around one takes a tenth of the time.
  void Row(const Byte* src, Byte* dst, ptrdiff_t width) const {
    const auto pair = [=, this](ptrdiff_t x) {
      const uint64_t two = entry[src[x]] | static_cast<uint64_t>(entry[src[x + 1]]) << 24;
      memcpy(dst + 3 * x, &two, 8);
    };
    ptrdiff_t k = 0;
    for (; k <= width - 9; k += 8)
      for (int i = 0; i < 8; i += 2) pair(k + i);
    for (; k <= width - 3; k += 2) pair(k);
    for (; k < width; ++k) {
      const uint32_t p = entry[src[k]];
      for (int c = 0; c < 3; ++c) dst[3 * k + c] = static_cast<Byte>(p >> (8 * c));
    }
  }
};

// The bytes j for which 3 * j + c, counted from two vectors of three, lies in the third.
constexpr unsigned long long InThird(int c) {
  unsigned long long mask = 0;
  for (int j = 0; j < 64; ++j)
    if (3 * j + c >= 128) mask |= 1ull << j;
  return mask;
}

// The palette as three planes of 256 bytes, four vectors each: a lookup is two permutes of a pair
// of vectors by the low seven bits of the index and a choice by the eighth.
template <>
struct PreparedPalette<true> {
  Vec plane[3][4];
  Vec indexMask;

  PreparedPalette(const Byte* palette, int mask) : indexMask(Splat8(mask)) {
    static constexpr ByteTable channel[3] = {MakeByteTable([](int j) { return 3 * j; }),
                                             MakeByteTable([](int j) { return 3 * j + 1; }),
                                             MakeByteTable([](int j) { return 3 * j + 2; })};
    constexpr unsigned long long third[3] = {InThird(0), InThird(1), InThird(2)};
    const ptrdiff_t bytes = 3 * (mask + 1);
    for (int i = 0; i < 4; ++i) {
      const auto part = [=](int v) {
        return LoadPart(palette + 192 * i + 64 * v, FirstOf64(bytes, 192 * i + 64 * v));
      };
      const Vec v0 = part(0), v1 = part(1), v2 = part(2);
      for (int c = 0; c < 3; ++c) {
        const Vec from = Load(&channel[c]);
        plane[c][i] = PermuteBytesOver(PermuteBytes2(v0, from, v1), third[c], v2, from);
      }
    }
  }

  QV_INLINE Vec Lookup(int c, Vec index, unsigned long long upper) const {
    return Select(upper, PermuteBytes2(plane[c][2], index, plane[c][3]),
                  PermuteBytes2(plane[c][0], index, plane[c][1]));
  }

  void Row(const Byte* src, Byte* dst, ptrdiff_t width) const {
    // Byte j of vector v of the pixels is channel (64 v + j) % 3 of pixel (64 v + j) / 3.
    static constexpr ByteTable blueGreen[3] = {
        MakeByteTable([](int j) { return j / 3 + j % 3 * 64; }),
        MakeByteTable([](int j) { return (64 + j) / 3 + (64 + j) % 3 * 64; }),
        MakeByteTable([](int j) { return (128 + j) / 3 + (128 + j) % 3 * 64; })};
    constexpr unsigned long long red[3] = {EveryThird(2), EveryThird(1), EveryThird(0)};
    const auto lookup = [&](Vec unmasked, auto put) {
      const Vec index = And(unmasked, indexMask);
      const unsigned long long upper = TopBits(index);
      const Vec b = Lookup(0, index, upper), g = Lookup(1, index, upper),
                r = Lookup(2, index, upper);
      for (int v = 0; v < 3; ++v) {
        const Vec from = Load(&blueGreen[v]);
        put(64 * v, PermuteBytesOver(PermuteBytes2(b, from, g), red[v], r, from));
      }
    };
    const bool done = CoverWithBlocks<64>(
        width,
        [&](ptrdiff_t k) {
          lookup(Load(src + k), [&](int i, Vec bgr) { Store(dst + 3 * k + i, bgr); });
        },
        PixelsToAlign3(dst));
    if (!done)
      lookup(LoadPart(src, FirstOf64(width, 0)),
             [&](int i, Vec bgr) { StorePart(dst + i, bgr, FirstOf64(3 * width, i)); });
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
  // Below, preparing the palette costs more than it saves.
  constexpr ptrdiff_t kFewPixels = kHasBytePermute ? 16 : 128;
  if (int64_t{width} * height >= kFewPixels) {
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
