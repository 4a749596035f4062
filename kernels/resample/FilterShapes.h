// The filters of resampling as functions of the distance from the position, by arithmetic alone.
#ifndef QV_KERNELS_RESAMPLE_FILTERSHAPES_H
#define QV_KERNELS_RESAMPLE_FILTERSHAPES_H

#include "kernels/resample/SampleAxis.h"

namespace qv {

// The distance from which on a filter other than area is 0.
double RadiusOf(const FilterShape& shape);

// w[t] = filter(x + t * step), t = 0 .. count - 1, not normalised; not for area.
void ShapeWeights(const FilterShape& shape, double x, double step, int count, double* w);

}  // namespace qv

#endif
