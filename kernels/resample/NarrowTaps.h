// The taps of filters that are not widened: the nearest sample, two of the linear filter, four of
// Keys' cubic, six of Lanczos'. As quick as resizing makes them, which matters for small images.
#ifndef QV_KERNELS_RESAMPLE_NARROWTAPS_H
#define QV_KERNELS_RESAMPLE_NARROWTAPS_H

#include "kernels/resample/SampleAxis.h"
#include "kernels/resize/AxisTaps.h"

namespace qv {

// floor(position + 0.5), limited to the source: the sample that a position lies in, the later one
// of two where it lies between them.
void NearestSamples(const SampleAxis& axis, int* sample);

// The linear filter: a position is sample + weight / 16384, the weight being the next sample's,
// rounded. Outside are the positions of the first and the last sample; a position on the last one
// is the one before with the full weight, unless there is no other. Returns 1 if a next sample has
// a part in any, else 0, and all weights are 0 then.
int LinearSamples(const SampleAxis& axis, int* sample, unsigned short* weight);

// Cubic or Lanczos: `taps` has memory for TapCount taps a sample, `work` for a double each. Taps
// that none needs are left out.
void NarrowTaps(const SampleAxis& axis, const FilterShape& shape, void* work, AxisTaps* taps);

}  // namespace qv

#endif
