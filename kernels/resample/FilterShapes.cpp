#include "kernels/resample/FilterShapes.h"

#include "kernels/resize/Resize.h"

namespace qv {

namespace {

constexpr double kPi = 3.14159265358979323846;

// sin(pi x): the power series on -0.5 .. 0.5, where what is left out is below 1e-13.
double SinPi(double x) {
  static constexpr double kOver[] = {-1.0 / 6,         1.0 / 120,          -1.0 / 5040,
                                     1.0 / 362880,     -1.0 / 39916800,    1.0 / 6227020800,
                                     -1.0 / 1307674368000, 1.0 / 355687428096000};
  const auto whole = static_cast<long long>(x + (x < 0 ? -0.5 : 0.5));
  const double a = (x - static_cast<double>(whole)) * kPi, square = a * a;
  double sum = 0;
  for (int n = 7; n >= 0; --n) sum = (sum + kOver[n]) * square;
  const double sine = a + a * sum;
  return whole % 2 == 0 ? sine : -sine;
}

}  // namespace

double RadiusOf(const FilterShape& shape) {
  return shape.code == InterpolateLinear ? 1 : shape.code == InterpolateLanczos ? 3 : 2;
}

// Mitchell and Netravali's family; Keys' cubics are those with B = 0 and C = -a.
FilterCurve::FilterCurve(const FilterShape& shape, double step)
    : code_(shape.code), step_(step), sine_(SinPi(step / 3)), cosine_(SinPi(step / 3 + 0.5)) {
  const double b = shape.code == kMitchell ? 1.0 / 3 : 0;
  const double c = shape.code == kMitchell ? 1.0 / 3 : -shape.cubic;
  inner_[0] = 1 - b / 3;
  inner_[1] = -3 + 2 * b + c;
  inner_[2] = 2 - 1.5 * b - c;
  outer_[0] = 4 * b / 3 + 4 * c;
  outer_[1] = -2 * b - 8 * c;
  outer_[2] = b + 5 * c;
  outer_[3] = -b / 6 - c;
}

void FilterCurve::Weights(double x, int count, double* w) const {
  switch (code_) {
    case InterpolateLinear: return Linear(x, count, w);
    case InterpolateLanczos: return Lanczos(x, count, w);
    default: return Cubic(x, count, w);
  }
}

void FilterCurve::Linear(double x, int count, double* w) const {
  for (int t = 0; t < count; ++t) {
    const double at = x + t * step_, rest = 1 - (at < 0 ? -at : at);
    w[t] = rest > 0 ? rest : 0;
  }
}

void FilterCurve::Cubic(double x, int count, double* w) const {
  for (int t = 0; t < count; ++t) {
    const double at = x + t * step_, d = at < 0 ? -at : at;
    const double inner = (inner_[2] * d + inner_[1]) * d * d + inner_[0];
    const double outer = ((outer_[3] * d + outer_[2]) * d + outer_[1]) * d + outer_[0];
    w[t] = d < 1 ? inner : d < 2 ? outer : 0;
  }
}

// sinc(x) sinc(x / 3): a point on the unit circle turns by a third of pi * step from one weight to
// the next, and sin(3 t) = sin(t) (3 - 4 sin(t)^2).
void FilterCurve::Lanczos(double x, int count, double* w) const {
  double sine = SinPi(x / 3), cosine = SinPi(x / 3 + 0.5);
  for (int t = 0; t < count; ++t) {
    const double at = x + t * step_, square = at * at, s = sine * sine;
    // Close to 0 the first term of the series, the next one being below 1e-11.
    w[t] = square >= 9     ? 0
           : square < 1e-6 ? 1 - square * (kPi * kPi * 10 / 54)
                           : s * (3 - 4 * s) * 3 / (kPi * kPi * square);
    const double turned = sine * cosine_ + cosine * sine_;
    cosine = cosine * cosine_ - sine * sine_;
    sine = turned;
  }
}

}  // namespace qv
