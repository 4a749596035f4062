// Resampling of a whole call: planned once, made in bands.
#ifndef QV_QVACCELERATEDLIB_RESAMPLE_H
#define QV_QVACCELERATEDLIB_RESAMPLE_H

#include "dispatch/Hidden.h"
#include "kernels/resample/Resample.h"

namespace qv {

// The statuses are those of Resampling::Plan. Nothing is written unless it is StatusOk. Bytes do
// not depend on the number of bands.
QV_HIDDEN IppStatus Resample(const ResampleImages& images, const ResampleOptions* options);

}  // namespace qv

#endif
