// The components of source rows as contiguous lines of samples.
#ifndef QV_KERNELS_RESIZE_SPLITROWS_H
#define QV_KERNELS_RESIZE_SPLITROWS_H

#include "kernels/resize/Filter.h"
#include "kernels/resize/FilterVectors.h"

namespace qv::QV_LEVEL {

namespace {

QV_INLINE void SplitPlain(const Byte* from, int stride, Byte* line, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) line[i] = from[i * stride];
}

#if QV_HAS_VECTORS

// `count` pixels of three bytes to three lines, which may be written a block past their end.
QV_INLINE void SplitTriples(const Byte* row, Byte* const* lines, ptrdiff_t count) {
  ptrdiff_t i = 0;
  if constexpr (kHasBytePermute) {
    // Byte j of line k is byte 3 * j + k of three vectors. The first two vectors serve j < 43; of
    // the third the bytes from 128 on.
    static constexpr auto index = [](int k) {
      return MakeByteTable([k](int j) { return (3 * j + k) & 127; });
    };
    static constexpr ByteTable kIndex[3] = {index(0), index(1), index(2)};
    constexpr auto third = [](int k) {
      unsigned long long mask = 0;
      for (int j = 0; j < 64; ++j)
        if (3 * j + k >= 128) mask |= 1ull << j;
      return mask;
    };
    constexpr unsigned long long kThird[3] = {third(0), third(1), third(2)};
    const auto split = [&](Vec a, Vec b, Vec c) __attribute__((always_inline)) {
      for (int k = 0; k < 3; ++k) {
        const Vec at = Load(kIndex[k].b);
        Store(lines[k] + i, PermuteBytesOver(PermuteBytes2(a, at, b), kThird[k], c, at));
      }
    };
    for (; i + 64 <= count; i += 64) {
      const Byte* from = row + 3 * i;
      split(Load(from), Load(from + 64), Load(from + 128));
    }
    if (i < count) {
      const Byte* from = row + 3 * i;
      const ptrdiff_t left = 3 * (count - i);
      split(LoadPart(from, FirstOf64(left, 0)), LoadPart(from + 64, FirstOf64(left, 64)),
            LoadPart(from + 128, FirstOf64(left, 128)));
    }
    return;
  } else if constexpr (kHasByteShuffle) {
    // Sixteen pixels: each of three vectors brings five or six bytes of each line.
    struct Table {
      Byte b[3][3][16];
    };
    static constexpr Table kIndex = [] {
      Table t{};
      for (int k = 0; k < 3; ++k)
        for (int v = 0; v < 3; ++v)
          for (int j = 0; j < 16; ++j) {
            const int at = 3 * j + k - 16 * v;
            t.b[k][v][j] = static_cast<Byte>(at >= 0 && at < 16 ? at : 0x80);
          }
      return t;
    }();
    for (; i + 16 <= count; i += 16) {
      const Byte* from = row + 3 * i;
      const Vec16 a = Load16(from), b = Load16(from + 16), c = Load16(from + 32);
      for (int k = 0; k < 3; ++k)
        Store16(lines[k] + i,
                _mm_or_si128(_mm_or_si128(ShuffleBytes16(a, Load16(kIndex.b[k][0])),
                                          ShuffleBytes16(b, Load16(kIndex.b[k][1]))),
                             ShuffleBytes16(c, Load16(kIndex.b[k][2]))));
    }
  }
  for (int k = 0; k < 3; ++k) SplitPlain(row + 3 * i + k, 3, lines[k] + i, count - i);
}

// `count` pairs of four bytes Y0 Cb Y1 Cr to a line of 2 * count luma samples and two of chroma.
QV_INLINE void SplitPairs(const Byte* row, Byte* const* lines, ptrdiff_t count) {
  const Vec low = Splat16(255);
  ptrdiff_t i = 0;
  for (; i + kVecBytes <= count; i += kVecBytes) {
    const Byte* from = row + 4 * i;
    Vec chroma[2];
    for (int half = 0; half < 2; ++half) {
      const Vec a = Load(from + 2 * half * kVecBytes), b = Load(from + (2 * half + 1) * kVecBytes);
      Store(lines[0] + 2 * i + half * kVecBytes, PackBytesInOrder(And(a, low), And(b, low)));
      chroma[half] = PackBytesInOrder(ShiftRight16<8>(a), ShiftRight16<8>(b));
    }
    Store(lines[1] + i, PackBytesInOrder(And(chroma[0], low), And(chroma[1], low)));
    Store(lines[2] + i, PackBytesInOrder(ShiftRight16<8>(chroma[0]), ShiftRight16<8>(chroma[1])));
  }
  SplitPlain(row + 4 * i, 2, lines[0] + 2 * i, 2 * (count - i));
  SplitPlain(row + 4 * i + 1, 4, lines[1] + i, count - i);
  SplitPlain(row + 4 * i + 3, 4, lines[2] + i, count - i);
}

// `count` bytes to words; a block past the end may be written.
QV_INLINE void WidenLine(const Byte* line, short* words, ptrdiff_t count) {
  const __m128i zero = _mm_setzero_si128();
  ptrdiff_t i = 0;
  for (; i + 16 <= count; i += 16) {
    const Vec16 v = Load16(line + i);
    Store16(words + i, _mm_unpacklo_epi8(v, zero));
    Store16(words + i + 8, _mm_unpackhi_epi8(v, zero));
  }
  for (; i < count; ++i) words[i] = line[i];
}

#endif

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
