// Geometry of perspective and rotation: matrices, corner images and bounds, in double precision.
//
// All of this is compiled once, for the baseline and without contraction, so that every level
// works from the same doubles. A region's corners are the centres of its corner pixels:
// X0 = x, Y0 = y, X1 = x + width - 1, Y1 = y + height - 1. Corners are always listed in the order
// (X0, Y0), (X1, Y0), (X1, Y1), (X0, Y1), and quadrilaterals in the same order of their images.
#ifndef QV_KERNELS_GEOMETRY_TRANSFORM_H
#define QV_KERNELS_GEOMETRY_TRANSFORM_H

#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Corner pixels of a region as doubles; the far corner of a region near INT_MAX does not wrap.
struct Corners {
  double x0, y0, x1, y1;
};
Corners CornersOf(IppiRect roi);

// Whether the four corners all turn the same way: 1 if every cross product of neighbouring edges is
// above 0, 0 if every one is below 0, StatusBadArgErr if one is exactly 0 or not a number,
// StatusQuadSignErr if their signs differ.
int CheckQuadrangle(const double quad[4][2]);

// The matrix that carries the corners onto `quad` (forward) or, up to a factor, its inverse: the
// adjugate. `orientation` becomes 1 if the turn at the quadrilateral's last corner is above 0,
// else 0.
void PerspectiveRectToQuad(const Corners& rect, const double quad[4][2], double coeffs[3][3],
                           int* orientation, bool forward);

// An angle in degrees brought into [0, 360): whole turns are taken off (truncating), a negative
// rest gets one turn added.
double ReduceAngle(double angle);

// [[cos a, sin a, xShift], [-sin a, cos a, yShift]], a the reduced angle; the sine and cosine of
// 0, 90, 180 and 270 degrees are exact.
void RotationCoefficients(double angle, double xShift, double yShift, double coeffs[2][3]);

// The images of the corners under an affine and under a perspective matrix.
void TransformRectCorners(const double coeffs[2][3], const Corners& rect, double quad[4][2]);
void ProjectRectCorners(const double coeffs[3][3], const Corners& rect, double quad[4][2]);

// bound[0] = (smallest x, smallest y), bound[1] = (largest x, largest y).
void BoundingBoxOfQuad(const double quad[4][2], double bound[2][2]);

// qvGetPerspectiveTransform and qvGetRotateBound (CqvAccLib.h).
IppStatus GetPerspectiveTransform_64f(IppiRect srcRoi, const double quad[4][2],
                                      double coeffs[3][3]);
IppStatus GetRotateBound_64f(IppiRect srcRoi, double bound[2][2], double angle, double xShift,
                             double yShift);

// qv_invert_transform and qv_rotation_canvas (qv.h).
IppStatus InvertTransform_64f(const double coeffs[3][3], double inverse[3][3]);
IppStatus RotationCanvas_64f(IppiSize size, double angle, IppiSize* canvas, double shift[2]);

}  // namespace qv

#endif
