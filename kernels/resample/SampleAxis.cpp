#include "kernels/resample/SampleAxis.h"

#include <string.h>

#include "kernels/resample/FilterShapes.h"
#include "kernels/resize/Resize.h"

namespace qv {

namespace {

// Rounded down; without a function of the library, which the baseline would call.
double Floor(double x) {
  if (!(x > -0x1p52 && x < 0x1p52)) return x;
  const auto whole = static_cast<double>(static_cast<long long>(x));
  return whole > x ? whole - 1 : whole;
}

double StretchOf(const SampleAxis& axis, const FilterShape& shape) {
  return IsWidened(axis, shape) ? StepOf(axis) : 1;
}

// Half of what a destination sample reaches: of the interval that it covers, or of the filter.
// Nothing is covered where all positions are the same.
double ReachOf(const SampleAxis& axis, const FilterShape& shape) {
  constexpr double kLeast = 0x1p-16;
  if (shape.code != InterpolateArea) return RadiusOf(shape) * StretchOf(axis, shape);
  const double half = StepOf(axis) / 2;
  return half > kLeast ? half : kLeast;
}

// Samples that a position reaches, inside or not.
double ReachedBy(const FilterShape& shape, double reach) {
  return -Floor(-2 * reach) + (shape.code == InterpolateArea ? 1 : 0);
}

int CommonDivisor(int a, int b) {
  while (b > 0) {
    const int rest = a % b;
    a = b;
    b = rest;
  }
  return a;
}

// Samples after which positions come again, so many source samples further: where the extent is a
// whole number of these.
struct Period {
  int samples, advance;
};

Period PeriodOf(const SampleAxis& axis) {
  const double extent = axis.extent - (axis.aligned ? 1 : 0);
  const int steps = axis.count - (axis.aligned ? 1 : 0);
  if (!(steps > 0 && extent > 0 && extent < INT32_MAX && extent == Floor(extent)))
    return {axis.count, 0};
  const int common = CommonDivisor(steps, static_cast<int>(extent));
  return {steps / common, static_cast<int>(extent) / common};
}

WorkLayout SamplesLayout(int count) {
  WorkLayout layout;
  layout.Add<double>(count);
  layout.Add<int>(3 * static_cast<uint64_t>(count));
  return layout;
}

// The share of source sample s that is covered by the interval from `from` to `to`.
double Covered(double from, double to, double s) {
  const double low = from > s ? from : s, high = to < s + 1 ? to : s + 1;
  return high > low ? high - low : 0;
}

}  // namespace

double StepOf(const SampleAxis& axis) {
  if (!axis.aligned) return axis.extent / axis.count;
  return axis.count > 1 ? (axis.extent - 1) / (axis.count - 1) : 0;
}

// Products come before quotients: where extents are whole numbers, so are positions that ought to
// be.
void PositionsOf(const SampleAxis& axis, int first, int count, double* position) {
  const bool aligned = axis.aligned;
  const double half = aligned ? 0 : 0.5, extent = aligned ? axis.extent - 1 : axis.extent;
  const int steps = aligned ? axis.count - 1 : axis.count;
  if (steps == 0) {
    *position = axis.start + extent / 2 - axis.srcPhase;
    return;
  }
  for (int k = 0; k < count; ++k)
    position[k] = axis.start + (first + k + half + axis.dstPhase) * extent / steps - half -
                  axis.srcPhase;
}

double PositionOf(const SampleAxis& axis, int i) {
  double position;
  PositionsOf(axis, i, 1, &position);
  return position;
}

bool IsWidened(const SampleAxis& axis, const FilterShape& shape) {
  return shape.widened && StepOf(axis) > 1;
}

int FitTaps(int count, int length, int* first, const int* end) {
  int taps = 1, lowest = length - 1;
  for (int i = count - 1; i >= 0; --i) {
    lowest = first[i] = first[i] < lowest ? first[i] : lowest;
    taps = end[i] - lowest > taps ? end[i] - lowest : taps;
  }
  for (int i = count - 1; i >= 0 && first[i] > length - taps; --i) first[i] = length - taps;
  return taps;
}

double MostTaps(const SampleAxis& axis, const FilterShape& shape) {
  const double most = ReachedBy(shape, ReachOf(axis, shape));
  return most < axis.length ? most : axis.length;
}

ExactAxis::ExactAxis(const SampleAxis& axis, const FilterShape& shape)
    : axis_(axis),
      isArea_(shape.code == InterpolateArea),
      scale_(1 / StretchOf(axis, shape)),
      reach_(ReachOf(axis, shape)),
      reached_(ReachedBy(shape, reach_)),
      taps_(static_cast<int>(MostTaps(axis, shape))),
      period_(PeriodOf(axis).samples),
      advance_(PeriodOf(axis).advance),
      samples_(SamplesLayout(axis.count)),
      position_(samples_.At<double>(0)),
      first_(reinterpret_cast<int*>(position_ + (axis.count + 7) / 8 * 8)),
      row_(first_ + axis.count),
      end_(row_ + axis.count),
      rows_(RowsLayout()) {
  if (!*this) return;
  const FilterCurve curve(shape, scale_);
  for (int i = 0, rows = 0; i < axis.count; ++i)
    if (RowOf(i) == rows) {
      FillRow(i, curve);
      ++rows;
    }
}

// The source sample that the taps of a position begin with, wherever it is.
double ExactAxis::FirstTap(double position) const {
  return isArea_ ? Floor(position + 0.5 - reach_) : Floor(position - reach_) + 1;
}

// Samples after a period of inner ones are theirs, moved on.
int ExactAxis::CountRows() {
  const int last = axis_.length - taps_;
  const bool fits = reached_ <= axis_.length;
  int rows = 0, inner = 0;  // inner samples in a row, up to this one
  for (int i = 0; i < axis_.count;) {
    if (inner >= period_ && (repeatEnd_ == i || repeatEnd_ == 0) &&
        first_[i - period_] <= last - advance_) {
      if (repeatEnd_ == 0) repeatBegin_ = i;
      const int n = CountRepeats(i, inner, last);
      MoveOn(first_, i, n, inner);
      const int before = i - inner / period_ * period_;
      for (int k = 0; k < n; ++k) row_[i + k] = row_[before + k];
      i = repeatEnd_ = i + n;
      inner += n;
      continue;
    }
    position_[i] = PositionOf(axis_, i);
    const double first = FirstTap(position_[i]);
    const bool inside = fits && first >= 0 && first <= last;
    first_[i] = first > 0 ? (first < last ? static_cast<int>(first) : last) : 0;
    row_[i] = inside ? rows : ~rows;
    inner = inside ? inner + 1 : 0;
    ++rows;
    ++i;
  }
  return rows;
}

// How many samples from i on may be those of whole periods before, of which there are `known`
// samples: as many as stay inside.
int ExactAxis::CountRepeats(int i, int known, int last) const {
  const int periods = known / period_, before = i - periods * period_;
  int n = axis_.count - i < periods * period_ ? axis_.count - i : periods * period_;
  while (n > 1 && first_[before + n - 1] > last - static_cast<long long>(advance_) * periods) --n;
  return n;
}

// Values i to i + n - 1 from those of as many whole periods before as there are of `known`.
void ExactAxis::MoveOn(int* values, int i, int n, int known) const {
  const int periods = known / period_, moved = advance_ * periods;
  const int* const from = values + i - periods * period_;
  for (int k = 0; k < n; ++k) values[i + k] = from[k] + moved;
}

WorkLayout ExactAxis::RowsLayout() {
  WorkLayout layout;
  if (samples_) layout.Add<double>(static_cast<uint64_t>(CountRows()) * taps_);
  return layout;
}

// Weights of `count` samples from `at` on, not normalised.
void ExactAxis::ShareOut(double position, double at, int count, const FilterCurve& curve,
                         double* w) const {
  if (!isArea_) return curve.Weights((at - position) * scale_, count, w);
  const double from = position + 0.5 - reach_, to = position + 0.5 + reach_;
  for (int t = 0; t < count; ++t) w[t] = Covered(from, to, at + t);
}

void ExactAxis::FillRow(int i, const FilterCurve& curve) const {
  double* const row = Row(i);
  if (row_[i] >= 0)
    ShareOut(position_[i], first_[i], taps_, curve, row);
  else
    FoldRow(position_[i], first_[i], curve, row);
  double sum = 0;
  for (int t = 0; t < taps_; ++t) sum += row[t];
  const double scale = 1 / sum;
  for (int t = 0; t < taps_; ++t) row[t] *= scale;
}

// What is outside goes to the samples at the ends, piece by piece.
void ExactAxis::FoldRow(double position, int from, const FilterCurve& curve, double* row) const {
  constexpr int kPiece = 64;
  double piece[kPiece];
  for (int t = 0; t < taps_; ++t) row[t] = 0;
  const double first = FirstTap(position);
  for (double t = 0; t < reached_; t += kPiece) {
    const int n = reached_ - t < kPiece ? static_cast<int>(reached_ - t) : kPiece;
    ShareOut(position, first + t, n, curve, piece);
    for (int k = 0; k < n; ++k) {
      const double at = first + t + k - from;
      row[at > 0 ? (at < taps_ ? static_cast<int>(at) : taps_ - 1) : 0] += piece[k];
    }
  }
}

double ExactAxis::Largest() const {
  double largest = 0;
  for (int i = 0, rows = 0; i < axis_.count; ++i) {
    if (RowOf(i) != rows) continue;
    const double* const row = Row(i);
    for (int t = 0; t < taps_; ++t) largest = row[t] > largest ? row[t] : largest;
    ++rows;
  }
  return largest;
}

int ExactAxis::Trim(double least, int* first) const {
  const auto counts = [=](double w) { return w >= least || w <= -least; };
  for (int i = 0; i < axis_.count; ++i) {
    if (i == repeatBegin_ && repeatEnd_ > 0) {
      for (int n = 0; i < repeatEnd_; i += n) {
        const int known = i - repeatBegin_ + period_, most = known / period_ * period_;
        n = repeatEnd_ - i < most ? repeatEnd_ - i : most;
        MoveOn(first, i, n, known);
        MoveOn(end_, i, n, known);
      }
      if (i == axis_.count) break;
    }
    const double* const row = Row(i);
    int low = 0, high = taps_ - 1;
    while (low < high && !counts(row[low])) ++low;
    while (high > low && !counts(row[high])) --high;
    first[i] = first_[i] + low;
    end_[i] = first_[i] + high + 1;
  }
  return FitTaps(axis_.count, axis_.length, first, end_);
}

bool ExactAxis::Repeats(int i, const int* first) const {
  const int before = i - period_;
  return before >= 0 && row_[i] == row_[before] &&
         first[i] - first_[i] == first[before] - first_[before];
}

// Calls each(t, weight) for the taps from source sample `first` on.
template <class Each>
void ExactAxis::ForEachTap(int i, int first, int taps, Each each) const {
  const double* const row = Row(i);
  const int ahead = first - first_[i];
  for (int t = 0; t < taps; ++t) {
    const int at = t + ahead;
    each(t, at >= 0 && at < taps_ ? row[at] : 0);
  }
}

// Sums are rounded rather than weights, so that these sum to exactly one.
void ExactAxis::StoreRow(int i, int first, int taps, int bits, short* to) const {
  const double one = static_cast<double>(1ll << bits);
  double sum = 0;
  long long before = 0;
  ForEachTap(i, first, taps, [&](int t, double weight) {
    sum += weight;
    // Never below -1, so that what is converted is above 0.
    const long long after = t == taps - 1
                                ? 1ll << bits
                                : static_cast<long long>((sum + 1) * one + 0.5) - (1ll << bits);
    to[t] = static_cast<short>(after - before);
    before = after;
  });
}

void ExactAxis::Store(const int* first, int taps, int bits, int stride, short* weights) const {
  const size_t sampleBytes = sizeof(short) * static_cast<size_t>(stride);
  for (int i = 0, end = 0; i < axis_.count; i = end) {
    short* const to = weights + static_cast<ptrdiff_t>(i) * stride;
    for (end = i; end < axis_.count && Repeats(end, first);) ++end;
    // Samples of periods before, twice as many each time.
    const short* const from = to - static_cast<ptrdiff_t>(period_) * stride;
    for (int done = 0; done < end - i;) {
      const int left = end - i - done, n = period_ + done < left ? period_ + done : left;
      memcpy(to + static_cast<ptrdiff_t>(done) * stride, from, sampleBytes * n);
      done += n;
    }
    if (end > i) continue;
    StoreRow(i, first[i], taps, bits, to);
    for (int t = taps; t < stride; ++t) to[t] = 0;
    end = i + 1;
  }
}

void ExactAxis::Store(const int* first, int taps, float* weights) const {
  for (int i = 0; i < axis_.count; ++i)
    ForEachTap(i, first[i], taps, [&](int t, double weight) {
      weights[static_cast<ptrdiff_t>(i) * taps + t] = static_cast<float>(weight);
    });
}

}  // namespace qv
