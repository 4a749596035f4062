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
    for (int r = 0; b % 64 == 0 && r < fresh.count; ++r)
      __builtin_prefetch(RowAt(fresh.first, srcStep, r) + b);
    const Byte* p = rows + b;
    const auto add = [&](Vec upper, Vec lower, const short* pair) QV_INLINE_LAMBDA {
      int weight;
      memcpy(&weight, pair, sizeof weight);
      const Vec w = Splat32(weight);
      const Vec low = InterleaveLow8(upper, lower), high = InterleaveHigh8(upper, lower);
      sums[0] = AddPairs<kCut>(sums[0], InterleaveLow8(low, Zero()), w, round);
      sums[1] = AddPairs<kCut>(sums[1], InterleaveHigh8(low, Zero()), w, round);
      sums[2] = AddPairs<kCut>(sums[2], InterleaveLow8(high, Zero()), w, round);
      sums[3] = AddPairs<kCut>(sums[3], InterleaveHigh8(high, Zero()), w, round);
    };
    int t = 0;
    for (; t + 4 <= y.taps; t += 4, p += 4 * ptrdiff_t{srcStep}) {
      add(Load(p), Load(p + srcStep), weights + t);
      add(Load(p + 2 * ptrdiff_t{srcStep}), Load(p + 3 * ptrdiff_t{srcStep}), weights + t + 2);
    }
    for (; t < y.taps; t += 2, p += 2 * ptrdiff_t{srcStep}) {
      // A last tap alone has a weight of 0 beside it.
      const Vec upper = Load(p);
      add(upper, t + 1 < y.taps ? Load(p + srcStep) : upper, weights + t);
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

// Partial sums of one destination sample of one channel. What is read past the taps has a weight
// of 0.
template <bool kCut>
QV_INLINE Vec SumTaps(const short* values, const short* weights, int taps, const Rounding& round) {
  Vec sum = AddPairs<kCut>(Zero(), Load(values), Load(weights), round);
  for (int t = kVecBytes / 2; t < taps; t += kVecBytes / 2)
    sum = AddPairs<kCut>(sum, Load(values + t), Load(weights + t), round);
  return sum;
}

// The sum of a vector's 128-bit lanes.
QV_INLINE Vec128 AddLanes32(Vec sums) {
  Vec128 total = LowLane(sums);
  if constexpr (kLanes128 >= 2) total = Add32(total, Lane<1>(sums));
  if constexpr (kLanes128 == 4) total = Add32(total, Add32(Lane<2>(sums), Lane<3>(sums)));
  return total;
}

// Channels are summed up beside each other: neighbouring pixels are woven into pairs of each
// channel's values. A 128-bit lane has one of three or four channels, the fourth of which may be
// anything, or two of two.
template <int kChannels>
constexpr int kWovenChannels = kChannels == 3 ? 4 : kChannels;
template <int kChannels>
constexpr int kTapsAtOnce = 2 * kLanes32 / kWovenChannels<kChannels>;

template <int kChannels>
QV_INLINE Vec WeavePairs(const short* p) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable kOrder = MakeByteTable([](int i) {
      constexpr int kWoven = kWovenChannels<kChannels>;
      const int pixel = i / 4 / kWoven * 2 + i / 2 % 2;
      return 2 * (pixel * kChannels + i / 4 % kWoven) + i % 2;
    });
    return PermuteBytes(Load(p), Load(kOrder.b));
  } else if constexpr (kChannels == 2) {
    return ShuffleHigh16<0, 2, 1, 3>(ShuffleLow16<0, 2, 1, 3>(Load(p)));
  } else {
    const Vec v = LoadLanes([=](int i) { return p + 2 * kChannels * i; });
    return InterleaveLow16(v, ShiftBytesDown<2 * kChannels>(v));
  }
}

// The weights of as many taps, each pair's for every channel. No more of them are read.
template <int kChannels>
QV_INLINE Vec SpreadWeights(const short* weights) {
  constexpr int kTaps = kTapsAtOnce<kChannels>;
  if constexpr (kTaps == 2) {
    int pair;
    memcpy(&pair, weights, sizeof pair);
    return Splat32(pair);
  } else if constexpr (!kHasLanePermute) {
    const Vec w = FromLane(Load64(weights));
    return InterleaveLow32(w, w);
  } else {
    static constexpr ByteTable kOrder =
        MakeByteTable([](int i) { return i % 4 == 0 ? i / 4 / kWovenChannels<kChannels> : 0; });
    const Vec w = kTaps == 4   ? FromLane(Load64(weights))
                  : kTaps == 8 ? FromLane(Load128(weights))
                               : LoadHalves(weights, weights);
    return PermuteLanes32(w, Load(kOrder.b));
  }
}

// The channels of a destination pixel.
template <int kChannels, bool kCut>
QV_INLINE Vec128 SumPixel(const short* values, const short* weights, int taps,
                          const Rounding& round) {
  Vec sum = Zero();
  for (int t = 0; t < taps; t += kTapsAtOnce<kChannels>)
    sum = AddPairs<kCut>(sum, WeavePairs<kChannels>(values + t * kChannels),
                         SpreadWeights<kChannels>(weights + t), round);
  const Vec128 total = AddLanes32(sum);
  return kChannels == 2 ? Add32(total, InterleaveHigh64(total, total)) : total;
}

QV_INLINE Vec128 RoundSums(Vec128 sums, const Rounding& round) {
  return ShiftRightSigned32(Add32(sums, LowLane(Splat32(1 << (round.sum - 1)))), round.sum);
}

// Eight samples of one channel, whose taps are half a vector at the most: at(0) .. at(7) of a row.
template <bool kCut, class At>
QV_INLINE void SumEightHalves(const short* values, const LongTaps& x, At at, const Rounding& round,
                              Byte* line) {
  const auto sums = [&](int k) QV_INLINE_LAMBDA {
    const ptrdiff_t a = at(k), b = at(k + 4);
    return AddPairs<kCut>(
        Zero(), LoadHalves(values + x.first[a], values + x.first[b]),
        LoadHalves(x.weights + a * x.stride, x.weights + b * x.stride), round);
  };
  const Vec all = AddNeighbours32(AddNeighbours32(sums(0), sums(1)),
                                  AddNeighbours32(sums(2), sums(3)));
  Vec128 low = LowLane(all), high = Lane<kLanes128 / 2>(all);
  if constexpr (kLanes128 == 4) low = Add32(low, Lane<1>(all)), high = Add32(high, Lane<3>(all));
  const Vec128 words = PackSigned32(RoundSums(low, round), RoundSums(high, round));
  Store64(line, PackUnsigned16(words, words));
}

// Samples at(0) .. at(3) of a row as bytes, four for a pixel of three.
template <int kChannels, bool kCut, class At>
QV_INLINE void SumFour(const short* values, const LongTaps& x, At at, const Rounding& round,
                       Byte* line) {
  const auto sum = [&](int k) QV_INLINE_LAMBDA {
    const ptrdiff_t i = at(k);
    const short* const v = values + ptrdiff_t{x.first[i]} * kChannels;
    const short* const weights = x.weights + i * x.stride;
    if constexpr (kChannels == 1) return SumTaps<kCut>(v, weights, x.taps, round);
    else return SumPixel<kChannels, kCut>(v, weights, x.taps, round);
  };
  if constexpr (kChannels == 1) {
    const Vec sums =
        AddNeighbours32(AddNeighbours32(sum(0), sum(1)), AddNeighbours32(sum(2), sum(3)));
    const Vec128 words = RoundSums(AddLanes32(sums), round);
    Store32(line, PackUnsigned16(PackSigned32(words, words), words));
  } else if constexpr (kChannels == 2) {
    const Vec128 words = PackSigned32(RoundSums(InterleaveLow64(sum(0), sum(1)), round),
                                      RoundSums(InterleaveLow64(sum(2), sum(3)), round));
    Store64(line, PackUnsigned16(words, words));
  } else {
    Store128(line, PackUnsigned16(
                       PackSigned32(RoundSums(sum(0), round), RoundSums(sum(1), round)),
                       PackSigned32(RoundSums(sum(2), round), RoundSums(sum(3), round))));
  }
}

// `values` counts from source sample 0. The taps are passed by value: bytes that are stored might
// be part of them otherwise. Whole groups of destination pixels are written.
template <int kChannels, bool kCut, bool kHalves>
void SumRow(const short* values, LongTaps x, ptrdiff_t count, Rounding round, Byte* line) {
  constexpr int kGroup = kHalves ? 8 : 4;
  const auto group = [&](auto at) QV_INLINE_LAMBDA {
    if constexpr (kHalves) SumEightHalves<kCut>(values, x, at, round, line);
    else SumFour<kChannels, kCut>(values, x, at, round, line);
  };
  ptrdiff_t j = 0;
  for (; j + kGroup <= count; j += kGroup, line += kGroup * kWovenChannels<kChannels>)
    group([j](int k) { return j + k; });
  if (j < count) group([j, count](int k) { return j + k < count ? j + k : count - 1; });
}

// The first three bytes of each group of four.
void CopyTriples(const Byte* line, ptrdiff_t pixels, Byte* dst) {
  const bool inBlocks = CoverWithBlocks<kLanes32>(
      pixels, [=](ptrdiff_t j) { StoreTriples(dst + 3 * j, Load(line + 4 * j)); });
  for (ptrdiff_t j = 0; !inBlocks && j < pixels; ++j) memcpy(dst + 3 * j, line + 4 * j, 3);
}

template <int kChannels, bool kCut>
void SumRow(const short* values, const LongTaps& x, ptrdiff_t count, Byte* line) {
  const Rounding round(x.bits, kRowBits, kFraction);
  if constexpr (kChannels == 1 && kLanes128 > 1)
    if (x.taps <= kVecBytes / 4) return SumRow<1, kCut, true>(values, x, count, round, line);
  SumRow<kChannels, kCut, false>(values, x, count, round, line);
}

template <int kChannels>
void RowSums(const short* values, const LongTaps& x, ptrdiff_t count, Byte* line, Byte* dst) {
  if (x.bits > kRowBits)
    SumRow<kChannels, true>(values, x, count, line);
  else
    SumRow<kChannels, false>(values, x, count, line);
  if constexpr (kChannels == 3) CopyTriples(line, count, dst);
  else memcpy(dst, line, static_cast<size_t>(count * kChannels));
}

void RowSums(const short* values, int channels, const LongTaps& x, ptrdiff_t count, Byte* line,
             Byte* dst) {
  switch (channels) {
    case 1: return RowSums<1>(values, x, count, line, dst);
    case 2: return RowSums<2>(values, x, count, line, dst);
    case 3: return RowSums<3>(values, x, count, line, dst);
    default: return RowSums<4>(values, x, count, line, dst);
  }
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
  auto* const line = reinterpret_cast<Byte*>(values + PaddedLine(bytes));
  for (int i = 0; i < t.height; ++i) {
    const FreshRows fresh = i + 1 < t.height ? FreshAfter(from, srcStep, t.y, i) : FreshRows{};
    ColumnSums(from, srcStep, t.y, i, fresh, bytes, values);
    RowSums(values - ptrdiff_t{named.first} * t.channels, t.channels, t.x, t.width, line,
            RowAt(dst, dstStep, i));
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
