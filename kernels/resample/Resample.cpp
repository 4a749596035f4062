// Checks, and the choice of rows.
#include "kernels/resample/Resample.h"

#include "kernels/resample/NarrowTaps.h"

namespace qv {

namespace {

int ChannelsOf(PixelKind kind) {
  return kind < PixelKind::kFour ? static_cast<int>(kind) + 1 : 4;
}

bool IsShorterThanRow(int step, int64_t rowBytes) {
  return (step < 0 ? -static_cast<int64_t>(step) : step) < rowBytes;
}

IppStatus CheckImages(const ResampleImages& images, int channels) {
  const IppiSize from = images.srcSize, to = images.dstSize;
  if (from.width < 1 || from.height < 1 || to.width < 1 || to.height < 1) return StatusSizeErr;
  const int64_t srcBytes = int64_t{from.width} * channels, dstBytes = int64_t{to.width} * channels;
  if (srcBytes > INT32_MAX || dstBytes > INT32_MAX) return StatusSizeErr;
  return to.height > 1 && IsShorterThanRow(images.dstStep, dstBytes) ? StatusStepErr : StatusOk;
}

bool IsFilter(int code) {
  switch (code) {
    case 0:
    case InterpolateNearest:
    case InterpolateLinear:
    case InterpolateCubic:
    case InterpolateArea:
    case InterpolateLanczos:
    case kMitchell: return true;
    default: return false;
  }
}

// False as well for what is not a number.
bool IsWithin(double x, double low, double high) { return x >= low && x <= high; }

IppStatus CheckNumbers(const ResampleOptions& o) {
  if (!IsFilter(o.filter)) return StatusInterpolationErr;
  const bool good = (o.position == 0 || o.position == 1) && (o.narrow == 0 || o.narrow == 1) &&
                    IsWithin(o.srcPhaseX, -1, 1) && IsWithin(o.srcPhaseY, -1, 1) &&
                    IsWithin(o.dstPhaseX, -1, 1) && IsWithin(o.dstPhaseY, -1, 1) &&
                    IsWithin(o.cubic, -1, 0);
  return good ? StatusOk : StatusOutOfRangeErr;
}

constexpr double kFarthest = 2147483648.0;

IppStatus CheckRegion(const SampleAxis& axis) {
  if (!IsWithin(axis.start, -kFarthest, kFarthest) || !(axis.extent > 0) ||
      !(axis.extent <= kFarthest) || (axis.aligned && axis.extent < 1))
    return StatusRectErr;
  return StatusOk;
}

bool IsOutside(const SampleAxis& axis) {
  return axis.start >= axis.length || axis.start + axis.extent <= 0;
}

bool IsWholeSource(const ResampleOptions& o) {
  return o.x == 0 && o.y == 0 && o.width == 0 && o.height == 0;
}

WorkLayout CountLayout(uint64_t count, size_t size) {
  WorkLayout layout;
  layout.Add<char>(count * size);
  return layout;
}

// The least weight that counts: a quarter of a unit.
double LeastOf(int bits) { return 0.25 / static_cast<double>(1ll << bits); }

constexpr int kShortBits = 14, kMostBits = 30;

// As many bits as the largest weight leaves in 16.
int BitsOf(const ExactAxis& axis) {
  const double largest = axis.Largest();
  int bits = kShortBits;
  while (bits < kMostBits && largest * static_cast<double>(2ll << bits) <= INT16_MAX) ++bits;
  return bits;
}

bool IsSubtracting(const AxisTaps& taps) {
  for (ptrdiff_t k = 0; k < ptrdiff_t{taps.count} * taps.taps; ++k)
    if (taps.weights[k] < 0) return true;
  return false;
}

// The weights of second taps, if there are any.
void CopySecondWeights(const AxisTaps& taps, unsigned short* to) {
  for (ptrdiff_t j = 0; j < taps.count; ++j)
    to[j] = static_cast<unsigned short>(taps.taps > 1 ? taps.weights[2 * j + 1] : 0);
}

// Whether every sample is the mean of two, two samples after the one before.
bool IsHalvingAxis(const LinearTaps& taps, int count) {
  for (ptrdiff_t i = 0; i < count; ++i)
    if (taps.weight[i] != kWeightOne / 2 || taps.first[i] != taps.first[0] + 2 * i) return false;
  return taps.neighbour > 0;
}

// The source samples that taps of either kind name for some destination samples.
struct Reach {
  int first, end;
};

Reach ReachOf(int first, int count, const AxisTaps& a, const FloatTaps& b) {
  const int last = first + count - 1;
  const int aEnd = a.first[last] + a.taps, bEnd = b.first[last] + b.taps;
  return {a.first[first] < b.first[first] ? a.first[first] : b.first[first],
          aEnd > bEnd ? aEnd : bEnd};
}

// Whether few levels filter along x by shuffles: a pair of taps of each of four samples, about
// 3 * step + 2 source samples, has to be within 16 bytes.
bool IsFarApart(const AxisTaps& taps) {
  const long long steps = 3ll * (taps.first[taps.count - 1] - taps.first[0]);
  return taps.taps > 8 && steps + 2 * (taps.count - 1) > 16ll * (taps.count - 1);
}

// Whether a filter's taps are those that resizing has.
bool IsNarrow(const SampleAxis& x, const SampleAxis& y, const FilterShape& shape) {
  const bool has = shape.code == InterpolateLinear || shape.code == InterpolateCubic ||
                   shape.code == InterpolateLanczos;
  return has && !IsWidened(x, shape) && !IsWidened(y, shape);
}

Layout LayoutOf(int channels) {
  static constexpr Layout kLayouts[] = {Layout::kGrey, Layout::kPairs, Layout::kTriples,
                                        Layout::kQuads};
  return kLayouts[channels - 1];
}

}  // namespace

IppStatus Resampling::Plan(const ResampleImages& images, const ResampleOptions* options) {
  if (!images.src || !images.dst || !options) return StatusNullPtrErr;
  ResampleOptions o = *options;
  if (o.pixels < 0 || o.pixels > static_cast<int>(PixelKind::kStraight)) return StatusDataTypeErr;
  images_ = images;
  kind_ = static_cast<PixelKind>(o.pixels);
  channels_ = ChannelsOf(kind_);
  if (const IppStatus bad = CheckImages(images, channels_)) return bad;
  if (const IppStatus bad = CheckNumbers(o)) return bad;
  const IppiSize from = images.srcSize, to = images.dstSize;
  if (IsWholeSource(o)) {
    o.width = from.width;
    o.height = from.height;
  }
  const bool aligned = o.position == static_cast<int>(PositionRule::kCorners);
  const Axes axes = {{to.width, from.width, o.x, o.width, o.srcPhaseX, o.dstPhaseX, aligned},
                     {to.height, from.height, o.y, o.height, o.srcPhaseY, o.dstPhaseY, aligned}};
  if (CheckRegion(axes.x) || CheckRegion(axes.y)) return StatusRectErr;
  if (IsOutside(axes.x) || IsOutside(axes.y)) return StatusNoOverlapWarning;
  if (o.filter == InterpolateNearest) return PlanNearest(axes);
  const FilterShape shape = {o.filter == 0 ? InterpolateLinear : o.filter,
                             o.cubic == 0 ? -0.5 : o.cubic, o.narrow == 0};
  if ((shape.widened || shape.code == InterpolateArea) &&
      (StepOf(axes.x) > kLargestReduction || StepOf(axes.y) > kLargestReduction))
    return StatusResizeFactorErr;
  return PlanFilter(axes, shape);
}

IppStatus Resampling::PlanNearest(const Axes& axes) {
  const IppiSize to = images_.dstSize;
  firsts_.emplace(CountLayout(static_cast<uint64_t>(to.width) + to.height, sizeof(int)));
  if (!*firsts_) return StatusMemAllocErr;
  int* const x = firsts_->At<int>(0);
  int* const y = x + to.width;
  NearestSamples(axes.x, x);
  NearestSamples(axes.y, y);
  if (kind_ == PixelKind::kStraight) kind_ = PixelKind::kFour;
  return PlanCopy(x, y);
}

IppStatus Resampling::PlanCopy(const int* x, const int* y) {
  route_ = Route::kCopy;
  const IppiSize to = images_.dstSize;
  nearest_ = {to.width, to.height, images_.srcSize.width, LayoutOf(channels_), x, y, nullptr};
  routeBytes_ = scratchBytes_ = RowsWorkBytes(static_cast<uint64_t>(to.width) * channels_);
  return StatusOk;
}

IppStatus Resampling::PlanFilter(const Axes& axes, const FilterShape& shape) {
  const IppiSize to = images_.dstSize;
  firsts_.emplace(CountLayout(static_cast<uint64_t>(to.width) + to.height, sizeof(int)));
  if (!*firsts_) return StatusMemAllocErr;
  across_ = {to.width, 1, firsts_->At<int>(0), nullptr};
  down_ = {to.height, 1, across_.first + to.width, nullptr};
  // Weights above 0 keep colours below their alpha, rounding included.
  limits_ = kind_ == PixelKind::kPremultiplied && shape.code != InterpolateLinear &&
            shape.code != InterpolateArea;
  const bool isStraight = kind_ == PixelKind::kStraight;
  if (IsNarrow(axes.x, axes.y, shape)) {
    const IppStatus status =
        shape.code == InterpolateLinear ? PlanLinear(axes) : PlanNarrow(axes, shape);
    if (status != StatusOk || !isStraight) return status;
    const ExactAxis x(axes.x, shape), y(axes.y, shape);
    return x && y ? PlanWeighted(x, y) : StatusMemAllocErr;
  }
  const ExactAxis x(axes.x, shape), y(axes.y, shape);
  if (!x || !y) return StatusMemAllocErr;
  const IppStatus status = PlanExact(x, y);
  return status == StatusOk && isStraight ? PlanWeighted(x, y) : status;
}

IppStatus Resampling::PlanLinear(const Axes& axes) {
  if (!TakeSecondWeights()) return StatusMemAllocErr;
  across_.taps = 1 + LinearSamples(axes.x, across_.first, second_.x);
  down_.taps = 1 + LinearSamples(axes.y, down_.first, second_.y);
  return PlanPairs();
}

IppStatus Resampling::PlanNarrow(const Axes& axes, const FilterShape& shape) {
  across_.taps = TapCount(shape.code, axes.x.length);
  down_.taps = TapCount(shape.code, axes.y.length);
  const int most = across_.count > down_.count ? across_.count : down_.count;
  const WorkMemory work(CountLayout(static_cast<uint64_t>(most), sizeof(double)));
  if (!work || !TakeWeights(across_.taps, down_.taps)) return StatusMemAllocErr;
  NarrowTaps(axes.x, shape, work.At<void>(0), &across_);
  NarrowTaps(axes.y, shape, work.At<void>(0), &down_);
  return PlanTaps();
}

IppStatus Resampling::PlanExact(const ExactAxis& x, const ExactAxis& y) {
  across_.taps = x.Trim(LeastOf(kShortBits), across_.first);
  down_.taps = y.Trim(LeastOf(kShortBits), down_.first);
  const bool many = across_.taps > kMaxTaps || down_.taps > kMaxTaps;
  if (many || (IsFarApart(across_) && IsFarApart(down_))) return PlanLong(x, y);
  if (!TakeWeights(across_.taps, down_.taps)) return StatusMemAllocErr;
  x.Store(across_.first, across_.taps, kShortBits, across_.taps, across_.weights);
  y.Store(down_.first, down_.taps, kShortBits, down_.taps, down_.weights);
  return PlanTaps();
}

// `xStride` and `yStride` weights a sample.
bool Resampling::TakeWeights(int xStride, int yStride) {
  const uint64_t count = static_cast<uint64_t>(across_.count) * xStride;
  weights_.emplace(
      CountLayout(count + static_cast<uint64_t>(down_.count) * yStride, sizeof(short)));
  if (!*weights_) return false;
  across_.weights = weights_->At<short>(0);
  down_.weights = across_.weights + count;
  return true;
}

// The rows for few taps.
IppStatus Resampling::PlanTaps() {
  if (across_.taps <= 2 && down_.taps <= 2 && !IsSubtracting(across_) && !IsSubtracting(down_)) {
    if (!TakeSecondWeights()) return StatusMemAllocErr;
    CopySecondWeights(across_, second_.x);
    CopySecondWeights(down_, second_.y);
    return PlanPairs();
  }
  route_ = Route::kTaps;
  routeBytes_ = scratchBytes_ =
      static_cast<uint64_t>(FilterScratchBytes(LayoutOf(channels_), {across_, {}}, down_));
  return StatusOk;
}

bool Resampling::TakeSecondWeights() {
  WorkLayout layout;
  const uint64_t x = layout.Add<unsigned short>(across_.count);
  const uint64_t y = layout.Add<unsigned short>(down_.count);
  derived_.emplace(layout);
  second_ = {derived_->At<unsigned short>(x), derived_->At<unsigned short>(y)};
  return static_cast<bool>(*derived_);
}

// The rows for one tap or two, of which the weights of the second are known.
IppStatus Resampling::PlanPairs() {
  if (across_.taps == 1 && down_.taps == 1) return PlanCopy(across_.first, down_.first);
  linear_ = {across_.count,
             down_.count,
             images_.srcSize.width,
             LayoutOf(channels_),
             {across_.taps - 1, across_.first, second_.x},
             {down_.taps - 1, down_.first, second_.y},
             {}};
  const bool halves = IsHalvingAxis(linear_.x, across_.count) &&
                      IsHalvingAxis(linear_.y, down_.count);
  if (halves && (channels_ == 1 || channels_ == 3)) {
    route_ = Route::kHalve;
    return StatusOk;
  }
  route_ = Route::kLinear;
  routeBytes_ = scratchBytes_ = RowsWorkBytes(static_cast<uint64_t>(across_.count) * channels_);
  return StatusOk;
}

IppStatus Resampling::PlanLong(const ExactAxis& x, const ExactAxis& y) {
  route_ = Route::kLong;
  const int xBits = BitsOf(x), yBits = BitsOf(y);
  across_.taps = x.Trim(LeastOf(xBits), across_.first);
  down_.taps = y.Trim(LeastOf(yBits), down_.first);
  const auto padded = [](int taps) { return (taps + kTapBlock - 1) / kTapBlock * kTapBlock; };
  const int xStride = padded(across_.taps), yStride = padded(down_.taps);
  if (!TakeWeights(xStride, yStride)) return StatusMemAllocErr;
  x.Store(across_.first, across_.taps, xBits, xStride, across_.weights);
  y.Store(down_.first, down_.taps, yBits, yStride, down_.weights);
  long_ = {channels_,
           across_.count,
           down_.count,
           {across_.taps, xStride, xBits, across_.first, across_.weights},
           {down_.taps, yStride, yBits, down_.first, down_.weights}};
  routeBytes_ = scratchBytes_ = LongScratchBytes(long_);
  return StatusOk;
}

IppStatus Resampling::PlanWeighted(const ExactAxis& x, const ExactAxis& y) {
  constexpr double kLeast = 0x1p-26;
  const IppiSize to = images_.dstSize;
  // As many taps as there may be before they are counted.
  WorkLayout firsts;
  const uint64_t xFirst = firsts.Add<int>(to.width), yFirst = firsts.Add<int>(to.height);
  floatFirsts_.emplace(firsts);
  if (!*floatFirsts_) return StatusMemAllocErr;
  int* const xs = floatFirsts_->At<int>(xFirst);
  int* const ys = floatFirsts_->At<int>(yFirst);
  const int xTaps = x.Trim(kLeast * x.Largest(), xs), yTaps = y.Trim(kLeast * y.Largest(), ys);
  WorkLayout weights;
  const uint64_t xWeight = weights.Add<float>(static_cast<uint64_t>(to.width) * xTaps);
  const uint64_t yWeight = weights.Add<float>(static_cast<uint64_t>(to.height) * yTaps);
  floats_.emplace(weights);
  if (!*floats_) return StatusMemAllocErr;
  x.Store(xs, xTaps, floats_->At<float>(xWeight));
  y.Store(ys, yTaps, floats_->At<float>(yWeight));
  weighted_ = {to.width,
               to.height,
               {xTaps, xs, floats_->At<float>(xWeight)},
               {yTaps, ys, floats_->At<float>(yWeight)}};
  const uint64_t bytes = WeightedScratchBytes(weighted_);
  routeBytes_ = ((bytes > routeBytes_ ? bytes : routeBytes_) + 63) / 64 * 64;
  scratchBytes_ = routeBytes_ + static_cast<uint64_t>(images_.srcSize.height);
  return StatusOk;
}

void Resampling::Run(int first, int rows, void* scratch) const {
  if (kind_ == PixelKind::kStraight) return RunStraight(first, rows, scratch);
  RunRoute(first, rows, scratch);
  if (limits_)
    LimitToAlpha_8u_C4(images_.dst + static_cast<ptrdiff_t>(first) * images_.dstStep,
                       images_.dstStep, {images_.dstSize.width, rows});
}

void Resampling::RunRoute(int first, int rows, void* scratch) const {
  const unsigned char* const src = images_.src;
  const int srcStep = images_.srcStep, dstStep = images_.dstStep;
  unsigned char* const dst = images_.dst + static_cast<ptrdiff_t>(first) * dstStep;
  switch (route_) {
    case Route::kCopy: {
      NearestTables tables = nearest_;
      tables.height = rows;
      tables.y += first;
      return NearestRows_8u(src, srcStep, dst, dstStep, &tables, scratch);
    }
    case Route::kHalve: {
      const ImageKernel& kernel = channels_ == 1 ? HalveRows_8u_C1 : HalveRows_8u_C3;
      kernel(src + static_cast<ptrdiff_t>(down_.first[first]) * srcStep +
                 static_cast<ptrdiff_t>(across_.first[0]) * channels_,
             srcStep, dst, dstStep, {across_.count, rows});
      return;
    }
    case Route::kLinear: {
      LinearTables tables = linear_;
      tables.height = rows;
      tables.y.first += first;
      tables.y.weight += first;
      return ResizeLinearRows_8u(src, srcStep, dst, dstStep, &tables, scratch);
    }
    case Route::kTaps: {
      const FilterKernel& kernel = channels_ == 1   ? FilterRows_8u_C1
                                   : channels_ == 2 ? FilterRows_8u_C2
                                   : channels_ == 3 ? FilterRows_8u_C3
                                                    : FilterRows_8u_C4;
      const AxisTaps lines = {rows, down_.taps, down_.first + first,
                              down_.weights + static_cast<ptrdiff_t>(first) * down_.taps};
      kernel(src, srcStep, {across_, {}}, lines, dst, dstStep, scratch);
      return;
    }
    case Route::kLong: {
      LongTables tables = long_;
      tables.height = rows;
      tables.y.first += first;
      tables.y.weights += static_cast<ptrdiff_t>(first) * tables.y.stride;
      LongRows_8u(src, srcStep, dst, dstStep, &tables, scratch);
    }
  }
}

// Rows made of opaque ones are the unweighted filter's, bytes and all.
void Resampling::RunStraight(int first, int rows, void* scratch) const {
  const WeightedTables& w = weighted_;
  const Reach columns = ReachOf(0, w.width, across_, w.x);
  const Reach lines = ReachOf(first, rows, down_, w.y);
  unsigned char* const opaque = static_cast<unsigned char*>(scratch) + routeBytes_;
  for (int r = lines.first; r < lines.end; ++r)
    opaque[r - lines.first] = IsOpaque_8u_C4(
        images_.src + static_cast<ptrdiff_t>(r) * images_.srcStep +
            static_cast<ptrdiff_t>(columns.first) * 4,
        columns.end - columns.first);
  const auto isOpaque = [&](int i) {
    const Reach reach = ReachOf(i, 1, down_, w.y);
    for (int r = reach.first; r < reach.end; ++r)
      if (!opaque[r - lines.first]) return false;
    return true;
  };
  for (int i = first, end = i; i < first + rows; i = end) {
    const bool plain = isOpaque(i);
    for (end = i + 1; end < first + rows && isOpaque(end) == plain;) ++end;
    if (plain) {
      RunRoute(i, end - i, scratch);
      continue;
    }
    WeightedTables tables = w;
    tables.height = end - i;
    tables.y.first += i;
    tables.y.weights += static_cast<ptrdiff_t>(i) * w.y.taps;
    WeightedRows_8u_C4(images_.src, images_.srcStep,
                       images_.dst + static_cast<ptrdiff_t>(i) * images_.dstStep, images_.dstStep,
                       &tables, scratch);
  }
}

}  // namespace qv
