// Where the destination samples of one axis lie in the source, and the exact weights of the source
// samples that make them. In double precision, built once for all levels, by arithmetic alone (no
// function of a mathematical library), so that every build has the same numbers.
#ifndef QV_KERNELS_RESAMPLE_SAMPLEAXIS_H
#define QV_KERNELS_RESAMPLE_SAMPLEAXIS_H

#include "kernels/resize/WorkMemory.h"

namespace qv {

// Source sample s covers s .. s + 1 of the axis; position s is its centre. The region covers
// start .. start + extent. Destination sample i stands at
//   start + (i + 0.5 + dstPhase) * extent / count - 0.5 - srcPhase       by centres
//   start + (i + dstPhase) * (extent - 1) / (count - 1) - srcPhase       corners aligned
// With corners aligned a single sample stands in the middle of the region.
struct SampleAxis {
  int count;             // destination samples
  int length;            // source samples
  double start, extent;  // within 2^31; `extent` above 0, at least 1 with corners aligned
  double srcPhase, dstPhase;
  bool aligned;
};

// Source samples from one destination sample to the next.
double StepOf(const SampleAxis& axis);
double PositionOf(const SampleAxis& axis, int i);

// Of samples first .. first + count - 1.
void PositionsOf(const SampleAxis& axis, int first, int count, double* position);

// Given the source samples first[i] .. end[i] - 1 that destination samples take, makes `first`
// rise, and returns how many from there each one takes: first[i] + taps is within `length`.
int FitTaps(int count, int length, int* first, const int* end);

// Filters beyond those that resizing has codes for.
constexpr int kMitchell = 32;

//   linear    1 - |x|, |x| < 1
//   cubic     Keys 1981 with the parameter a, |x| < 2
//   Mitchell  Mitchell and Netravali 1988 with B = C = 1/3, |x| < 2
//   Lanczos   sinc(x) sinc(x / 3), |x| < 3
//   area      the share of a source sample that the interval of a step around the position covers
// A widened filter is stretched by the step where that is above 1, so that a reduction takes every
// source sample into account. The weights of a destination sample are divided by their sum.
struct FilterShape {
  int code;  // of Interpolation, or kMitchell
  double cubic;
  bool widened;
};

// Whether the filter is stretched.
bool IsWidened(const SampleAxis& axis, const FilterShape& shape);

// Source samples that a destination sample takes at the most.
double MostTaps(const SampleAxis& axis, const FilterShape& shape);

class FilterCurve;

// The exact weights of an axis: destination sample i is a sum over source samples. What would come
// from before the first source sample or from past the last one comes from these.
class ExactAxis {
 public:
  // MostTaps fits an int.
  ExactAxis(const SampleAxis& axis, const FilterShape& shape);

  // False if memory is short; nothing else may be asked then.
  explicit operator bool() const { return samples_ && rows_; }

  double Largest() const;

  // Fills `first` with the source samples that weights of at least `least` begin with, never
  // descending, and returns how many samples from there each destination sample takes: taps
  // first[i] .. first[i] + taps - 1 are inside the source.
  int Trim(double least, int* first) const;

  // These taps' weights: `stride` numbers a sample, after its taps 0, in units of 2^-bits and
  // summing to exactly 2^bits; or as they are.
  void Store(const int* first, int taps, int bits, int stride, short* weights) const;
  void Store(const int* first, int taps, float* weights) const;

 private:
  int CountRows();
  int CountRepeats(int i, int known, int last) const;
  void MoveOn(int* values, int i, int n, int known) const;
  WorkLayout RowsLayout();
  int RowOf(int i) const { return row_[i] < 0 ? ~row_[i] : row_[i]; }
  double* Row(int i) const {
    return rows_.At<double>(0) + static_cast<ptrdiff_t>(RowOf(i)) * taps_;
  }
  double FirstTap(double position) const;
  void FillRow(int i, const FilterCurve& curve) const;
  void FoldRow(double position, int from, const FilterCurve& curve, double* row) const;
  void ShareOut(double position, double at, int count, const FilterCurve& curve, double* w) const;
  // Whether the taps of sample i are those of the sample a period before.
  bool Repeats(int i, const int* first) const;
  void StoreRow(int i, int first, int taps, int bits, short* to) const;
  template <class Each>
  void ForEachTap(int i, int first, int taps, Each each) const;

  SampleAxis axis_;
  bool isArea_;
  double scale_, reach_, reached_;    // of the filter; samples that a position reaches
  int taps_;                          // of a row of weights, inside the source
  int period_, advance_;  // weights come again after so many samples, so many source samples on
  int repeatBegin_ = 0, repeatEnd_ = 0;  // samples with the weights of a period before
  WorkMemory samples_;
  double* position_;       // of samples with a row of their own
  int* first_;             // where the row of each sample begins
  int* row_;               // its number; ~number of a row that reaches outside
  int* end_;               // where the weights of each sample that Trim keeps end
  WorkMemory rows_;
};

}  // namespace qv

#endif
