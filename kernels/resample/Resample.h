// Resampling with explicit positions: checks, planning, and any rows of the destination from it.
#ifndef QV_KERNELS_RESAMPLE_RESAMPLE_H
#define QV_KERNELS_RESAMPLE_RESAMPLE_H

#include <stdint.h>

#include <optional>

#include "kernels/resample/ResampleRows.h"
#include "kernels/resample/SampleAxis.h"
#include "kernels/resize/Filter.h"
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizeRows.h"

namespace qv {

// What a pixel is.
enum class PixelKind : int {
  kOne = 0,       // one byte
  kTwo = 1,       // two, such as the interleaved chroma of two-plane formats
  kThree = 2,     // three
  kFour = 3,      // four, all alike
  kPremultiplied = 4,  // four, of which the fourth is the alpha that the colours are multiplied by
  kStraight = 5        // four, of which the fourth is the alpha of colours as they are
};

enum class PositionRule : int { kCentres = 0, kCorners = 1 };

struct ResampleOptions {
  int pixels;      // of PixelKind
  int filter;      // of Interpolation, or kMitchell; 0: linear
  int position;    // of PositionRule
  int narrow;      // 1: filters are not widened for reductions
  double x, y, width, height;  // the region, in source pixels; all 0: the whole source
  double srcPhaseX, srcPhaseY, dstPhaseX, dstPhaseY;
  double cubic;    // the parameter of the cubic filter, -1 to below 0; 0: -0.5
};

struct ResampleImages {
  const unsigned char* src;
  IppiSize srcSize;
  int srcStep;
  unsigned char* dst;
  IppiSize dstSize;
  int dstStep;
};

// The largest reduction of an axis by area averaging or a widened filter.
constexpr double kLargestReduction = 65536;

// The tables of a call, from which bands of rows are made on any thread. Every byte depends on its
// own row and column alone, so bands may be cut anywhere.
class Resampling {
 public:
  // In the order of checks: StatusNullPtrErr for a null image or null options; StatusDataTypeErr
  // for an unknown kind of pixel; StatusSizeErr for a size below 1 or a row of more than 2^31 - 1
  // bytes; StatusStepErr for rows of the destination that overlap; StatusInterpolationErr for an
  // unknown filter; StatusOutOfRangeErr for an unknown position rule, a `narrow` other than 0 and
  // 1, a phase outside -1 .. 1 and a cubic parameter outside -1 .. 0; StatusRectErr for a region of
  // which a number is not finite or past 2^31, or whose width or height is not above 0 (with
  // corners aligned: below 1); StatusNoOverlapWarning for one that has no pixel of the source;
  // StatusResizeFactorErr for a reduction above the largest; StatusMemAllocErr.
  IppStatus Plan(const ResampleImages& images, const ResampleOptions* options);

  // Bytes of scratch memory that making a band takes, aligned to 64.
  uint64_t ScratchBytes() const { return scratchBytes_; }

  // What a call of this route takes time by, for forecasts.
  int Method() const { return static_cast<int>(route_) * 8 + static_cast<int>(kind_); }

  // Rows first .. first + rows - 1 of the destination.
  void Run(int first, int rows, void* scratch) const;

 private:
  // Which rows do it.
  enum class Route { kCopy, kHalve, kLinear, kTaps, kLong };
  struct Axes {
    SampleAxis x, y;
  };

  IppStatus PlanNearest(const Axes& axes);
  IppStatus PlanCopy(const int* x, const int* y);
  IppStatus PlanFilter(const Axes& axes, const FilterShape& shape);
  IppStatus PlanLinear(const Axes& axes);
  IppStatus PlanNarrow(const Axes& axes, const FilterShape& shape);
  IppStatus PlanExact(const ExactAxis& x, const ExactAxis& y);
  IppStatus PlanTaps();
  IppStatus PlanPairs();
  IppStatus PlanLong(const ExactAxis& x, const ExactAxis& y);
  IppStatus PlanWeighted(const ExactAxis& x, const ExactAxis& y);
  bool TakeWeights(int xStride, int yStride);
  bool TakeSecondWeights();
  void RunRoute(int first, int rows, void* scratch) const;
  void RunStraight(int first, int rows, void* scratch) const;

  ResampleImages images_ = {};
  PixelKind kind_ = PixelKind::kOne;
  int channels_ = 1;
  Route route_ = Route::kCopy;
  bool limits_ = false;        // premultiplied colours may pass their alpha
  uint64_t scratchBytes_ = 0, routeBytes_ = 0;  // in all; without the flags of opaque rows

  AxisTaps across_ = {}, down_ = {};
  struct {
    unsigned short *x, *y;  // of two taps each
  } second_ = {};
  NearestTables nearest_ = {};
  LinearTables linear_ = {};
  LongTables long_ = {};
  WeightedTables weighted_ = {};
  // Of the tables, as they come to be known.
  std::optional<WorkMemory> firsts_, weights_, derived_, floatFirsts_, floats_;
};

}  // namespace qv

#endif
