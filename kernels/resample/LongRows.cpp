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

}  // namespace

IppStatus LongRows_8u(const Byte* src, int srcStep, Byte* dst, int dstStep,
                      const LongTables* tables, void* scratch) {
  const LongTables& t = *tables;
  const NamedPixels named = NamedBy(t.x.first, t.width, t.x.taps);
  const ptrdiff_t bytes = ptrdiff_t{named.count} * t.channels;
  const Byte* const from = src + ptrdiff_t{named.first} * t.channels;
  auto* const values = static_cast<short*>(scratch);
  for (int i = 0; i < t.height; ++i) {
    PlainColumns(from, srcStep, t.y, i, 0, bytes, values);
    for (int c = 0; c < t.channels; ++c)
      PlainRow(values + c, t.channels, t.x, named.first, t.width, RowAt(dst, dstStep, i) + c,
               t.channels);
  }
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
