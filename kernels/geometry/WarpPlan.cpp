#include "kernels/geometry/WarpPlan.h"

#include <math.h>

namespace qv {

namespace {

constexpr double kOne = 1 << kWarpBits;

// A segment's polynomial is worth c0 at its centre and moves from there by at most kReach pixels,
// so that it stays above 0, where truncation is floor, and below 2^22, where a float still has
// two bits below a step of the position.
constexpr double kReach = 126;
constexpr double kCentre = (kReach + 1) * kOne;

// Makes positions of up to 31 bits and a sign positive. Below 2^47 a double still holds 1/64 of a
// step.
constexpr double kOffset = 0x1p46;

// Largest distance in pixels between a segment's cubic and the true positions.
constexpr double kFitError = 1.0 / 32768;

double Clamp(double v, double low, double high) { return v < low ? low : v > high ? high : v; }

// The inverse of a matrix up to a factor, such that its third component is above 0 where it comes
// back from (x, y). False if there is none that doubles can hold.
bool InvertFor(const double c[3][3], double x, double y, double m[3][3]) {
  double largest = 0;
  for (int i = 0; i < 9; ++i) {
    const double v = fabs(c[i / 3][i % 3]);
    if (!(v <= 1.7e308)) return false;
    if (v > largest) largest = v;
  }
  // Scaled by a power of two, which is exact, no product below can overflow.
  int exponent;
  frexp(largest, &exponent);
  double n[3][3];
  for (int i = 0; i < 9; ++i) n[i / 3][i % 3] = ldexp(c[i / 3][i % 3], -exponent);
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 3; ++k) {
      const int a = (k + 1) % 3, b = (k + 2) % 3, d = (i + 1) % 3, e = (i + 2) % 3;
      m[i][k] = n[a][d] * n[b][e] - n[a][e] * n[b][d];
    }
  const double det = n[0][0] * m[0][0] + n[0][1] * m[1][0] + n[0][2] * m[2][0];
  const double w = n[2][0] * x + n[2][1] * y + n[2][2];
  if (!(det > 0 || det < 0) || !(w > 0 || w < 0)) return false;
  const double sign = (det > 0) == (w > 0) ? 1 : -1;
  for (int i = 0; i < 9; ++i) m[i / 3][i % 3] *= sign;
  return true;
}

}  // namespace

WarpPlan::WarpPlan(const double coeffs[3][3], const Corners& source, const Corners& destination,
                   IppiInterpolation method)
    : base_{-static_cast<long long>(kOffset + kCentre) -
                static_cast<long long>(source.x0) * (1 << kWarpBits),
            -static_cast<long long>(kOffset + kCentre) -
                static_cast<long long>(source.y0) * (1 << kWarpBits)},
      inner_{{source.x0 + 1.5, source.x1 - 3.5}, {source.y0 + 1.5, source.y1 - 3}},
      low_{source.x0 - kTolerance, source.y0 - kTolerance},
      high_{source.x1 + kTolerance, source.y1 + kTolerance},
      destination_(destination),
      // Positions are truncated to what the method tells apart: a whole pixel, a step of the
      // position, a phase of the cubic table. Half of that makes it rounding to nearest.
      bias_(method == InterpolateNearest  ? kOne / 2
            : method == InterpolateLinear ? 0.5
                                          : kOne / kCubicPhases / 2),
      affine_(coeffs[2][0] == 0 && coeffs[2][1] == 0),
      rows_{0, -1} {
  regular_ = InvertFor(coeffs, (source.x0 + source.x1) / 2, (source.y0 + source.y1) / 2, m_);
  if (!regular_) return;
  if (affine_) {
    const double w = m_[2][2];
    for (int i = 0; i < 9; ++i) m_[i / 3][i % 3] /= w;
  }
  isLine_ = affine_;
  for (int axis = 0; axis < 2; ++axis) {
    const double reach = fabs(m_[axis][0]) * (kWarpBlock / 2);
    isLine_ = isLine_ && reach <= kReach;
    lineInner_[axis][0] = inner_[axis][0] + reach;
    lineInner_[axis][1] = inner_[axis][1] - reach;
  }
  FindRows(coeffs);
}

bool WarpSourcePosition(const double coeffs[3][3], const Corners& source, double x, double y,
                        double position[2]) {
  double m[3][3];
  if (!InvertFor(coeffs, (source.x0 + source.x1) / 2, (source.y0 + source.y1) / 2, m))
    return false;
  const double w = m[2][0] * x + m[2][1] * y + m[2][2];
  if (!(w > 0)) return false;
  for (int i = 0; i < 2; ++i) position[i] = (m[i][0] * x + m[i][1] * y + m[i][2]) / w;
  return true;
}

// The rows that the image of the source's rectangle, tolerance included, can touch. They are whole
// numbers before the destination's rows cut them, so that every band has its part of the same rows.
void WarpPlan::FindRows(const double coeffs[3][3]) {
  double low = destination_.y0, high = destination_.y1;
  const Corners wide = {low_[0], low_[1], high_[0], high_[1]};
  double quad[4][2], bound[2][2];
  ProjectRectCorners(coeffs, wide, quad);
  BoundingBoxOfQuad(quad, bound);
  bool bounded = true;  // the tolerance may just cross the line at infinity
  const double signAt0 = coeffs[2][0] * wide.x0 + coeffs[2][1] * wide.y0 + coeffs[2][2];
  for (int i = 0; i < 4; ++i) {
    const double x = i & 1 ? wide.x1 : wide.x0, y = i & 2 ? wide.y1 : wide.y0;
    const double w = coeffs[2][0] * x + coeffs[2][1] * y + coeffs[2][2];
    if (!(w * signAt0 > 0)) bounded = false;
  }
  if (bounded) {
    const double first = floor(bound[0][1] - 1), last = floor(bound[1][1] + 1);
    if (first > low) low = first;
    if (last < high) high = last;
  }
  if (low <= high) rows_ = {static_cast<int>(low), static_cast<int>(high)};
}

WarpPlan::Row WarpPlan::RowAt(int y) const {
  return {m_[0][1] * y + m_[0][2], m_[1][1] * y + m_[1][2], m_[2][1] * y + m_[2][2]};
}

bool WarpPlan::Contains(const Row& row, int x) const {
  const double w = m_[2][0] * x + row.w;
  const double px = m_[0][0] * x + row.x, py = m_[1][0] * x + row.y;
  return w > 0 && px >= low_[0] * w && px <= high_[0] * w && py >= low_[1] * w &&
         py <= high_[1] * w;
}

PixelRange WarpPlan::Columns(int y) const {
  const PixelRange none = {0, -1};
  const Row row = RowAt(y);
  // Each inequality as a x + b >= 0.
  const double a[5] = {m_[2][0], m_[0][0] - low_[0] * m_[2][0], high_[0] * m_[2][0] - m_[0][0],
                       m_[1][0] - low_[1] * m_[2][0], high_[1] * m_[2][0] - m_[1][0]};
  const double b[5] = {row.w, row.x - low_[0] * row.w, high_[0] * row.w - row.x,
                       row.y - low_[1] * row.w, high_[1] * row.w - row.y};
  double low = destination_.x0, high = destination_.x1;
  for (int i = 0; i < 5; ++i) {
    if (a[i] > 0) {
      const double bound = -b[i] / a[i];
      if (bound > low) low = bound;
    } else if (a[i] < 0) {
      const double bound = -b[i] / a[i];
      if (bound < high) high = bound;
    } else if (!(b[i] >= 0)) {
      return none;
    }
  }
  // The divisions only tell where to look: Contains decides, so that the area is exactly the
  // pixels that satisfy it.
  if (!(low <= high + 2)) return none;
  const int begin = static_cast<int>(destination_.x0), end = static_cast<int>(destination_.x1);
  const int from = static_cast<int>(Clamp(low - 1, begin, end));
  const int to = static_cast<int>(Clamp(high + 2, begin, end));
  PixelRange span = {from, to};
  while (!Contains(row, span.first)) {
    if (span.first == to) return none;
    ++span.first;
  }
  while (!Contains(row, span.last)) --span.last;
  // What was walked over is known to be outside.
  if (span.first == from)
    while (span.first > begin && Contains(row, span.first - 1)) --span.first;
  if (span.last == to)
    while (span.last < end && Contains(row, span.last + 1)) ++span.last;
  return span;
}

// With (a, c) and (b, d) the source's steps from column to column and from row to row, the tile is
// (a u + b v, c u + d v), |u| <= columns / 2 and |v| <= rows / 2. Where it is at dy = c u + d v,
//   dx = b / d dy + (a d - b c) / d u = a / c dy - (a d - b c) / c v.
bool WarpPlan::Find(Footprint& f, double x, int y, int columns, int rows) const {
  const double u = columns / 2, v = rows / 2, cx = x + u, cy = y + v;
  const double w = m_[2][0] * cx + m_[2][1] * cy + m_[2][2];
  if (!(w > 0)) return false;
  const double r = 1 / w;
  f.x = (m_[0][0] * cx + m_[0][1] * cy + m_[0][2]) * r;
  f.y = (m_[1][0] * cx + m_[1][1] * cy + m_[1][2]) * r;
  const double a = (m_[0][0] - f.x * m_[2][0]) * r, b = (m_[0][1] - f.x * m_[2][1]) * r;
  const double c = (m_[1][0] - f.y * m_[2][0]) * r, d = (m_[1][1] - f.y * m_[2][1]) * r;
  const double area = fabs(a * d - b * c);
  f.rows = fabs(c) * u + fabs(d) * v + 1;
  const double along[2] = {b, a}, down[2] = {d, c}, half[2] = {u, v};
  for (int i = 0; i < 2; ++i) {
    // Sides that are almost parallel to the source's rows do not bound them.
    const bool bounds = fabs(down[i]) > 0x1p-10;
    f.slope[i] = bounds ? along[i] / down[i] : 0;
    f.half[i] = bounds ? area * half[i] / fabs(down[i]) + fabs(f.slope[i]) + 1 : 0x1p20;
  }
  // Numbers that the walk over the parallelogram can hold with bits to spare.
  return area <= 4 && f.rows <= 0x1p12 && fabs(f.x) <= 0x1p30 && fabs(f.y) <= 0x1p30 &&
         fabs(f.slope[0]) + fabs(f.slope[1]) <= 0x1p12;
}

int WarpPlan::Segments(int y, int first, int last, WarpSegment* segments) const {
  const Row row = RowAt(y);
  int size = kWarpBlock;
  bool mayFit = true;
  // Columns that lie in one block need none of those around them that are known not to fit.
  if (!affine_ && ((first ^ last) & -kWarpBlock) == 0) {
    const int largest = LargestFit(row, first);
    while (size > largest && ((first ^ last) & -(size / 2)) == 0) size /= 2;
    mayFit = size <= largest;
  }
  int count = 0;
  for (long long begin = first & -size; begin <= last; begin += size) {
    segments[count].first = static_cast<int>(begin);
    segments[count].count = size;
    const bool fits =
        mayFit && (isLine_ ? FitLine(row, segments[count]) : Fit(row, segments[count]));
    count += fits ? 1 : Halve(row, {first, last}, segments + count);
  }
  return count;
}

// No wider segment that holds column x fits; at least 2. With e and S as Fit has them, but at x:
// the centre of such a segment is at most h away, where W is at most 1 + e times as large, so that
// its e is at least e / (1 + e), and its slope at least S / (1 + e)^2. From an e of 0.34 on that is
// too much; below, what Fit compares is at least a fifth of S h e^3.
int WarpPlan::LargestFit(const Row& row, int x) const {
  const double r = 1 / (m_[2][0] * x + row.w), u = m_[2][0] * r;
  const double slope = fabs(m_[0][0] * r - (m_[0][0] * x + row.x) * r * u) +
                       fabs(m_[1][0] * r - (m_[1][0] * x + row.y) * r * u);
  int size = kWarpBlock;
  for (; size > 2; size /= 2) {
    const double h = size / 2, e = fabs(u) * h;
    if (!(e >= 0.34 || slope * h * (e * e * e) > kFitError * 6 * 5)) break;
  }
  return size;
}

// Those of the halves of a segment that no cubic fits, as far as columns of them are wanted; a
// single column always fits.
int WarpPlan::Halve(const Row& row, PixelRange wanted, WarpSegment* segments) const {
  const int begin = segments[0].first, half = segments[0].count / 2;
  int count = 0;
  for (int i = 0; i < 2; ++i) {
    WarpSegment& segment = segments[count];
    segment.first = begin + i * half;
    segment.count = half;
    if (segment.first > wanted.last || segment.first + (half - 1) < wanted.first) continue;
    if (half == 1) {
      FitColumn(row, segment);
      ++count;
    } else {
      count += Fit(row, segment) ? 1 : Halve(row, wanted, &segment);
    }
  }
  return count;
}

void WarpPlan::FitColumn(const Row& row, WarpSegment& segment) const {
  // Clamped, a NaN too: Place wants no more than 31 bits.
  constexpr double kFar = 0x1p31;
  const double r = 1 / (m_[2][0] * segment.first + row.w);
  const double position[2] = {(m_[0][0] * segment.first + row.x) * r,
                              (m_[1][0] * segment.first + row.y) * r};
  for (int axis = 0; axis < 2; ++axis) {
    const double p = position[axis];
    segment.coeff[axis][1] = segment.coeff[axis][2] = segment.coeff[axis][3] = 0;
    segment.isInside = false;
    segment.isLine = true;
    Place(axis, p > -kFar ? p < kFar ? p : kFar : -kFar, segment);
  }
}

// With P the position at the centre, S its slope there and u = -m20 / W:
//   position(t) = P + S t / (1 - u t) = P + S t (1 + u t + u^2 t^2 + u^3 t^3 + ...).
// On |t| <= h the term in t^4 is replaced by h^2 t^2 - h^4 / 8, which is off by h^4 / 8 at most
// (Chebyshev); the terms after it add less than a factor of 1 / (1 - e), e = |u| h, and so does
// what lies between the centre and the farthest column.
template <bool kAffine>
bool WarpPlan::Fit(const Row& row, WarpSegment& segment) const {
  const int half = segment.count / 2;
  const double centre = segment.first + half, h = half;
  double p[2] = {m_[0][0] * centre + row.x, m_[1][0] * centre + row.y};
  double slope[2] = {m_[0][0], m_[1][0]}, u = 0, farthest = h;
  if constexpr (!kAffine) {
    const double w = m_[2][0] * centre + row.w;
    const double r = 1 / w;
    u = -m_[2][0] * r;
    const double e = fabs(u) * h;
    if (!(w > 0 && e < 0.25)) return false;
    for (int axis = 0; axis < 2; ++axis) {
      p[axis] *= r;
      slope[axis] = slope[axis] * r + p[axis] * u;
    }
    farthest = h + e * h * (4.0 / 3);  // at least h / (1 - e)
    if (!((fabs(slope[0]) + fabs(slope[1])) * h * (e * e * e) <= kFitError * 6)) return false;
  }
  const double x = fabs(slope[0]) * farthest, y = fabs(slope[1]) * farthest;
  if (!(x <= kReach && y <= kReach)) return false;
  segment.isInside = p[0] - x >= inner_[0][0] && p[0] + x <= inner_[0][1] &&
                     p[1] - y >= inner_[1][0] && p[1] + y <= inner_[1][1];
  if (!segment.isInside && !(fabs(p[0]) <= 0x1p31 && fabs(p[1]) <= 0x1p31)) return false;
  segment.isLine = kAffine;
  const double u2 = u * u, u3 = u * u2 * h * h;
  for (int axis = 0; axis < 2; ++axis) {
    const double c1 = slope[axis] * kOne;
    float* const coeff = segment.coeff[axis];
    coeff[1] = static_cast<float>(c1);
    coeff[2] = kAffine ? 0 : static_cast<float>(c1 * (u + u3));
    coeff[3] = kAffine ? 0 : static_cast<float>(c1 * u2);
    Place(axis, kAffine ? p[axis] : p[axis] - slope[axis] * (u3 * h * h / 8), segment);
  }
  return true;
}

bool WarpPlan::Fit(const Row& row, WarpSegment& segment) const {
  return affine_ ? Fit<true>(row, segment) : Fit<false>(row, segment);
}

// What Fit<true> does, for a whole block: its reach is known, and only the centre is to be found.
bool WarpPlan::FitLine(const Row& row, WarpSegment& segment) const {
  const double centre = segment.first + kWarpBlock / 2;
  const double p[2] = {m_[0][0] * centre + row.x, m_[1][0] * centre + row.y};
  segment.isLine = true;
  segment.isInside = p[0] >= lineInner_[0][0] && p[0] <= lineInner_[0][1] &&
                     p[1] >= lineInner_[1][0] && p[1] <= lineInner_[1][1];
  if (!segment.isInside && !(fabs(p[0]) <= 0x1p31 && fabs(p[1]) <= 0x1p31)) return false;
  for (int axis = 0; axis < 2; ++axis) {
    float* const coeff = segment.coeff[axis];
    coeff[1] = static_cast<float>(m_[axis][0] * kOne);
    coeff[2] = coeff[3] = 0;
    Place(axis, p[axis], segment);
  }
  return true;
}

// Splits a position into the whole number `base` and c0, which carries the fraction.
void WarpPlan::Place(int axis, double position, WarpSegment& segment) const {
  // Above 0, the cast is floor.
  const double p = position * kOne + (kOffset + bias_);
  const long long whole = static_cast<long long>(p);
  segment.base[axis] = whole + base_[axis];
  segment.coeff[axis][0] = static_cast<float>(p - static_cast<double>(whole) + kCentre);
}

}  // namespace qv
