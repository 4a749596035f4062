// Source rows filtered along x by vectors, in the order of samples that PackSamples expects.
#ifndef QV_KERNELS_RESIZE_FILTERACROSS_H
#define QV_KERNELS_RESIZE_FILTERACROSS_H

#include "kernels/resize/ColumnWindows.h"
#include "kernels/resize/FilterVectors.h"
#include "kernels/resize/SplitRows.h"

namespace qv::QV_LEVEL {

namespace {

// How the rows of a component are filtered along x: by windows of 16 or 64 bytes, by windows of
// 128, or (windowBytes 0) by words.
struct AcrossPlan {
  int windowBytes;
  ColumnWindows windows;
  PaddedTaps padded;
  ptrdiff_t blocks;
};

QV_INLINE AcrossPlan PlanAcross(const AxisTaps& taps, void* memory) {
  AcrossPlan plan = {};
  plan.blocks = (ptrdiff_t{taps.count} + 63) / 64 * (128 / kVecBytes);
  if constexpr (kHasByteShuffle) {
    const int windowBytes = kVecBytes / kWindowsPerVector;
    for (int wide = 1; wide <= (kHasBytePermute ? 2 : 1); ++wide) {
      plan.windowBytes = wide * windowBytes;
      if (PlanWindows(taps, {kVecBytes, kWindowsPerVector, plan.windowBytes}, memory,
                      &plan.windows))
        return plan;
    }
  }
  plan.windowBytes = 0;
  plan.padded = PadTaps(taps, memory);
  return plan;
}

// kRows rows at once, so that indices and weights are loaded once for all.
template <int kPairs, int kRows, bool kWide>
void FilterWindows(const Byte* const* lines, const ColumnWindows& windows, short* const* out) {
  const int* base = windows.base;
  const Byte* index = windows.index;
  const short* weights = windows.weights;
  for (ptrdiff_t b = 0; b < windows.blocks; ++b) {
    Vec sums[kRows][2];
    for (int v = 0; v < 2; ++v) {
      for (int p = 0; p < kPairs; ++p) {
        const Vec spread = Load(index), w = Load(weights);
        for (int r = 0; r < kRows; ++r) {
          Vec pairs;
          if constexpr (kWide)
            pairs = SpreadPairs(LoadWideWindow(lines[r], base), spread);
          else
            pairs = SpreadPairs(LoadWindow(lines[r], base), spread);
          const Vec products = MulAddPairs16(pairs, w);
          sums[r][v] = p == 0 ? products : Add32(sums[r][v], products);
        }
        index += kVecBytes;
        weights += kVecBytes / 2;
      }
      base += kWindowsPerVector;
    }
    for (int r = 0; r < kRows; ++r)
      Store(out[r] + b * (kVecBytes / 2),
            PackSigned32(ShiftRightSigned32<8>(sums[r][0]), ShiftRightSigned32<8>(sums[r][1])));
  }
}

template <int kPairs, bool kWide>
QV_INLINE void FilterWindowRows(const Byte* const* lines, int rows, const ColumnWindows& windows,
                                short* const* out) {
  if (rows == 2)
    FilterWindows<kPairs, 2, kWide>(lines, windows, out);
  else
    FilterWindows<kPairs, 1, kWide>(lines, windows, out);
}

template <bool kWide>
void FilterByWindows(const Byte* const* lines, int rows, const ColumnWindows& windows,
                     short* const* out) {
  switch (windows.pairs) {
    case 1: return FilterWindowRows<1, kWide>(lines, rows, windows, out);
    case 2: return FilterWindowRows<2, kWide>(lines, rows, windows, out);
    case 3: return FilterWindowRows<3, kWide>(lines, rows, windows, out);
    default: return FilterWindowRows<4, kWide>(lines, rows, windows, out);
  }
}

// One row of source samples widened to words: where taps lie too far apart for windows, or there
// are no byte shuffles. Four or eight words are read at each sample's first tap.
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
    for (int i = 0; i < 4; ++i)
      s[i] = _mm_madd_epi16(LoadEight(line + first[i]), LoadEight(weights + 8 * i));
    return AddNeighbours(AddNeighbours(s[0], s[1]), AddNeighbours(s[2], s[3]));
  }
}

// `first` and `weights` are of whole blocks of kVecBytes / 2 samples here.
template <int kTaps>
void FilterWords(const short* line, const int* first, const short* weights, ptrdiff_t blocks,
                 short* out) {
  constexpr int kBlock = kVecBytes / 2;
  for (ptrdiff_t b = 0; b < blocks; ++b)
    for (int q = 0; q < kBlock / 4; q += 2) {
      const ptrdiff_t i = b * kBlock + SampleOfQuarter(q), j = b * kBlock + SampleOfQuarter(q + 1);
      const __m128i low = FourSums<kTaps>(line, first + i, weights + i * kTaps);
      const __m128i high = FourSums<kTaps>(line, first + j, weights + j * kTaps);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + b * kBlock + 4 * q),
                       _mm_packs_epi32(_mm_srai_epi32(low, 8), _mm_srai_epi32(high, 8)));
    }
}

// `rows` lines, 1 or 2, of `span` samples to rows of the ring; `words` is work memory.
void FilterAcross(const AcrossPlan& plan, const Byte* const* lines, ptrdiff_t span, int rows,
                  short* words, short* const* out) {
  if constexpr (kHasByteShuffle) {
    if (plan.windowBytes == kVecBytes / kWindowsPerVector)
      return FilterByWindows<false>(lines, rows, plan.windows, out);
  }
  if constexpr (kHasBytePermute) {
    if (plan.windowBytes == 2 * kVecBytes)
      return FilterByWindows<true>(lines, rows, plan.windows, out);
  }
  for (int r = 0; r < rows; ++r) {
    WidenLine(lines[r], words, span);
    if (plan.padded.kept == 4)
      FilterWords<4>(words, plan.padded.first, plan.padded.weights, plan.blocks, out[r]);
    else
      FilterWords<8>(words, plan.padded.first, plan.padded.weights, plan.blocks, out[r]);
  }
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
