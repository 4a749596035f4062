#include "kernels/resize/AxisTaps.h"

#include <math.h>
#include <stddef.h>
#include <string.h>

namespace qv {

namespace {

// Positions are taken in chunks, so that the compiler can work on several at once. Single precision
// serves: it is off by less than a hundredth of a unit of the weights.
constexpr int kChunk = 64;

// Weights of the taps around positions with fractional part f in [0, 1), tap by tap.
using ChunkWeights = float[6][kChunk];

void CubicWeights(const float* fractions, int count, float a, ChunkWeights& w) {
  // The outer two of a = -1 make -f g, of -1/4 at the least.
  static_assert(1.25 <= kMostWeight && -0.25 >= kLeastWeight);
  for (int i = 0; i < count; ++i) {
    const float f = fractions[i], g = 1 - f;
    w[0][i] = a * f * g * g;
    w[1][i] = ((a + 2) * f - (a + 3)) * f * f + 1;
    w[2][i] = ((a + 2) * g - (a + 3)) * g * g + 1;
    w[3][i] = a * g * f * f;
  }
}

// sinc(x) sinc(x / 3), |x| < 3, of the six taps, divided by their sum. With u = f - 0.5, the
// weights of tap k and of its mirror image 5 - k are E(u^2) + u O(u^2) and E(u^2) - u O(u^2); E
// and O are interpolated at five Chebyshev nodes each, which leaves an error of 1.4e-6 at the most.
void LanczosWeights(const float* fractions, int count, ChunkWeights& w) {
  static constexpr float kEven[3][5] = {
      {0.0244565218f, -0.0881212090f, -0.0569745537f, 0.0789541984f, -0.0253755572f},
      {-0.1358695651f, 0.5707696464f, -0.1142294485f, 0.0299635371f, -0.0389015263f},
      {0.6114130433f, -0.4826484374f, 0.1712040021f, -0.1089177354f, 0.0642770835f}};
  static constexpr float kOdd[3][5] = {
      {-0.0639244408f, 0.3100013644f, -0.2420674621f, 0.1137958824f, -0.0576473943f},
      {0.1811594199f, -0.8415398934f, 0.5261333752f, -0.2695491435f, 0.1420703347f},
      {-1.3366715837f, 1.5453341398f, -0.9109620424f, 0.5342850296f, -0.2757033452f}};
  for (int k = 0; k < 3; ++k) {
    const float *e = kEven[k], *o = kOdd[k];
    for (int i = 0; i < count; ++i) {
      const float u = fractions[i] - 0.5f, v = u * u;
      const float even = (((e[4] * v + e[3]) * v + e[2]) * v + e[1]) * v + e[0];
      const float odd = ((((o[4] * v + o[3]) * v + o[2]) * v + o[1]) * v + o[0]) * u;
      w[k][i] = even + odd;
      w[5 - k][i] = even - odd;
    }
  }
}

void WeightsOf(int interpolation, const float* f, int count, double a, ChunkWeights& w) {
  if (interpolation == 4) CubicWeights(f, count, static_cast<float>(a), w);
  else LanczosWeights(f, count, w);
}

// A running sum of weights in units of 1/16384, rounded. The rounded weights are its differences:
// each is less than a unit off, any run of them too, and all together sum to 16384.
constexpr float kOne = 16384;
constexpr int kBias = 32768;  // keeps the sum positive, where conversion rounds down

int RoundedSum(float sum) { return static_cast<int>(sum * kOne + (kBias + 0.5f)); }

void StoreWeights(const float* exact, int taps, short* weights) {
  float sum = 0;
  int before = kBias;
  for (int t = 0; t < taps; ++t) {
    sum += exact[t];
    const int after = t == taps - 1 ? kBias + 16384 : RoundedSum(sum);
    weights[t] = static_cast<short>(after - before);
    before = after;
  }
}

// The same for the weights of a chunk, kTaps of them.
template <int kTaps>
void StoreChunk(const ChunkWeights& w, int count, short* weights) {
  int pairs[kTaps / 2][kChunk];
  float sum[kChunk];
  int before[kChunk];
  for (int i = 0; i < count; ++i) {
    sum[i] = 0;
    before[i] = kBias;
  }
  for (int t = 0; t < kTaps; t += 2)
    for (int i = 0; i < count; ++i) {
      const float low = sum[i] + w[t][i], high = low + w[t + 1][i];
      const int middle = RoundedSum(low);
      const int after = t == kTaps - 2 ? kBias + 16384 : RoundedSum(high);
      sum[i] = high;
      pairs[t / 2][i] = ((middle - before[i]) & 0xFFFF) | (after - middle) << 16;
      before[i] = after;
    }
  for (int i = 0; i < count; ++i)
    for (int p = 0; p < kTaps / 2; ++p) memcpy(weights + i * kTaps + 2 * p, &pairs[p][i], 4);
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
  const int taps = interpolation == 4 ? 4 : 6;
  return sourceLength < taps ? sourceLength : taps;
}

void BuildTaps(const AxisPositions& positions, int interpolation, AxisTaps* taps, double a) {
  const int length = positions.sourceLength, kept = taps->taps;
  const int full = TapCount(interpolation, 6);
  const int before = full / 2 - 1;  // taps left of the position's sample
  for (ptrdiff_t start = 0; start < positions.count; start += kChunk) {
    const int count =
        positions.count - start < kChunk ? static_cast<int>(positions.count - start) : kChunk;
    // Six samples outside, every tap is the edge sample: no need to go further, nor to convert what
    // an int cannot hold.
    double whole[kChunk];
    float f[kChunk];
    for (int i = 0; i < count; ++i) {
      double p = positions.position[start + i];
      if (!(p > -6)) p = -6;
      if (p > length + 6.0) p = length + 6.0;
      // Truncated in steps of 2^30 to stay inside an int on both sides.
      const double part = p < 0x1p30 ? -8.0 : 0x1p30;
      whole[i] = static_cast<int>(p - part) + part;
      f[i] = static_cast<float>(p - whole[i]);
    }
    ChunkWeights w;
    WeightsOf(interpolation, f, count, a, w);
    short* const weights = taps->weights + start * kept;
    if (kept == full) {
      if (full == 4) StoreChunk<4>(w, count, weights);
      else StoreChunk<6>(w, count, weights);
    }
    for (int i = 0; i < count; ++i) {
      const double origin = whole[i] - before;
      if (origin >= 0 && origin + full <= length) {
        taps->first[start + i] = static_cast<int>(origin);
        continue;
      }
      // Fold the taps outside into the edge samples.
      const int first = origin < 0 || kept < full ? 0 : length - kept;
      float folded[6] = {};
      for (int t = 0; t < full; ++t) {
        const double s = origin + t;
        folded[(s < 0 ? 0 : s < length ? static_cast<int>(s) : length - 1) - first] += w[t][i];
      }
      taps->first[start + i] = first;
      StoreWeights(folded, kept, weights + static_cast<ptrdiff_t>(i) * kept);
    }
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
    double from, to;
    int first = length - 1, last = length - 1;
    if (ClippedInterval(area, i, &from, &to)) {
      CoveredSamples(from, to, length, &first, &last);
    } else {
      from = length - 1;
      to = length;
    }
    // Slivers that do not count are cut off.
    if (from < first) from = first;
    if (to > last + 1.0) to = last + 1.0;
    const int window = first < length - kept ? first : length - kept;
    const double scale = 1 / (to - from);
    float exact[kMaxAreaTaps] = {};
    for (int s = first; s <= last; ++s) {
      const double low = from > s ? from : s, high = to < s + 1.0 ? to : s + 1.0;
      exact[s - window] = static_cast<float>((high - low) * scale);
    }
    taps->first[i] = window;
    StoreWeights(exact, kept, taps->weights + static_cast<ptrdiff_t>(i) * kept);
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
