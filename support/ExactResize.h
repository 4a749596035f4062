// What resampling would give without rounding: weights in double precision.
#ifndef QV_SUPPORT_EXACTRESIZE_H
#define QV_SUPPORT_EXACTRESIZE_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace qv::test {

// A destination sample of one axis: source samples with their weights, which sum to 1.
using Sample = std::vector<std::pair<int, double>>;

// Linear; Keys 1981, whose a is the parameter; Lanczos with so many lobes.
inline double Kernel(int code, double x, double parameter) {
  x = std::fabs(x);
  if (code == 2) return std::max(0.0, 1 - x);
  if (code == 4) {
    const double a = parameter;
    return x < 1   ? ((a + 2) * x - (a + 3)) * x * x + 1
           : x < 2 ? ((a * x - 5 * a) * x + 8 * a) * x - 4 * a
                   : 0;
  }
  if (x < 1e-9) return 1;
  return x < parameter ? parameter * std::sin(M_PI * x) * std::sin(M_PI * x / parameter) /
                             (M_PI * M_PI * x * x)
                       : 0;
}

// Those of this library.
inline double Kernel(int code, double x) { return Kernel(code, x, code == 4 ? -0.5 : 3); }

inline Sample ExactTaps(int code, double position, int length) {
  const int taps = code == 2 ? 2 : code == 4 ? 4 : 6;
  // NaN, too, is far before the first sample.
  const double clamped = position > -10 ? std::min(position, length + 10.0) : -10;
  const int first = static_cast<int>(std::floor(clamped)) - taps / 2 + 1;
  Sample sample;
  double sum = 0;
  for (int s = first; s < first + taps; ++s) {
    sample.push_back({std::clamp(s, 0, length - 1), Kernel(code, clamped - s)});
    sum += sample.back().second;
  }
  for (auto& [s, w] : sample) w /= sum;
  return sample;
}

inline Sample ExactMean(double from, double to, int length) {
  from = std::max(from, 0.0);
  to = std::min(to, double(length));
  Sample sample;
  for (int s = static_cast<int>(std::min(from, 1e9)); s < to && s < length; ++s)
    sample.push_back({s, (std::min(to, s + 1.0) - std::max(from, double(s))) / (to - from)});
  if (sample.empty()) sample.push_back({length - 1, 1});
  return sample;
}

// Of bytes. Where the exact value is limited to black or white everybody is right: those do not
// count for the mean.
struct Errors {
  double largest = 0, sum = 0;
  long long count = 0;

  double Mean() const { return sum / static_cast<double>(std::max(count, 1LL)); }

  void Add(double exact, int byte) {
    const double limited = std::clamp(exact, 0.0, 255.0), error = std::fabs(limited - byte);
    largest = std::max(largest, error);
    if (limited > 0 && limited < 255) sum += error, ++count;
  }

  // Compares a byte with the sum over its samples; the first ones are `pixel` bytes apart.
  void Add(const unsigned char* src, std::ptrdiff_t step, int pixel, const Sample& x,
           const Sample& y, int byte) {
    double exact = 0;
    for (const auto& [sy, wy] : y)
      for (const auto& [sx, wx] : x) exact += wy * wx * src[sy * step + std::ptrdiff_t{sx} * pixel];
    Add(exact, byte);
  }
};

}  // namespace qv::test

#endif
