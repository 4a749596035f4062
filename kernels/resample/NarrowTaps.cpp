#include "kernels/resample/NarrowTaps.h"

#include <string.h>

#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizeRows.h"

namespace qv {

namespace {

// Calls each(first, count, positions) for chunks of an axis, so that the compiler can work on
// several positions at once.
template <class Each>
void ForEachChunk(const SampleAxis& axis, Each each) {
  constexpr int kChunk = 64;
  double position[kChunk];
  for (int i = 0; i < axis.count; i += kChunk) {
    const int count = axis.count - i < kChunk ? axis.count - i : kChunk;
    PositionsOf(axis, i, count, position);
    each(i, count, position);
  }
}

double Limit(double x, double most) {
  const double above = x > 0 ? x : 0;
  return above < most ? above : most;
}

// Whether a weight is neither none nor all.
bool SplitPositions(const double* position, int count, int last, int* sample,
                    unsigned short* weight) {
  const int lastBefore = last > 0 ? last - 1 : 0;
  int between = 0;
  for (int k = 0; k < count; ++k) {
    const double at = Limit(position[k], last);
    const int whole = static_cast<int>(at), before = whole < lastBefore ? whole : lastBefore;
    const int next = kWeightOne - static_cast<int>((1 - (at - before)) * kWeightOne + 0.5);
    sample[k] = before;
    weight[k] = static_cast<unsigned short>(next);
    between |= next % kWeightOne;
  }
  return between != 0;
}

// The samples first .. end - 1 that have a weight, unless all have. False if one sample's all do.
bool FindWeights(const AxisTaps& taps, int* first, int* end) {
  for (ptrdiff_t i = 0; i < taps.count; ++i) {
    const short* const w = taps.weights + i * taps.taps;
    int low = 0, high = taps.taps;
    while (w[low] == 0) ++low;
    while (w[high - 1] == 0) --high;
    if (high - low == taps.taps) return false;
    first[i] = taps.first[i] + low;
    end[i] = taps.first[i] + high;
  }
  return true;
}

// Weights are moved to fewer taps from other samples.
void MoveWeights(const int* first, int count, AxisTaps* taps) {
  for (ptrdiff_t i = 0; i < taps->count; ++i) {
    short from[kMaxTaps];
    memcpy(from, taps->weights + i * taps->taps, sizeof(short) * taps->taps);
    const int ahead = first[i] - taps->first[i];
    taps->first[i] = first[i];
    for (int t = 0; t < count; ++t) {
      const int at = t + ahead;
      taps->weights[i * count + t] = at >= 0 && at < taps->taps ? from[at] : short{0};
    }
  }
  taps->taps = count;
}

}  // namespace

void NearestSamples(const SampleAxis& axis, int* sample) {
  ForEachChunk(axis, [&](int i, int count, const double* position) {
    for (int k = 0; k < count; ++k)
      sample[i + k] = static_cast<int>(Limit(position[k] + 0.5, axis.length - 1));
  });
}

int LinearSamples(const SampleAxis& axis, int* sample, unsigned short* weight) {
  bool isBetween = false;
  ForEachChunk(axis, [&](int i, int count, const double* position) {
    isBetween |= SplitPositions(position, count, axis.length - 1, sample + i, weight + i);
  });
  if (isBetween) return 1;
  for (int i = 0; i < axis.count; ++i) {
    sample[i] += weight[i] / kWeightOne;
    weight[i] = 0;
  }
  return 0;
}

void NarrowTaps(const SampleAxis& axis, const FilterShape& shape, void* work, AxisTaps* taps) {
  auto* const position = static_cast<double*>(work);
  PositionsOf(axis, 0, axis.count, position);
  BuildTaps({axis.count, position, axis.length}, shape.code, taps, shape.cubic);
  // Positions are needed no more.
  auto* const first = static_cast<int*>(work);
  int* const end = first + axis.count;
  if (FindWeights(*taps, first, end))
    MoveWeights(first, FitTaps(axis.count, axis.length, first, end), taps);
}

}  // namespace qv
