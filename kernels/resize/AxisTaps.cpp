#include "kernels/resize/AxisTaps.h"

#include <math.h>

namespace qv {

namespace {

constexpr double kOne = 16384.0;

// Weights of the taps at -half+1 .. half around a position whose fractional part is f in [0, 1).
void LinearWeights(double f, double* w) {
  w[0] = 1 - f;
  w[1] = f;
}

// Keys 1981, a = -0.5.
void CubicWeights(double f, double* w) {
  const double g = 1 - f;
  w[0] = -0.5 * f * g * g;
  w[1] = (1.5 * f - 2.5) * f * f + 1;
  w[2] = (1.5 * g - 2.5) * g * g + 1;
  w[3] = -0.5 * g * f * f;
}

double LanczosWindow(double x) {
  if (fabs(x) < 1e-8) return 1;
  const double t = M_PI * x;
  return 3 * sin(t) * sin(t / 3) / (t * t);
}

void LanczosWeights(double f, double* w) {
  double sum = 0;
  for (int t = 0; t < 6; ++t) sum += w[t] = LanczosWindow(f + 2 - t);
  for (int t = 0; t < 6; ++t) w[t] /= sum;
}

// Rounds weights that sum to 1 so that the rounded ones sum to 16384: what is missing goes, one by
// one, to the weights that rounding has changed most, so that none is a whole unit off.
void Quantise(const double* exact, int taps, short* weights) {
  int sum = 0;
  for (int t = 0; t < taps; ++t) {
    const int w = static_cast<int>(floor(exact[t] * kOne + 0.5));
    weights[t] = static_cast<short>(w);
    sum += w;
  }
  for (int missing = 16384 - sum; missing != 0;) {
    const int unit = missing > 0 ? 1 : -1;
    int most = 0;
    double error = -1e300;
    for (int t = 0; t < taps; ++t) {
      const double e = unit * (exact[t] * kOne - weights[t]);
      if (e > error) error = e, most = t;
    }
    weights[most] = static_cast<short>(weights[most] + unit);
    missing -= unit;
  }
}

int Clamp(long long x, int low, int high) {
  return x < low ? low : x > high ? high : static_cast<int>(x);
}

// The clipped interval of a sample; false if nothing is left of it.
bool ClippedInterval(const AxisArea& area, int i, double* from, double* to) {
  const double length = area.sourceLength;
  *from = (area.first + i) * area.inverse - area.origin;
  *to = (area.first + i + 1.0) * area.inverse - area.origin;
  if (!(*from < length)) return false;
  if (!(*to < length)) *to = length;
  // Planning lets no interval lie before the region by more than rounding.
  if (!(*from > 0)) *from = 0;
  if (!(*to > 0)) *to = 1e-3;
  return *to > *from;
}

// Covered samples first .. last of an interval inside the region. A sample of which less than
// kSliver is covered, which is what rounding of i * inverse leaves, does not count.
constexpr double kSliver = 1e-6;

void CoveredSamples(double from, double to, int length, int* first, int* last) {
  *first = Clamp(static_cast<int>(from), 0, length - 1);
  *last = Clamp(static_cast<int>(ceil(to)) - 1, *first, length - 1);
  if (*first < *last && *first + 1 - from < kSliver) ++*first;
  if (*first < *last && to - *last < kSliver) --*last;
}

}  // namespace

int TapCount(int interpolation, int sourceLength) {
  const int taps = interpolation == 2 ? 2 : interpolation == 4 ? 4 : 6;
  return sourceLength < taps ? sourceLength : taps;
}

void BuildTaps(const AxisPositions& positions, int interpolation, AxisTaps* taps) {
  const int length = positions.sourceLength;
  const int full = TapCount(interpolation, 6);
  const int kept = taps->taps;
  for (int i = 0; i < positions.count; ++i) {
    // Six samples outside, every tap is the edge sample: no need to go further, nor to convert what
    // an integer cannot hold.
    double p = positions.position[i];
    if (!(p > -6)) p = -6;
    if (p > length + 6.0) p = length + 6.0;
    const double whole = floor(p);
    const long long origin = static_cast<long long>(whole) - (full / 2 - 1);
    double w[6], folded[6] = {};
    if (full == 2) LinearWeights(p - whole, w);
    else if (full == 4) CubicWeights(p - whole, w);
    else LanczosWeights(p - whole, w);
    const int first = Clamp(origin, 0, length - kept);
    for (int t = 0; t < full; ++t) folded[Clamp(origin + t, 0, length - 1) - first] += w[t];
    taps->first[i] = first;
    Quantise(folded, kept, taps->weights + static_cast<long long>(i) * kept);
  }
}

int AreaTapCount(const AxisArea& area) {
  // An interval of length n touches at most ceil(n) + 1 samples; a whole n that starts on a sample
  // each time touches n only.
  int most = 1;
  for (int i = 0; i < area.count; ++i) {
    double from, to;
    if (!ClippedInterval(area, i, &from, &to)) break;
    int first, last;
    CoveredSamples(from, to, area.sourceLength, &first, &last);
    if (last - first + 1 > most) most = last - first + 1;
  }
  return most;
}

void BuildAreaTaps(const AxisArea& area, AxisTaps* taps) {
  const int length = area.sourceLength, kept = taps->taps;
  for (int i = 0; i < area.count; ++i) {
    double exact[kMaxTaps] = {};
    double from, to;
    int first = length - 1, last = length - 1;
    if (ClippedInterval(area, i, &from, &to)) {
      CoveredSamples(from, to, length, &first, &last);
    } else {
      from = length - 1;
      to = length;
    }
    const int window = Clamp(first, 0, length - kept);
    double sum = 0;
    for (int s = first; s <= last; ++s) {
      const double low = from > s ? from : s, high = to < s + 1.0 ? to : s + 1.0;
      sum += exact[s - window] = high - low;
    }
    for (int t = 0; t < kept; ++t) exact[t] /= sum;
    taps->first[i] = window;
    Quantise(exact, kept, taps->weights + static_cast<long long>(i) * kept);
  }
}

void BuildSpans(const AxisArea& area, AxisSpans* spans) {
  const int length = area.sourceLength;
  // No interval touches more than this many samples, nor has more than this many shares of `unit`.
  const double longest = area.inverse < length ? area.inverse + 2 : length;
  spans->unit = 4096;
  while (spans->unit > 1 && longest * spans->unit > 16777216.0) spans->unit /= 2;
  const double unit = spans->unit;
  for (int i = 0; i < area.count; ++i) {
    double from, to;
    AreaSpan s = {length - 1, length - 1, spans->unit, 0};
    if (ClippedInterval(area, i, &from, &to)) {
      CoveredSamples(from, to, length, &s.first, &s.last);
      if (s.first < s.last) {
        const double head = s.first + 1 - from, tail = to - s.last;
        s.firstShare = static_cast<unsigned>((head < 1 ? head : 1) * unit + 0.5);
        s.lastShare = static_cast<unsigned>((tail < 1 ? tail : 1) * unit + 0.5);
        // Both may have been rounded away.
        if (SpanTotal(s, spans->unit) == 0) s.firstShare = 1;
      }
    }
    spans->span[i] = s;
  }
}

}  // namespace qv
