#include "kernels/resample/FilterShapes.h"

#include "kernels/resize/Resize.h"

namespace qv {

namespace {

constexpr double kPi = 3.14159265358979323846;

// sin(pi x): the power series on -0.5 .. 0.5, where what is left out is below 1e-15.
double SinPi(double x) {
  auto whole = static_cast<long long>(x + (x < 0 ? -0.5 : 0.5));
  const double a = (x - static_cast<double>(whole)) * kPi, square = a * a;
  double sum = 0;
  for (int n = 17; n >= 3; n -= 2) sum = (1 + sum) * (-square / (n * (n - 1)));
  const double sine = a * (1 + sum);
  return whole % 2 == 0 ? sine : -sine;
}

// A point on the unit circle that turns.
struct Turn {
  double sine, cosine;

  // By pi * x.
  explicit Turn(double x) : sine(SinPi(x)), cosine(SinPi(x + 0.5)) {}
  void By(const Turn& other) {
    const double s = sine * other.cosine + cosine * other.sine;
    cosine = cosine * other.cosine - sine * other.sine;
    sine = s;
  }
};

// sinc(x) sinc(x / 3). Every sample turns two sines by the same angles.
void LanczosWeights(double x, double step, int count, double* w) {
  Turn whole(x), third(x / 3);
  const Turn wholeStep(step), thirdStep(step / 3);
  for (int t = 0; t < count; ++t) {
    const double at = x + t * step, square = at * at;
    // Close to 0 the first term of the series, the next one being below 1e-11.
    w[t] = square >= 9     ? 0
           : square < 1e-6 ? 1 - square * (kPi * kPi * 10 / 54)
                           : whole.sine * third.sine * 3 / (kPi * kPi * square);
    whole.By(wholeStep);
    third.By(thirdStep);
  }
}

// Mitchell and Netravali's family; Keys' cubics are those with b = 0 and c = -a.
void CubicWeights(double b, double c, double x, double step, int count, double* w) {
  for (int t = 0; t < count; ++t) {
    const double at = x + t * step, d = at < 0 ? -at : at;
    const double inner =
        ((12 - 9 * b - 6 * c) * d + (-18 + 12 * b + 6 * c)) * d * d + (6 - 2 * b);
    const double outer =
        (((-b - 6 * c) * d + (6 * b + 30 * c)) * d + (-12 * b - 48 * c)) * d + (8 * b + 24 * c);
    w[t] = (d < 1 ? inner : d < 2 ? outer : 0) / 6;
  }
}

void LinearWeights(double x, double step, int count, double* w) {
  for (int t = 0; t < count; ++t) {
    const double at = x + t * step, rest = 1 - (at < 0 ? -at : at);
    w[t] = rest > 0 ? rest : 0;
  }
}

}  // namespace

double RadiusOf(const FilterShape& shape) {
  return shape.code == InterpolateLinear ? 1 : shape.code == InterpolateLanczos ? 3 : 2;
}

void ShapeWeights(const FilterShape& shape, double x, double step, int count, double* w) {
  switch (shape.code) {
    case InterpolateLinear: return LinearWeights(x, step, count, w);
    case InterpolateLanczos: return LanczosWeights(x, step, count, w);
    case kMitchell: return CubicWeights(1.0 / 3, 1.0 / 3, x, step, count, w);
    default: return CubicWeights(0, -shape.cubic, x, step, count, w);
  }
}

}  // namespace qv
