// Planning of a warp: which pixels are written and where each of them samples.
#ifndef QV_KERNELS_GEOMETRY_WARPPLAN_H
#define QV_KERNELS_GEOMETRY_WARPPLAN_H

#include "kernels/geometry/Transform.h"
#include "kernels/geometry/WarpSource.h"

namespace qv {

// Inclusive; empty if last < first.
struct PixelRange {
  int first, last;
};

// Where a tile of the destination lies in the source, as a parallelogram: those (x + dx, y + dy)
// with |dy| <= rows and |dx - slope[i] * dy| <= half[i] for both i, the nearest pixels included.
struct Footprint {
  double x, y, rows, slope[2], half[2];
};

// Where a warp by the matrix, of the rectangle `source`, reads for the destination's (x, y). False
// where the matrix cannot be inverted or (x, y) is not in front of it.
bool WarpSourcePosition(const double coeffs[3][3], const Corners& source, double x, double y,
                        double position[2]);

// The warp of the region `source` of an image (clipped to it) into the region `destination`.
//
// The area written: a destination pixel (x, y) belongs to it if its position in the source,
//   X = (m00 x + m01 y + m02) / W,  Y = (m10 x + m11 y + m12) / W,  W = m20 x + m21 y + m22,
// m the inverse of the matrix, lies inside the rectangle of the source's corner pixels, or outside
// by no more than kTolerance, and W has the sign that it has there.
//
// That sign is one and the same: an affine matrix has a W of 1, and any other that carries the
// rectangle onto a convex quadrilateral has a forward denominator of one sign at all its corners
// (the turn at a corner of the image has the sign of the determinant times those of three
// denominators), hence inside, and W is its inverse up to the determinant. With W made positive,
// "inside" is five linear inequalities in x and y, so the area is convex and each of its rows is
// one span.
class WarpPlan {
 public:
  static constexpr double kTolerance = 1e-6;

  // Coefficients as qvWarpPerspective takes them; already checked. The destination's corners are
  // ints.
  WarpPlan(const double coeffs[3][3], const Corners& source, const Corners& destination,
           IppiInterpolation method);

  // Rows outside of this have an empty span.
  PixelRange Rows() const { return rows_; }
  PixelRange Columns(int y) const;

  // False for a tile whose source pixels are more than asking for them ahead is worth.
  bool Find(Footprint& footprint, double x, int y, int columns, int rows) const;

  // Segments that cover columns first .. last of row y, which lie inside its span, and at most
  // last - first + 2 * kWarpBlock columns in all. Returns how many; there is one per column at
  // most.
  int Segments(int y, int first, int last, WarpSegment* segments) const;

 private:
  struct Row {
    double x, y, w;  // m01 y + m02, m11 y + m12, m21 y + m22
  };
  Row RowAt(int y) const;
  bool Contains(const Row& row, int x) const;
  void FindRows(const double coeffs[3][3]);
  int LargestFit(const Row& row, int x) const;
  int Halve(const Row& row, PixelRange wanted, WarpSegment* segments) const;
  bool Fit(const Row& row, WarpSegment& segment) const;
  template <bool kAffine>
  bool Fit(const Row& row, WarpSegment& segment) const;
  bool FitLine(const Row& row, WarpSegment& segment) const;
  void FitColumn(const Row& row, WarpSegment& segment) const;
  void Place(int axis, double position, WarpSegment& segment) const;

  double m_[3][3];
  long long base_[2];        // of a segment whose position is at -kOffset
  double inner_[2][2];       // what WarpSegment calls inside
  double low_[2], high_[2];  // of X and Y, tolerance included
  Corners destination_;
  double bias_;
  double lineInner_[2][2];  // the same for the centre of a block along a line
  bool regular_, affine_, isLine_ = false;
  PixelRange rows_;
};

}  // namespace qv

#endif
