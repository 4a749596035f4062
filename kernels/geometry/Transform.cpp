#include "kernels/geometry/Transform.h"

#include <float.h>
#include <limits.h>
#include <math.h>
#include <string.h>

namespace qv {

namespace {

bool IsRegion(IppiRect roi) {
  return roi.x >= 0 && roi.y >= 0 && roi.width >= 1 && roi.height >= 1;
}

double Min(double a, double b) { return b < a ? b : a; }
double Max(double a, double b) { return a < b ? b : a; }

// Cofactors, transposed: the inverse times the determinant.
void Adjugate(const double m[3][3], double a[3][3]) {
  a[0][0] = m[1][1] * m[2][2] - m[1][2] * m[2][1];
  a[0][1] = m[0][2] * m[2][1] - m[0][1] * m[2][2];
  a[0][2] = m[0][1] * m[1][2] - m[0][2] * m[1][1];
  a[1][0] = m[1][2] * m[2][0] - m[1][0] * m[2][2];
  a[1][1] = m[0][0] * m[2][2] - m[0][2] * m[2][0];
  a[1][2] = m[0][2] * m[1][0] - m[0][0] * m[1][2];
  a[2][0] = m[1][0] * m[2][1] - m[1][1] * m[2][0];
  a[2][1] = m[0][1] * m[2][0] - m[0][0] * m[2][1];
  a[2][2] = m[0][0] * m[1][1] - m[0][1] * m[1][0];
}

// The binary exponent of the largest of nine numbers; INT_MIN if one of them is not finite, or all
// are 0.
int LargestExponent(const double m[3][3]) {
  double largest = 0;
  for (int i = 0; i < 9; ++i) {
    const double size = fabs(m[i / 3][i % 3]);
    if (!(size <= DBL_MAX)) return INT_MIN;
    largest = Max(largest, size);
  }
  int exponent = INT_MIN;
  if (largest > 0) frexp(largest, &exponent);
  return exponent;
}

}  // namespace

Corners CornersOf(IppiRect roi) {
  return {static_cast<double>(roi.x), static_cast<double>(roi.y),
          static_cast<double>(static_cast<long long>(roi.x) + roi.width - 1),
          static_cast<double>(static_cast<long long>(roi.y) + roi.height - 1)};
}

int CheckQuadrangle(const double quad[4][2]) {
  const double x0 = quad[0][0], y0 = quad[0][1], x1 = quad[1][0], y1 = quad[1][1];
  const double x2 = quad[2][0], y2 = quad[2][1], x3 = quad[3][0], y3 = quad[3][1];
  const double t3 = (x3 - x2) * (y0 - y3) - (x0 - x3) * (y3 - y2);
  const double t0 = (x0 - x3) * (y1 - y0) - (y0 - y3) * (x1 - x0);
  const double t1 = (x1 - x0) * (y2 - y1) - (y1 - y0) * (x2 - x1);
  const double t2 = (x2 - x1) * (y3 - y2) - (x3 - x2) * (y2 - y1);
  const double turns[] = {t3, t0, t1, t2};
  for (const double t : turns)
    if (!(t < 0 || t > 0)) return StatusBadArgErr;
  const bool positive = t3 > 0;
  if ((t0 > 0) != positive || (t1 > 0) != positive || (t2 > 0) != positive)
    return StatusQuadSignErr;
  return positive;
}

void PerspectiveRectToQuad(const Corners& rect, const double quad[4][2], double coeffs[3][3],
                           int* orientation, bool forward) {
  const double x0 = quad[0][0], y0 = quad[0][1], x1 = quad[1][0], y1 = quad[1][1];
  const double x2 = quad[2][0], y2 = quad[2][1], x3 = quad[3][0], y3 = quad[3][1];
  *orientation = (x3 - x2) * (y0 - y3) - (x0 - x3) * (y3 - y2) > 0;

  const double sx = 1.0 / (rect.x1 - rect.x0), sy = 1.0 / (rect.y1 - rect.y0);
  const double px = (x0 - x3) + (x2 - x1), py = (y0 - y3) + (y2 - y1);
  // Minus the cross product at corner 2: not 0 for a quadrilateral that CheckQuadrangle accepts.
  const double r = 1 / ((x3 - x2) * (y2 - y1) - (x2 - x1) * (y3 - y2));
  const double g = ((y3 - y2) * px - py * (x3 - x2)) * r;
  const double h = (px * (y2 - y1) - py * (x2 - x1)) * r;
  double m[3][3];
  m[0][0] = ((x1 - x0) + x1 * g) * sx;
  m[0][1] = (x3 * h - (x0 - x3)) * sy;
  m[0][2] = x0 - rect.x0 * m[0][0] - rect.y0 * m[0][1];
  m[1][0] = (y1 * g + (y1 - y0)) * sx;
  m[1][1] = (y3 * h - (y0 - y3)) * sy;
  m[1][2] = y0 - rect.x0 * m[1][0] - rect.y0 * m[1][1];
  m[2][0] = g * sx;
  m[2][1] = h * sy;
  m[2][2] = 1 - rect.x0 * m[2][0] - rect.y0 * m[2][1];
  if (!forward) return Adjugate(m, coeffs);
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 3; ++k) coeffs[i][k] = m[i][k];
}

double ReduceAngle(double angle) {
  const double turns = trunc(angle / 360.0);
  const double rest = angle - turns * 360.0;
  return rest < 0 ? rest + 360.0 : rest;
}

void RotationCoefficients(double angle, double xShift, double yShift, double coeffs[2][3]) {
  const double a = ReduceAngle(angle);
  double cosine, sine;
  if (a == 0) {
    cosine = 1, sine = 0;
  } else if (a == 90) {
    cosine = 0, sine = 1;
  } else if (a == 180) {
    cosine = -1, sine = 0;
  } else if (a == 270) {
    cosine = 0, sine = -1;
  } else {
    const double t = a / 180.0 * 3.141592653589793;
    cosine = cos(t), sine = sin(t);
  }
  coeffs[0][0] = cosine;
  coeffs[0][1] = sine;
  coeffs[0][2] = xShift;
  coeffs[1][0] = -sine;
  coeffs[1][1] = cosine;
  coeffs[1][2] = yShift;
}

void TransformRectCorners(const double coeffs[2][3], const Corners& rect, double quad[4][2]) {
  for (int i = 0; i < 4; ++i) {
    const double x = i == 1 || i == 2 ? rect.x1 : rect.x0, y = i < 2 ? rect.y0 : rect.y1;
    for (int k = 0; k < 2; ++k)
      quad[i][k] = coeffs[k][0] * x + coeffs[k][1] * y + coeffs[k][2];
  }
}

void ProjectRectCorners(const double coeffs[3][3], const Corners& rect, double quad[4][2]) {
  for (int i = 0; i < 4; ++i) {
    const double x = i == 1 || i == 2 ? rect.x1 : rect.x0, y = i < 2 ? rect.y0 : rect.y1;
    const double w = coeffs[2][0] * x + coeffs[2][1] * y + coeffs[2][2];
    for (int k = 0; k < 2; ++k)
      quad[i][k] = (coeffs[k][0] * x + coeffs[k][1] * y + coeffs[k][2]) / w;
  }
}

void BoundingBoxOfQuad(const double quad[4][2], double bound[2][2]) {
  for (int k = 0; k < 2; ++k) {
    bound[0][k] = Min(Min(quad[0][k], quad[1][k]), Min(quad[2][k], quad[3][k]));
    bound[1][k] = Max(Max(quad[0][k], quad[1][k]), Max(quad[2][k], quad[3][k]));
  }
}

IppStatus GetPerspectiveTransform_64f(IppiRect srcRoi, const double quad[4][2],
                                      double coeffs[3][3]) {
  if (!IsRegion(srcRoi)) return StatusSizeErr;
  if (CheckQuadrangle(quad) < 0) return StatusQuadErr;
  const Corners rect = CornersOf(srcRoi);
  if (rect.x1 - rect.x0 < 1 || rect.y1 - rect.y0 < 1) return StatusRectErr;
  int orientation;
  PerspectiveRectToQuad(rect, quad, coeffs, &orientation, true);
  return StatusOk;
}

IppStatus GetRotateBound_64f(IppiRect srcRoi, double bound[2][2], double angle, double xShift,
                             double yShift) {
  if (!IsRegion(srcRoi)) return StatusSizeErr;
  double coeffs[2][3], quad[4][2];
  RotationCoefficients(angle, xShift, yShift, coeffs);
  TransformRectCorners(coeffs, CornersOf(srcRoi), quad);
  BoundingBoxOfQuad(quad, bound);
  return StatusOk;
}

IppStatus InvertTransform_64f(const double coeffs[3][3], double inverse[3][3]) {
  // Brought to entries of up to 1 by a power of two, which is exact, so that products of three do
  // not overflow.
  const int exponent = LargestExponent(coeffs);
  if (exponent == INT_MIN) return StatusCoeffErr;
  double m[3][3], adjugate[3][3];
  for (int i = 0; i < 9; ++i) m[i / 3][i % 3] = ldexp(coeffs[i / 3][i % 3], -exponent);
  Adjugate(m, adjugate);
  double determinant = 0, magnitude = 0;
  for (int i = 0; i < 3; ++i) {
    determinant += m[0][i] * adjugate[i][0];
    const int a = (i + 1) % 3, b = (i + 2) % 3;
    magnitude += fabs(m[0][i]) * (fabs(m[1][a] * m[2][b]) + fabs(m[1][b] * m[2][a]));
  }
  // The six products and their sums round by 2^-50 of what they add up to without signs at most.
  if (!(fabs(determinant) > 0x1p-50 * magnitude)) return StatusCoeffErr;
  double result[3][3];
  for (int i = 0; i < 9; ++i) {
    // 0 is added to make no zero negative.
    const double scaled = adjugate[i / 3][i % 3] / determinant + 0.0;
    result[i / 3][i % 3] = ldexp(scaled, -exponent);
    if (!(fabs(result[i / 3][i % 3]) <= DBL_MAX)) return StatusCoeffErr;
  }
  memcpy(inverse, result, sizeof result);
  return StatusOk;
}

IppStatus RotationCanvas_64f(IppiSize size, double angle, IppiSize* canvas, double shift[2]) {
  if (size.width < 1 || size.height < 1) return StatusSizeErr;
  if (!(fabs(angle) <= DBL_MAX)) return StatusCoeffErr;
  double bound[2][2];
  GetRotateBound_64f({0, 0, size.width, size.height}, bound, angle, 0, 0);
  int lengths[2];
  double shifts[2];
  for (int k = 0; k < 2; ++k) {
    // What sines and cosines are off by must not cost a pixel.
    const double length = ceil(bound[1][k] - bound[0][k] - 1e-6) + 1;
    if (length > INT_MAX) return StatusOutOfRangeErr;
    lengths[k] = static_cast<int>(length);
    shifts[k] = (length - 1 - bound[0][k] - bound[1][k]) / 2;
  }
  *canvas = {lengths[0], lengths[1]};
  memcpy(shift, shifts, sizeof shifts);
  return StatusOk;
}

}  // namespace qv
