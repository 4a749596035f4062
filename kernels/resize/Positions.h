// Where destination samples lie in the source, and how many there are. In double precision, built
// once for all levels, so that every level works from the same numbers. No conversion to an integer
// is ever out of range: whatever the factors are, values are limited before they are converted.
#ifndef QV_KERNELS_RESIZE_POSITIONS_H
#define QV_KERNELS_RESIZE_POSITIONS_H

namespace qv {

// One axis of a whole-image resize.
struct Axis {
  int length;     // of the clipped region
  double factor;  // destination over source
};

// `start + size` limited to `limit`: the length of a region clipped to its image.
constexpr int ClippedLength(int start, int size, int limit) {
  return size < limit - start ? size : limit - start;
}

// trunc(length * factor + 1e-07) destination samples, at most `available`, and one if the sum is
// 0.5 or more; 0 if it is less.
int WrittenExtent(Axis axis, int available);

// The region's sample under the middle of each destination sample: trunc of 0.5 / F plus i
// accumulated steps of 1 / F, at most the last sample.
void NearestIndices(Axis axis, int count, int* index);

// The corner-aligned positions: i accumulated steps of (L - 1) / (L * F - 1).
void AlignedPositions(Axis axis, int count, double* position);

// Sample `i` of either, found by adding up to it.
int NearestIndex(Axis axis, int i);
double AlignedPosition(Axis axis, int i);

// The corner-aligned positions split into an index and the weight of the next sample, out of
// 16384: trunc(fraction * 16384 + 1e-07), the fraction in single precision. A position on the
// last sample is the one before with the full weight, unless there is no other sample.
void AlignedTaps(Axis axis, int count, int* index, unsigned short* weight);

// One axis of a band: a part of the destination, placed by absolute coordinates of both images.
struct BandAxis {
  int start, length;  // of the clipped region in the source image
  double factor, shift;
};

// A run of destination samples.
struct Span {
  long long first;
  int count;
};

// The region projected into the destination, rounded by trunc(x + 0.4999999999) and limited to
// [start, start + size). False if the end comes before the start.
bool ProjectRegion(BandAxis axis, int start, int size, Span* span);

// trunc((i + 0.5) / F - shift / F + 1e-10) for the span's samples, limited to the region, from its
// first sample.
void BandNearestIndices(BandAxis axis, Span span, int* index);

// (i + 0.5) / F - 0.5 - shift / F from the region's first sample, split as by AlignedTaps().
// Positions left of the first sample take the first sample.
void BandTaps(BandAxis axis, Span span, int* index, unsigned short* weight);

// (i + 0.5) / F - 0.5 - shift / F from the region's first sample. Positions farther outside than
// any filter reaches are moved closer: all their taps take the edge sample either way.
void BandPositions(BandAxis axis, Span span, double* position);

}  // namespace qv

#endif
