// The filters of resampling as functions of the distance from the position, by arithmetic alone.
#ifndef QV_KERNELS_RESAMPLE_FILTERSHAPES_H
#define QV_KERNELS_RESAMPLE_FILTERSHAPES_H

#include "kernels/resample/SampleAxis.h"

namespace qv {

// The distance from which on a filter other than area is 0.
double RadiusOf(const FilterShape& shape);

// A filter other than area, at distances that are `step` apart.
class FilterCurve {
 public:
  FilterCurve(const FilterShape& shape, double step);

  // w[t] = filter(x + t * step), t = 0 .. count - 1, not normalised.
  void Weights(double x, int count, double* w) const;

 private:
  void Linear(double x, int count, double* w) const;
  void Cubic(double x, int count, double* w) const;
  void Lanczos(double x, int count, double* w) const;

  int code_;
  double step_;
  double inner_[3], outer_[4];  // polynomials of a cubic, below a distance of 1 and from there on
  double sine_, cosine_;        // of a third of a step, 1 being half a turn
};

}  // namespace qv

#endif
