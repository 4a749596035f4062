// Source rows filtered along x sample by sample: where there are no byte shuffles, or taps lie too
// far apart for windows.
#ifndef QV_KERNELS_RESIZE_FILTERWORDS_H
#define QV_KERNELS_RESIZE_FILTERWORDS_H

#include "kernels/resize/ColumnWindows.h"
#include "kernels/resize/ResizeVectors.h"

namespace qv::QV_LEVEL {

namespace {

// The samples of a component in 16 bits.
QV_INLINE void WidenSamples(const Byte* from, int stride, short* words, ptrdiff_t count) {
  ptrdiff_t i = 0;
  if (stride == 1) {
    const Vec16 zero = _mm_setzero_si128();
    for (; i + 16 <= count; i += 16) {
      const Vec16 v = Load16(from + i);
      Store16(words + i, _mm_unpacklo_epi8(v, zero));
      Store16(words + i + 8, _mm_unpackhi_epi8(v, zero));
    }
  } else if (stride == 2) {
    // Loads end a sample further, where the row may end: one sample more is left for the last loop.
    for (; i + 9 <= count; i += 8)
      Store16(words + i, _mm_and_si128(Load16(from + 2 * i), _mm_set1_epi16(255)));
  } else if (stride == 4) {
    const Vec16 mask = _mm_set1_epi32(255);
    for (; i + 9 <= count; i += 8)
      Store16(words + i, _mm_packs_epi32(_mm_and_si128(Load16(from + 4 * i), mask),
                                         _mm_and_si128(Load16(from + 4 * i + 16), mask)));
  }
  for (; i < count; ++i) words[i] = from[i * stride];
}

// Four, eight or sixteen words are read at each sample's first tap.
QV_INLINE __m128i LoadFour(const short* p) {
  return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
}
QV_INLINE __m128i LoadEight(const short* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// Sums of neighbours in a and b: a0 + a1, a2 + a3, b0 + b1, b2 + b3.
QV_INLINE __m128i AddNeighbours(__m128i a, __m128i b) {
  const __m128 x = _mm_castsi128_ps(a), y = _mm_castsi128_ps(b);
  return _mm_add_epi32(_mm_castps_si128(_mm_shuffle_ps(x, y, _MM_SHUFFLE(2, 0, 2, 0))),
                       _mm_castps_si128(_mm_shuffle_ps(x, y, _MM_SHUFFLE(3, 1, 3, 1))));
}

template <int kTaps>
QV_INLINE __m128i FourSums(const short* line, const int* first, const short* weights) {
  if constexpr (kTaps == 4) {
    const __m128i ab = _mm_unpacklo_epi64(LoadFour(line + first[0]), LoadFour(line + first[1]));
    const __m128i cd = _mm_unpacklo_epi64(LoadFour(line + first[2]), LoadFour(line + first[3]));
    return AddNeighbours(_mm_madd_epi16(ab, LoadEight(weights)),
                         _mm_madd_epi16(cd, LoadEight(weights + 8)));
  } else {
    __m128i s[4];
    for (int i = 0; i < 4; ++i) {
      const short* const w = weights + kTaps * i;
      s[i] = _mm_madd_epi16(LoadEight(line + first[i]), LoadEight(w));
      if constexpr (kTaps == 16)
        s[i] = _mm_add_epi32(s[i],
                             _mm_madd_epi16(LoadEight(line + first[i] + 8), LoadEight(w + 8)));
    }
    return AddNeighbours(AddNeighbours(s[0], s[1]), AddNeighbours(s[2], s[3]));
  }
}

template <int kTaps>
void FilterWords(const short* line, const PaddedTaps& taps, short* out) {
  for (ptrdiff_t i = 0; i < taps.count; i += 8) {
    const __m128i low = FourSums<kTaps>(line, taps.first + i, taps.weights + i * kTaps);
    const __m128i high = FourSums<kTaps>(line, taps.first + i + 4, taps.weights + (i + 4) * kTaps);
    Store16(out + i, _mm_packs_epi32(_mm_srai_epi32(low, 8), _mm_srai_epi32(high, 8)));
  }
}

// One component of a source row, whose first sample is at `from`.
QV_INLINE void FilterComponent(const Byte* from, RowComponent component, ptrdiff_t samples,
                               const PaddedTaps& taps, short* words, short* out) {
  WidenSamples(from + component.offset, component.stride, words, samples);
  if (taps.kept == 4)
    FilterWords<4>(words, taps, out);
  else if (taps.kept == 8)
    FilterWords<8>(words, taps, out);
  else
    FilterWords<16>(words, taps, out);
}

// The components of a filtered row, one line behind the other, to their places in a ring row: lines
// of `count` samples, or of 4:2:2 the luma line of twice as many.
template <RowLayout kLayout>
QV_INLINE void PlaceComponents(const short* line, ptrdiff_t count, short* out) {
  ptrdiff_t i = 0;
  if constexpr (!kHasBytePermute && kLayout == RowLayout::kTriples) {
    // Four words a pixel, the last of which the next pixel overwrites: one has to come behind.
    for (; i + 8 < count; i += 8) {
      const Vec16 b = Load16(line + i), g = Load16(line + count + i),
                  r = Load16(line + 2 * count + i);
      const auto store = [&](ptrdiff_t pixel, Vec16 bg, Vec16 rr) {
        const Vec16 two[2] = {_mm_unpacklo_epi32(bg, rr), _mm_unpackhi_epi32(bg, rr)};
        for (int k = 0; k < 2; ++k) {
          short* const to = out + 3 * (pixel + 2 * k);
          _mm_storel_epi64(reinterpret_cast<Vec16*>(to), two[k]);
          _mm_storel_epi64(reinterpret_cast<Vec16*>(to + 3), _mm_unpackhi_epi64(two[k], two[k]));
        }
      };
      store(i, _mm_unpacklo_epi16(b, g), _mm_unpacklo_epi16(r, r));
      store(i + 4, _mm_unpackhi_epi16(b, g), _mm_unpackhi_epi16(r, r));
    }
  }
  if constexpr (!kHasBytePermute && kLayout == RowLayout::kPairs422) {
    const short* const cb = line + 2 * count;
    for (; i + 8 <= count; i += 8) {
      const Vec16 b = Load16(cb + i), r = Load16(cb + count + i);
      const Vec16 y[2] = {Load16(line + 2 * i), Load16(line + 2 * i + 8)};
      const Vec16 chroma[2] = {_mm_unpacklo_epi16(b, r), _mm_unpackhi_epi16(b, r)};
      for (int k = 0; k < 2; ++k) {
        Store16(out + 4 * i + 16 * k, _mm_unpacklo_epi16(y[k], chroma[k]));
        Store16(out + 4 * i + 16 * k + 8, _mm_unpackhi_epi16(y[k], chroma[k]));
      }
    }
  }
  for (int c = 0; c < ComponentCount(kLayout); ++c) {
    const RowComponent component = Component(kLayout, c);
    const int each = kLayout == RowLayout::kPairs422 && c == 0 ? 2 : 1;
    for (ptrdiff_t k = each * i; k < each * count; ++k)
      out[RingPlace(component.offset + k * component.stride)] = line[k];
    line += each * count;
  }
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
