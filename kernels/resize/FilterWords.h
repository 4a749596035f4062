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
    const Vec128 zero = LowLane(Zero());
    for (; i + 16 <= count; i += 16) {
      const Vec128 v = Load128(from + i);
      Store128(words + i, InterleaveLow8(v, zero));
      Store128(words + i + 8, InterleaveHigh8(v, zero));
    }
  } else if (stride == 2) {
    // Loads end a sample further, where the row may end: one sample more is left for the last loop.
    for (; i + 9 <= count; i += 8)
      Store128(words + i, And(Load128(from + 2 * i), LowLane(Splat16(255))));
  } else if (stride == 4) {
    const Vec128 mask = LowLane(Splat32(255));
    for (; i + 9 <= count; i += 8)
      Store128(words + i, PackSigned32(And(Load128(from + 4 * i), mask),
                                       And(Load128(from + 4 * i + 16), mask)));
  }
  for (; i < count; ++i) words[i] = from[i * stride];
}

// Four, eight or sixteen words are read at each sample's first tap.
template <int kTaps>
QV_INLINE Vec128 FourSums(const short* line, const int* first, const short* weights) {
  if constexpr (kTaps == 4) {
    const Vec128 ab = InterleaveLow64(Load64(line + first[0]), Load64(line + first[1]));
    const Vec128 cd = InterleaveLow64(Load64(line + first[2]), Load64(line + first[3]));
    return AddNeighbours32(MulAddPairs16(ab, Load128(weights)),
                           MulAddPairs16(cd, Load128(weights + 8)));
  } else {
    Vec128 s[4];
    for (int i = 0; i < 4; ++i) {
      const short* const w = weights + kTaps * i;
      s[i] = MulAddPairs16(Load128(line + first[i]), Load128(w));
      if constexpr (kTaps == 16)
        s[i] = Add32(s[i], MulAddPairs16(Load128(line + first[i] + 8), Load128(w + 8)));
    }
    return AddNeighbours32(AddNeighbours32(s[0], s[1]), AddNeighbours32(s[2], s[3]));
  }
}

template <int kTaps>
void FilterWords(const short* line, const PaddedTaps& taps, short* out) {
  for (ptrdiff_t i = 0; i < taps.count; i += 8) {
    const Vec128 low = FourSums<kTaps>(line, taps.first + i, taps.weights + i * kTaps);
    const Vec128 high = FourSums<kTaps>(line, taps.first + i + 4, taps.weights + (i + 4) * kTaps);
    Store128(out + i, PackSigned32(ShiftRightSigned32<8>(low), ShiftRightSigned32<8>(high)));
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

// The components of a filtered row, line after line, to their places in a ring row: lines
// of `count` samples, or of 4:2:2 the luma line of twice as many.
template <Layout kLayout>
QV_INLINE void PlaceComponents(const short* line, ptrdiff_t count, short* out) {
  ptrdiff_t i = 0;
  if constexpr (!kHasBytePermute && kLayout == Layout::kTriples) {
    // Four words a pixel, the last of which the next pixel overwrites: one has to follow.
    for (; i + 8 < count; i += 8) {
      const Vec128 b = Load128(line + i), g = Load128(line + count + i),
                  r = Load128(line + 2 * count + i);
      const auto store = [&](ptrdiff_t pixel, Vec128 bg, Vec128 rr) {
        const Vec128 two[2] = {InterleaveLow32(bg, rr), InterleaveHigh32(bg, rr)};
        for (int k = 0; k < 2; ++k) {
          short* const to = out + 3 * (pixel + 2 * k);
          Store64(to, two[k]);
          Store64(to + 3, InterleaveHigh64(two[k], two[k]));
        }
      };
      store(i, InterleaveLow16(b, g), InterleaveLow16(r, r));
      store(i + 4, InterleaveHigh16(b, g), InterleaveHigh16(r, r));
    }
  }
  if constexpr (!kHasBytePermute && kLayout == Layout::kPairs422) {
    const short* const cb = line + 2 * count;
    for (; i + 8 <= count; i += 8) {
      const Vec128 b = Load128(cb + i), r = Load128(cb + count + i);
      const Vec128 y[2] = {Load128(line + 2 * i), Load128(line + 2 * i + 8)};
      const Vec128 chroma[2] = {InterleaveLow16(b, r), InterleaveHigh16(b, r)};
      for (int k = 0; k < 2; ++k) {
        Store128(out + 4 * i + 16 * k, InterleaveLow16(y[k], chroma[k]));
        Store128(out + 4 * i + 16 * k + 8, InterleaveHigh16(y[k], chroma[k]));
      }
    }
  }
  for (int c = 0; c < ComponentCount(kLayout); ++c) {
    const RowComponent component = Component(kLayout, c);
    const int each = kLayout == Layout::kPairs422 && c == 0 ? 2 : 1;
    for (ptrdiff_t k = each * i; k < each * count; ++k)
      out[RingPlace(component.offset + k * component.stride)] = line[k];
    line += each * count;
  }
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
