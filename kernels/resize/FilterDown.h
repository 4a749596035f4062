// Destination rows from the ring by vectors: weighted sums of filtered rows, narrowed to bytes.
#ifndef QV_KERNELS_RESIZE_FILTERDOWN_H
#define QV_KERNELS_RESIZE_FILTERDOWN_H

#include "kernels/resize/Filter.h"
#include "kernels/resize/ResizeVectors.h"

namespace qv::QV_LEVEL {

namespace {

// kVecBytes values from value i of kTaps ring rows.
template <int kTaps>
QV_INLINE Vec DownVector(const short* const* rows, const Vec* weights, ptrdiff_t i) {
  Vec sums[2];
  for (int half = 0; half < 2; ++half) {
    const ptrdiff_t at = i + half * (kVecBytes / 2);
    Vec sum = MulRounded15(Load(rows[0] + at), weights[0]);
    for (int t = 1; t < kTaps; ++t)
      sum = Add16(sum, MulRounded15(Load(rows[t] + at), weights[t]));
    // (sum + 16) >> 5
    sums[half] = MulRounded15(sum, Splat16(1 << 10));
  }
  return PackSamples(sums[0], sums[1]);
}

// `count` values of a destination row. Ring rows are padded to whole blocks.
template <int kTaps>
void FilterDownTaps(const short* const* rows, const short* weights, Byte* dst, ptrdiff_t count) {
  Vec w[kTaps];
  for (int t = 0; t < kTaps; ++t) w[t] = Splat16(weights[t]);
  ptrdiff_t i = 0;
  for (; i + kVecBytes <= count; i += kVecBytes) Store(dst + i, DownVector<kTaps>(rows, w, i));
  if (i == count) return;
  const Vec last = DownVector<kTaps>(rows, w, i);
  if constexpr (kHasMaskedBytes) {
    StorePart(dst + i, last, FirstOf64(count, i));
  } else {
    Byte bytes[kVecBytes];
    Store(bytes, last);
    memcpy(dst + i, bytes, static_cast<size_t>(count - i));
  }
}

// `taps` is even: an odd count has been made even by a weight of 0.
QV_INLINE void FilterDown(const short* const* rows, const short* weights, int taps, Byte* dst,
                          ptrdiff_t count) {
  switch (taps) {
    case 2: return FilterDownTaps<2>(rows, weights, dst, count);
    case 4: return FilterDownTaps<4>(rows, weights, dst, count);
    case 6: return FilterDownTaps<6>(rows, weights, dst, count);
    case 8: return FilterDownTaps<8>(rows, weights, dst, count);
    case 10: return FilterDownTaps<10>(rows, weights, dst, count);
    default: return FilterDownTaps<12>(rows, weights, dst, count);
  }
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
