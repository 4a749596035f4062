// Destination rows from the ring by vectors: weighted sums of filtered rows, narrowed to bytes and
// interleaved.
#ifndef QV_KERNELS_RESIZE_FILTERDOWN_H
#define QV_KERNELS_RESIZE_FILTERDOWN_H

#include "kernels/resize/Filter.h"
#include "kernels/resize/FilterVectors.h"

namespace qv::QV_LEVEL {

namespace {

// kVecBytes samples of a component from sample i of kTaps ring rows.
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

// Three vectors of components as kVecBytes pixels of three bytes.
QV_INLINE void StoreTriples(Byte* dst, const Vec* v) {
  if constexpr (kHasBytePermute) {
    // Byte j of vector n of the pixels is component (64 n + j) % 3 of pixel (64 n + j) / 3.
    static constexpr auto table = [](int n) {
      return MakeByteTable([n](int j) {
        const int at = 64 * n + j;
        return at / 3 + (at % 3 == 1 ? 64 : 0);
      });
    };
    static constexpr ByteTable kIndex[3] = {table(0), table(1), table(2)};
    constexpr auto last = [](int n) {
      unsigned long long mask = 0;
      for (int j = 0; j < 64; ++j)
        if ((64 * n + j) % 3 == 2) mask |= 1ull << j;
      return mask;
    };
    constexpr unsigned long long kLast[3] = {last(0), last(1), last(2)};
    for (int n = 0; n < 3; ++n) {
      const Vec at = Load(kIndex[n].b);
      Store(dst + 64 * n, PermuteBytesOver(PermuteBytes2(v[0], at, v[1]), kLast[n], v[2], at));
    }
  } else if constexpr (kHasByteShuffle) {
    struct Table {
      Byte b[3][3][16];  // vector of 16 bytes of pixels, component
    };
    static constexpr Table kIndex = [] {
      Table t{};
      for (int n = 0; n < 3; ++n)
        for (int k = 0; k < 3; ++k)
          for (int j = 0; j < 16; ++j) {
            const int at = 16 * n + j;
            t.b[n][k][j] = static_cast<Byte>(at % 3 == k ? at / 3 : 0x80);
          }
      return t;
    }();
    alignas(kVecBytes) Byte lines[3][kVecBytes];
    for (int k = 0; k < 3; ++k) Store(lines[k], v[k]);
    for (int piece = 0; piece < kVecBytes / 16; ++piece)
      for (int n = 0; n < 3; ++n)
        Store16(dst + 48 * piece + 16 * n,
                _mm_or_si128(
                    _mm_or_si128(
                        ShuffleBytes16(Load16(lines[0] + 16 * piece), Load16(kIndex.b[n][0])),
                        ShuffleBytes16(Load16(lines[1] + 16 * piece), Load16(kIndex.b[n][1]))),
                    ShuffleBytes16(Load16(lines[2] + 16 * piece), Load16(kIndex.b[n][2]))));
  } else {
    Byte lines[3][kVecBytes];
    for (int k = 0; k < 3; ++k) Store(lines[k], v[k]);
    for (int j = 0; j < kVecBytes; ++j)
      for (int k = 0; k < 3; ++k) dst[3 * j + k] = lines[k][j];
  }
}

// One block of a destination row: kVecBytes samples, pixels or pairs.
template <RowLayout kLayout, int kTaps>
QV_INLINE void DownBlock(const short* const (*rows)[kMaxTaps], const Vec* weights, ptrdiff_t i,
                         Byte* dst) {
  if constexpr (kLayout == RowLayout::kGray) {
    Store(dst, DownVector<kTaps>(rows[0], weights, i));
  } else if constexpr (kLayout == RowLayout::kTriples) {
    Vec v[3];
    for (int k = 0; k < 3; ++k) v[k] = DownVector<kTaps>(rows[k], weights, i);
    StoreTriples(dst, v);
  } else {
    Vec chroma[2];
    ZipBytes(DownVector<kTaps>(rows[1], weights, i), DownVector<kTaps>(rows[2], weights, i),
             &chroma[0], &chroma[1]);
    for (int half = 0; half < 2; ++half) {
      Vec low, high;
      ZipBytes(DownVector<kTaps>(rows[0], weights, 2 * i + half * kVecBytes), chroma[half], &low,
               &high);
      Store(dst + 2 * half * kVecBytes, low);
      Store(dst + (2 * half + 1) * kVecBytes, high);
    }
  }
}

// A destination row of `count` samples, pixels or pairs. Ring rows are padded to whole blocks.
template <RowLayout kLayout, int kTaps>
void FilterDownTaps(const short* const (*rows)[kMaxTaps], const short* weights, Byte* dst,
                    ptrdiff_t count) {
  constexpr int kBytes = kLayout == RowLayout::kGray      ? 1
                         : kLayout == RowLayout::kTriples ? 3
                                                          : 4;
  Vec w[kTaps];
  for (int t = 0; t < kTaps; ++t) w[t] = Splat16(weights[t]);
  ptrdiff_t i = 0;
  for (; i + kVecBytes <= count; i += kVecBytes)
    DownBlock<kLayout, kTaps>(rows, w, i, dst + i * kBytes);
  if (i < count) {
    Byte last[kBytes * kVecBytes];
    DownBlock<kLayout, kTaps>(rows, w, i, last);
    memcpy(dst + i * kBytes, last, static_cast<size_t>((count - i) * kBytes));
  }
}

// `taps` is even: an odd count has been made even by a weight of 0.
template <RowLayout kLayout>
void FilterDown(const short* const (*rows)[kMaxTaps], const short* weights, int taps, Byte* dst,
                ptrdiff_t count) {
  switch (taps) {
    case 2: return FilterDownTaps<kLayout, 2>(rows, weights, dst, count);
    case 4: return FilterDownTaps<kLayout, 4>(rows, weights, dst, count);
    case 6: return FilterDownTaps<kLayout, 6>(rows, weights, dst, count);
    default: return FilterDownTaps<kLayout, 8>(rows, weights, dst, count);
  }
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
