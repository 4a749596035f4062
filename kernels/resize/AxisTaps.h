// Which source samples make a destination sample, and with which weights, along one axis.
#ifndef QV_KERNELS_RESIZE_AXISTAPS_H
#define QV_KERNELS_RESIZE_AXISTAPS_H

#include "kernels/KeysCubic.h"

namespace qv {

// Where the destination samples of one axis lie, in source samples from the region's origin, in
// ascending order. Samples 0 .. sourceLength-1 may be read. Any double is accepted: positions far
// outside (and those that are not a number) take the nearest edge sample.
struct AxisPositions {
  int count;
  const double* position;
  int sourceLength;
};

// Destination sample i is the sum of weights[i * taps + t] times source sample first[i] + t,
// t = 0 .. taps-1. 16384 stands for 1.0 and each row of weights sums to exactly that; first never
// descends. Taps beyond the region are folded into the weight of its edge sample, so that first[i]
// .. first[i] + taps - 1 are always inside 0 .. sourceLength-1.
struct AxisTaps {
  int count;
  int taps;
  int* first;      // count
  short* weights;  // count * taps
};

// What the positive weights of a sample may add up to at most, and the negative ones at least.
constexpr double kMostWeight = 1.5, kLeastWeight = -0.5;

// Taps of the four-tap cubic (4, see KeysCubic.h) and six-tap Lanczos (16, three lobes,
// normalised) methods, fewer if the region is shorter.
int TapCount(int interpolation, int sourceLength);

// Fills taps->first and taps->weights, whose memory the caller provides; taps->count and taps->taps
// are positions.count and TapCount(). `a` is the cubic's parameter, -1 to 0.
void BuildTaps(const AxisPositions& positions, int interpolation, AxisTaps* taps,
               double a = kKeysA);

// Area averaging along one axis: with n = first + i, destination sample i is the mean of the source
// over the interval from n * inverse - origin to (n + 1) * inverse - origin, each source sample
// weighted by the share of it that is covered. Intervals are clipped to 0 .. sourceLength; one that
// lies outside takes the edge sample. That the parts of a destination agree where they meet, they
// count from the same origin.
struct AxisArea {
  int count;
  double inverse;  // source samples per destination sample, above 0
  int sourceLength;
  double first = 0;
  double origin = 0;
};

// The most source samples that one interval touches.
int AreaTapCount(const AxisArea& area);

// Most taps per axis that the filter takes.
constexpr int kMaxTaps = 12;

// Most taps per axis of area averaging by the filter. Over more it goes through spans.
constexpr int kMaxAreaTaps = 8;

// The intervals as taps, for an AreaTapCount() of up to kMaxAreaTaps; taps->taps is AreaTapCount().
void BuildAreaTaps(const AxisArea& area, AxisTaps* taps);

// One interval of any length: source samples first .. last, the two ends with their own shares
// (if first == last, firstShare is the whole interval) and all others with the share `unit`.
struct AreaSpan {
  int first, last;
  unsigned firstShare, lastShare;
};

// The intervals of one axis. `unit` is a power of two: 4096, less if an interval is so long that
// the sum of its shares, sum(i), would pass 2^24 otherwise, but never below 1.
struct AxisSpans {
  int count;
  unsigned unit;
  AreaSpan* span;  // count
};

void BuildSpans(const AxisArea& area, AxisSpans* spans);

// Sum of the shares of a span. Always inlined: row sources of several levels share this header.
__attribute__((always_inline)) constexpr unsigned long long SpanTotal(const AreaSpan& s,
                                                                      unsigned unit) {
  return s.first == s.last
             ? s.firstShare
             : 0ull + s.firstShare + s.lastShare +
                   static_cast<unsigned long long>(s.last - s.first - 1) * unit;
}

}  // namespace qv

#endif
