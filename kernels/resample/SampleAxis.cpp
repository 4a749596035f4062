#include "kernels/resample/SampleAxis.h"

#include <math.h>
#include <string.h>

#include "kernels/resample/FilterShapes.h"
#include "kernels/resize/Resize.h"

namespace qv {

namespace {

double StretchOf(const SampleAxis& axis, const FilterShape& shape) {
  const double step = StepOf(axis);
  return shape.widened && step > 1 ? step : 1;
}

// Half of what a destination sample reaches: of the interval that it covers, or of the filter.
// Nothing is covered where all positions are the same.
double ReachOf(const SampleAxis& axis, const FilterShape& shape) {
  constexpr double kLeast = 0x1p-16;
  if (shape.code != InterpolateArea) return RadiusOf(shape) * StretchOf(axis, shape);
  const double half = StepOf(axis) / 2;
  return half > kLeast ? half : kLeast;
}

// The source sample that the taps of a position begin with, wherever it is.
double FirstTap(const SampleAxis& axis, const FilterShape& shape, double position) {
  const double reach = ReachOf(axis, shape);
  return shape.code == InterpolateArea ? floor(position + 0.5 - reach)
                                       : floor(position - reach) + 1;
}

// Samples that a position reaches, inside or not.
double MostReached(const SampleAxis& axis, const FilterShape& shape) {
  return ceil(2 * ReachOf(axis, shape)) + (shape.code == InterpolateArea ? 1 : 0);
}

int CommonDivisor(int a, int b) {
  while (b > 0) {
    const int rest = a % b;
    a = b;
    b = rest;
  }
  return a;
}

WorkLayout SamplesLayout(int count) {
  WorkLayout layout;
  layout.Add<int>(2 * static_cast<uint64_t>(count));
  return layout;
}

// The share of source sample s that is covered by the interval `reach` around the position.
double Covered(double position, double reach, double s) {
  const double from = position + 0.5 - reach, to = position + 0.5 + reach;
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
double PositionOf(const SampleAxis& axis, int i) {
  if (!axis.aligned)
    return axis.start + (i + 0.5 + axis.dstPhase) * axis.extent / axis.count - 0.5 - axis.srcPhase;
  if (axis.count == 1) return axis.start + (axis.extent - 1) / 2 - axis.srcPhase;
  return axis.start + (i + axis.dstPhase) * (axis.extent - 1) / (axis.count - 1) - axis.srcPhase;
}

void NearestSamples(const SampleAxis& axis, int* sample) {
  for (int i = 0; i < axis.count; ++i) {
    const double at = floor(PositionOf(axis, i) + 0.5);
    sample[i] = at > 0 ? (at < axis.length ? static_cast<int>(at) : axis.length - 1) : 0;
  }
}

double MostTaps(const SampleAxis& axis, const FilterShape& shape) {
  const double most = MostReached(axis, shape);
  return most < axis.length ? most : axis.length;
}

ExactAxis::ExactAxis(const SampleAxis& axis, const FilterShape& shape)
    : axis_(axis),
      shape_(shape),
      taps_(static_cast<int>(MostTaps(axis, shape))),
      samples_(SamplesLayout(axis.count)),
      first_(samples_.At<int>(0)),
      row_(first_ + axis.count),
      rows_(RowsLayout()) {
  if (!*this) return;
  for (int i = 0, rows = 0; i < axis.count; ++i)
    if ((row_[i] < 0 ? ~row_[i] : row_[i]) == rows) {
      FillRow(i);
      ++rows;
    }
}

// Where the extent is a whole number of source samples, positions come again after a period.
int ExactAxis::CountRows() {
  const double extent = axis_.extent - (axis_.aligned ? 1 : 0);
  const int steps = axis_.count - (axis_.aligned ? 1 : 0);
  period_ = axis_.count;
  advance_ = 0;
  if (steps > 0 && extent > 0 && extent < INT32_MAX && extent == floor(extent)) {
    const int common = CommonDivisor(steps, static_cast<int>(extent));
    period_ = steps / common;
    advance_ = static_cast<int>(extent) / common;
  }
  const int last = axis_.length - taps_;
  const bool fits = MostReached(axis_, shape_) <= axis_.length;
  int rows = 0;
  for (int i = 0; i < axis_.count; ++i) {
    if (i >= period_ && row_[i - period_] >= 0 && first_[i - period_] <= last - advance_) {
      first_[i] = first_[i - period_] + advance_;
      row_[i] = row_[i - period_];
      continue;
    }
    const double first = FirstTap(axis_, shape_, PositionOf(axis_, i));
    const bool inside = fits && first >= 0 && first <= last;
    first_[i] = first > 0 ? (first < last ? static_cast<int>(first) : last) : 0;
    row_[i] = inside ? rows : ~rows;
    ++rows;
  }
  return rows;
}

WorkLayout ExactAxis::RowsLayout() {
  WorkLayout layout;
  if (samples_) layout.Add<double>(static_cast<uint64_t>(CountRows()) * taps_);
  return layout;
}

void ExactAxis::FillRow(int i) const {
  constexpr int kChunk = 64;
  double chunk[kChunk];
  double* const row = Row(i);
  for (int t = 0; t < taps_; ++t) row[t] = 0;
  const double position = PositionOf(axis_, i), reach = ReachOf(axis_, shape_);
  const double first = FirstTap(axis_, shape_, position), count = MostReached(axis_, shape_);
  const double stretch = StretchOf(axis_, shape_);
  double sum = 0;
  for (double t = 0; t < count; t += kChunk) {
    const int n = count - t < kChunk ? static_cast<int>(count - t) : kChunk;
    if (shape_.code == InterpolateArea)
      for (int k = 0; k < n; ++k) chunk[k] = Covered(position, reach, first + t + k);
    else
      ShapeWeights(shape_, (first + t - position) / stretch, 1 / stretch, n, chunk);
    for (int k = 0; k < n; ++k) {
      const double at = first + t + k - first_[i];
      row[at > 0 ? (at < taps_ ? static_cast<int>(at) : taps_ - 1) : 0] += chunk[k];
      sum += chunk[k];
    }
  }
  for (int t = 0; t < taps_; ++t) row[t] /= sum;
}

double ExactAxis::Largest() const {
  double largest = 0;
  for (int i = 0, rows = 0; i < axis_.count; ++i) {
    if ((row_[i] < 0 ? ~row_[i] : row_[i]) != rows) continue;
    const double* const row = Row(i);
    for (int t = 0; t < taps_; ++t) largest = row[t] > largest ? row[t] : largest;
    ++rows;
  }
  return largest;
}

int ExactAxis::Trim(double least, int* first) const {
  const auto counts = [=](double w) { return w >= least || w <= -least; };
  int taps = 1, lowest = axis_.length - 1;
  for (int i = axis_.count - 1; i >= 0; --i) {
    const double* const row = Row(i);
    int low = 0, high = taps_ - 1;
    while (low < high && !counts(row[low])) ++low;
    while (high > low && !counts(row[high])) --high;
    if (first_[i] + low < lowest) lowest = first_[i] + low;
    first[i] = lowest;
    const int reached = first_[i] + high - lowest + 1;
    taps = reached > taps ? reached : taps;
  }
  for (int i = 0; i < axis_.count; ++i)
    if (first[i] > axis_.length - taps) first[i] = axis_.length - taps;
  return taps;
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
void ExactAxis::Store(const int* first, int taps, int bits, int stride, short* weights) const {
  const double one = static_cast<double>(1ll << bits);
  for (int i = 0; i < axis_.count; ++i) {
    short* const to = weights + static_cast<ptrdiff_t>(i) * stride;
    if (Repeats(i, first)) {
      memcpy(to, to - static_cast<ptrdiff_t>(period_) * stride, sizeof(short) * stride);
      continue;
    }
    double sum = 0;
    long long before = 0;
    ForEachTap(i, first[i], taps, [&](int t, double weight) {
      sum += weight;
      // Never below -1, so that what is converted is above 0.
      const long long after =
          t == taps - 1 ? 1ll << bits : static_cast<long long>((sum + 1) * one + 0.5) - (1ll << bits);
      to[t] = static_cast<short>(after - before);
      before = after;
    });
    for (int t = taps; t < stride; ++t) to[t] = 0;
  }
}

void ExactAxis::Store(const int* first, int taps, float* weights) const {
  for (int i = 0; i < axis_.count; ++i)
    ForEachTap(i, first[i], taps, [&](int t, double weight) {
      weights[static_cast<ptrdiff_t>(i) * taps + t] = static_cast<float>(weight);
    });
}

}  // namespace qv
