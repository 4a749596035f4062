// The separable filter with any number of taps: source rows are summed up column by column, and the
// row of sums along x.
//
// Numbers. Sums of a column: 255 * 1.5 * 2^22 fits 31 bits, so that weights of up to 22 bits are
// summed as they are; of longer ones each pair's sum is cut to 22. What is kept of them are 6
// fractional bits, -8160 .. 24480. Sums along x: 24480 * 1.5 * 2^15 fits as well.
//
// Error, in units of the result: 1/128 for the 6 fractional bits, which weights with a negative
// share make 1/64; an error of weights of half a unit each, where no weight's double would fit 16
// bits, so that n taps have about log2(n / 6) more bits than 14 and err by 255 * 12 / 2^15 = 0.1
// at the most on each axis. Pairs that are cut short are at most 2^19, by 2^-20 of a unit each.
#include "kernels/level/Level.h"
#include "kernels/resample/ResampleRows.h"

namespace qv::QV_LEVEL {

namespace {

// How a sum of weighted pairs is cut and rounded: shifts of a pair, then of the sum.
struct Rounding {
  int pair, sum;

  // From weights of `bits`, kept up to `most` of them, to 2^-down.
  QV_INLINE Rounding(int bits, int most, int down)
      : pair(bits > most ? bits - most : 0), sum(bits - pair + down) {}
  QV_INLINE int operator()(int x) const { return (x + (1 << (sum - 1))) >> sum; }
};

constexpr int kColumnBits = 22, kRowBits = 15, kFraction = 6;

// The bytes `begin` to before `end` of the columns of destination row i.
void PlainColumns(const Byte* src, int srcStep, const LongTaps& y, int i, ptrdiff_t begin,
                  ptrdiff_t end, short* values) {
  const Rounding round(y.bits, kColumnBits, -kFraction);
  const short* const weights = y.weights + ptrdiff_t{i} * y.stride;
  for (ptrdiff_t b = begin; b < end; ++b) {
    const Byte* p = RowAt(src, srcStep, y.first[i]) + b;
    int sum = 0;
    for (int t = 0; t < y.taps; t += 2, p += 2 * ptrdiff_t{srcStep}) {
      const int second = t + 1 < y.taps ? weights[t + 1] * p[srcStep] : 0;
      sum += (weights[t] * p[0] + second) >> round.pair;
    }
    values[b] = static_cast<short>(round(sum));
  }
}

#if QV_HAS_VECTORS

// A vector of 32-bit sums, pairs cut short if kCut.
template <bool kCut>
QV_INLINE Vec AddPairs(Vec sum, Vec pairs, Vec weights, const Rounding& round) {
  const Vec products = MulAddPairs16(pairs, weights);
  return Add32(sum, kCut ? ShiftRightSigned32(products, round.pair) : products);
}

// kVecBytes values whose sums are those of columns 0 .. 3, 4 .. 7, 8 .. 11 and 12 .. 15 of each
// 128-bit lane.
QV_INLINE void StoreColumns(const Vec (&sums)[4], const Rounding& round, short* values) {
  const Vec half = Splat32(1 << (round.sum - 1));
  const auto pack = [&](Vec a, Vec b) QV_INLINE_LAMBDA {
    return PackSigned32(ShiftRightSigned32(Add32(a, half), round.sum),
                        ShiftRightSigned32(Add32(b, half), round.sum));
  };
  const Vec low = pack(sums[0], sums[1]), high = pack(sums[2], sums[3]);
  if constexpr (kHasBytePermute) {
    // 16 bytes of `low`, 16 of `high`, from the vectors' first and then their last halves.
    static constexpr auto kOrder = [](int half) {
      return MakeByteTable(
          [=](int i) { return 32 * half + i / 32 * 16 + i % 16 + i / 16 % 2 * 64; });
    };
    static constexpr ByteTable kFirst = kOrder(0), kLast = kOrder(1);
    Store(values, PermuteBytes2(low, Load(kFirst.b), high));
    Store(values + kVecBytes / 2, PermuteBytes2(low, Load(kLast.b), high));
  } else {
    StoreLanes(low, [=](int lane) { return values + 16 * lane; });
    StoreLanes(high, [=](int lane) { return values + 16 * lane + 8; });
  }
}

// Source rows that the next destination row takes first; they are fetched meanwhile.
struct FreshRows {
  const Byte* first;
  int count;
};

FreshRows FreshAfter(const Byte* src, int srcStep, const LongTaps& y, int i) {
  const int known = y.first[i] + y.taps, next = y.first[i + 1];
  const int first = known > next ? known : next;
  return {RowAt(src, srcStep, first), next + y.taps - first};
}

template <bool kCut>
void SumColumns(const Byte* src, int srcStep, const LongTaps& y, int i, FreshRows fresh,
                const Rounding& round, ptrdiff_t bytes, short* values) {
  const Byte* const rows = RowAt(src, srcStep, y.first[i]);
  const short* const weights = y.weights + ptrdiff_t{i} * y.stride;
  const auto block = [&](ptrdiff_t b) QV_INLINE_LAMBDA {
    Vec sums[4] = {Zero(), Zero(), Zero(), Zero()};
    const Byte* p = fresh.first + b;
    for (int r = 0; r < fresh.count; ++r, p += srcStep) __builtin_prefetch(p);
    p = rows + b;
    for (int t = 0; t < y.taps; t += 2, p += 2 * ptrdiff_t{srcStep}) {
      // A last tap alone has a weight of 0 beside it.
      const Vec upper = Load(p), lower = Load(t + 1 < y.taps ? p + srcStep : p);
      int pair;
      memcpy(&pair, weights + t, sizeof pair);
      const Vec w = Splat32(pair);
      const Vec low = InterleaveLow8(upper, lower), high = InterleaveHigh8(upper, lower);
      sums[0] = AddPairs<kCut>(sums[0], InterleaveLow8(low, Zero()), w, round);
      sums[1] = AddPairs<kCut>(sums[1], InterleaveHigh8(low, Zero()), w, round);
      sums[2] = AddPairs<kCut>(sums[2], InterleaveLow8(high, Zero()), w, round);
      sums[3] = AddPairs<kCut>(sums[3], InterleaveHigh8(high, Zero()), w, round);
    }
    StoreColumns(sums, round, values + b);
  };
  CoverWithBlocks<kVecBytes>(bytes, block);
}

void ColumnSums(const Byte* src, int srcStep, const LongTaps& y, int i, FreshRows fresh,
                ptrdiff_t bytes, short* values) {
  const Rounding round(y.bits, kColumnBits, -kFraction);
  if (bytes < kVecBytes) return PlainColumns(src, srcStep, y, i, 0, bytes, values);
  if (round.pair > 0)
    SumColumns<true>(src, srcStep, y, i, fresh, round, bytes, values);
  else
    SumColumns<false>(src, srcStep, y, i, fresh, round, bytes, values);
}

// Values of pixels of kChannels, channel by channel, `apart` values from one to the next: eight
// pixels at a time are shuffled perfectly three times. A shuffle moves value k of n = 8 kChannels
// to 2 k modulo n - 1, three of them to 8 k, which is m for k = kChannels m. Whole eights are
// written.
template <int kChannels>
void SplitChannels(const short* values, ptrdiff_t pixels, short* split, ptrdiff_t apart) {
  for (ptrdiff_t j = 0; j < pixels; j += 8) {
    Vec128 v[kChannels];
    for (int k = 0; k < kChannels; ++k) v[k] = Load128(values + j * kChannels + 8 * k);
    for (int round = 0; round < 3; ++round) {
      Vec128 u[kChannels];
      // Fours of the first half and of the last one, which begins within a vector if there are
      // three.
      for (int four = 0; four < kChannels; ++four) {
        const int other = four + kChannels;
        const Vec128 a = v[four / 2], b = v[other / 2];
        u[four] = InterleaveLow16(four % 2 ? InterleaveHigh64(a, a) : a,
                                  other % 2 ? InterleaveHigh64(b, b) : b);
      }
      for (int k = 0; k < kChannels; ++k) v[k] = u[k];
    }
    for (int c = 0; c < kChannels; ++c) Store128(split + c * apart + j, v[c]);
  }
}

void SplitChannels(const short* values, int channels, ptrdiff_t pixels, short* split,
                   ptrdiff_t apart) {
  if (channels == 2) SplitChannels<2>(values, pixels, split, apart);
  else if (channels == 3) SplitChannels<3>(values, pixels, split, apart);
  else SplitChannels<4>(values, pixels, split, apart);
}

// Partial sums of one destination sample. What is read past the taps has a weight of 0.
template <bool kCut>
QV_INLINE Vec SumTaps(const short* values, const short* weights, int taps, const Rounding& round) {
  Vec sum = AddPairs<kCut>(Zero(), Load(values), Load(weights), round);
  for (int t = kVecBytes / 2; t < taps; t += kVecBytes / 2)
    sum = AddPairs<kCut>(sum, Load(values + t), Load(weights + t), round);
  return sum;
}

// Samples a, b, c and d of a row as bytes.
template <bool kCut>
QV_INLINE void SumFour(const short* values, const LongTaps& x, ptrdiff_t a, ptrdiff_t b,
                       ptrdiff_t c, ptrdiff_t d, const Rounding& round, Byte* dst) {
  const auto sum = [&](ptrdiff_t i) QV_INLINE_LAMBDA {
    return SumTaps<kCut>(values + x.first[i], x.weights + i * x.stride, x.taps, round);
  };
  const Vec sums =
      AddNeighbours32(AddNeighbours32(sum(a), sum(b)), AddNeighbours32(sum(c), sum(d)));
  Vec128 total = LowLane(sums);
  if constexpr (kLanes128 >= 2) total = Add32(total, Lane<1>(sums));
  if constexpr (kLanes128 == 4) total = Add32(total, Add32(Lane<2>(sums), Lane<3>(sums)));
  const Vec128 half = LowLane(Splat32(1 << (round.sum - 1)));
  const Vec128 words = ShiftRightSigned32(Add32(total, half), round.sum);
  Store32(dst, PackUnsigned16(PackSigned32(words, words), words));
}

// `values` counts from source sample 0. The taps are passed by value: bytes that are stored might
// be part of them otherwise.
template <bool kCut>
void SumRow(const short* values, LongTaps x, ptrdiff_t count, Rounding round, Byte* dst) {
  ptrdiff_t j = 0;
  for (; j + 4 <= count; j += 4)
    SumFour<kCut>(values, x, j, j + 1, j + 2, j + 3, round, dst + j);
  const ptrdiff_t last = count - 1;
  if (j < count)
    SumFour<kCut>(values, x, j, j + 1 < last ? j + 1 : last, last, last, round, dst + j);
}

// Destination samples of one channel, whole fours of them.
void RowSums(const short* values, const LongTaps& x, ptrdiff_t count, Byte* dst) {
  const Rounding round(x.bits, kRowBits, kFraction);
  if (round.pair > 0)
    SumRow<true>(values, x, count, round, dst);
  else
    SumRow<false>(values, x, count, round, dst);
}

// The lines of the channels side by side.
void JoinChannels(const Byte* lines, ptrdiff_t apart, int channels, ptrdiff_t count, Byte* dst) {
  for (int c = 0; c < channels; ++c)
    for (ptrdiff_t j = 0; j < count; ++j) dst[j * channels + c] = lines[c * apart + j];
}

#else

// Channel c of destination pixels, from values `stride` apart of which the first is at `values`.
void PlainRow(const short* values, int stride, const LongTaps& x, int from, int count, Byte* dst,
              int dstStride) {
  const Rounding round(x.bits, kRowBits, kFraction);
  for (ptrdiff_t j = 0; j < count; ++j) {
    const short* const weights = x.weights + j * x.stride;
    const short* const v = values + ptrdiff_t{x.first[j] - from} * stride;
    int sum = 0;
    for (ptrdiff_t t = 0; t < x.taps; t += 2) {
      const int second = t + 1 < x.taps ? weights[t + 1] * v[(t + 1) * stride] : 0;
      sum += (weights[t] * v[t * stride] + second) >> round.pair;
    }
    dst[j * dstStride] = ToByte(round(sum));
  }
}

#endif

}  // namespace

IppStatus LongRows_8u(const Byte* src, int srcStep, Byte* dst, int dstStep,
                      const LongTables* tables, void* scratch) {
  const LongTables& t = *tables;
  const NamedPixels named = NamedBy(t.x.first, t.width, t.x.taps);
  const ptrdiff_t bytes = ptrdiff_t{named.count} * t.channels;
  const Byte* const from = src + ptrdiff_t{named.first} * t.channels;
  auto* const values = static_cast<short*>(scratch);
#if QV_HAS_VECTORS
  const ptrdiff_t apart = PaddedLine(named.count), dstApart = PaddedLine(t.width);
  short* const split = t.channels > 1 ? values + PaddedLine(bytes) : values;
  Byte* const lines = reinterpret_cast<Byte*>(values + PaddedLine(bytes) + t.channels * apart);
  for (int i = 0; i < t.height; ++i) {
    const FreshRows fresh = i + 1 < t.height ? FreshAfter(from, srcStep, t.y, i) : FreshRows{};
    ColumnSums(from, srcStep, t.y, i, fresh, bytes, values);
    if (t.channels > 1) SplitChannels(values, t.channels, named.count, split, apart);
    for (int c = 0; c < t.channels; ++c)
      RowSums(split + c * apart - named.first, t.x, t.width, lines + c * dstApart);
    JoinChannels(lines, dstApart, t.channels, t.width, RowAt(dst, dstStep, i));
  }
#else
  for (int i = 0; i < t.height; ++i) {
    PlainColumns(from, srcStep, t.y, i, 0, bytes, values);
    for (int c = 0; c < t.channels; ++c)
      PlainRow(values + c, t.channels, t.x, named.first, t.width, RowAt(dst, dstStep, i) + c,
               t.channels);
  }
#endif
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
