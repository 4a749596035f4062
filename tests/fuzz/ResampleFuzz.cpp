// Resampling: statuses are worked out again from the documentation.
#include <cmath>

#include "qvAcceleratedLib/Resample.h"
#include "tests/fuzz/Call.h"

namespace qv::test {

namespace {

bool IsWithin(double x, double low, double high) { return x >= low && x <= high; }

// Of one axis.
struct Extent {
  double start, length;
  int from, to;

  double Step(bool corners) const {
    if (!corners) return length / to;
    return to > 1 ? (length - 1) / (to - 1) : 0;
  }
  bool IsRegion(bool corners) const {
    return IsWithin(start, -0x1p31, 0x1p31) && length > 0 && length <= 0x1p31 &&
           !(corners && length < 1);
  }
  bool IsOutside() const { return start >= from || start + length <= 0; }
};

ResampleOptions DrawOptions(Input& in) {
  ResampleOptions o = {};
  o.pixels = in.Code("pixels", 0, 2, 5, 1, 3, 4, 0, 2, 5, 6);
  o.filter = in.Code("filter", 2, 1, 4, 8, 16, 32, 0, 3);
  o.position = in.Code("position", 0, 0, 0, 1, 1, 1, 2);
  o.narrow = in.Code("narrow", 0, 0, 0, 1, 1, 1, -1);
  if (in.Rarely("cubic", 64)) o.cubic = in.Real("cubic");
  if (in.Rarely("phases", 80))
    for (double* const phase : {&o.srcPhaseX, &o.srcPhaseY, &o.dstPhaseX, &o.dstPhaseY})
      *phase = in.Rarely("any phase", 24) ? in.Real("phase") : in.Between("of 16", -16, 16) / 16.0;
  return o;
}

void DrawRegion(Input& in, IppiSize from, ResampleOptions& o) {
  const int kind = in.Pick("region: whole, in quarters, any", 0, 0, 1, 1, 2);
  if (kind == 0) return;
  const auto draw = [&](const char* name, int length) {
    return kind == 2 ? in.Real(name) : in.Between(name, -8, 4 * length + 8) / 4.0;
  };
  o.x = draw("x", from.width % 4096);
  o.y = draw("y", from.height % 4096);
  o.width = draw("region's width", from.width % 4096);
  o.height = draw("region's height", from.height % 4096);
}

IppStatus RefusalOf(const ResampleOptions& o, const Extent& x, const Extent& y, bool overlaps) {
  const bool corners = o.position == 1;
  if (overlaps) return StatusStepErr;
  if (o.filter != 0 && o.filter != 1 && o.filter != 2 && o.filter != 4 && o.filter != 8 &&
      o.filter != 16 && o.filter != 32)
    return StatusInterpolationErr;
  for (const double phase : {o.srcPhaseX, o.srcPhaseY, o.dstPhaseX, o.dstPhaseY})
    if (!IsWithin(phase, -1, 1)) return StatusOutOfRangeErr;
  if (o.position < 0 || o.position > 1 || o.narrow < 0 || o.narrow > 1 ||
      !IsWithin(o.cubic, -1, 0))
    return StatusOutOfRangeErr;
  if (!x.IsRegion(corners) || !y.IsRegion(corners)) return StatusRectErr;
  if (x.IsOutside() || y.IsOutside()) return StatusNoOverlapWarning;
  const bool reaches = o.filter == 8 || (o.filter != 1 && o.narrow == 0);
  const double most = std::fmax(x.Step(corners), y.Step(corners));
  return reaches && most > 65536 ? StatusResizeFactorErr : StatusOk;
}

}  // namespace

void FuzzResample(Input& in) {
  Call call(in);
  ResampleOptions o = DrawOptions(in);
  IppiSize from = {in.Length("srcSize.width"), in.Length("srcSize.height")};
  IppiSize to = {in.Length("dstSize.width"), in.Length("dstSize.height")};
  const bool known = o.pixels >= 0 && o.pixels <= 5;
  const int channels = o.pixels < 3 ? o.pixels + 1 : 4;
  const auto isRow = [&](long long width) { return width >= 1 && width * channels <= INT_MAX; };
  const bool sized = known && isRow(from.width) && isRow(to.width) && from.height > 0 &&
                     to.height > 0;
  if (sized) from = contract::Fitting(from, channels), to = contract::Fitting(to, channels);
  DrawRegion(in, from, o);
  // A sample's weights are as many as its step: more than these take more time than a test has.
  if (sized && !(o.width <= 2048 && o.height <= 2048)) to = {1 + to.width % 8, 1 + to.height % 8};
  const std::ptrdiff_t srcBytes = known ? std::ptrdiff_t{channels} * from.width : 1;
  const std::ptrdiff_t dstBytes = known ? std::ptrdiff_t{channels} * to.width : 1;
  const int dstStep = call.Step("dstStep", dstBytes);
  const bool overlaps = to.height > 1 && std::llabs(dstStep) < dstBytes;
  const bool whole = o.x == 0 && o.y == 0 && o.width == 0 && o.height == 0;
  const Extent x = {o.x, whole ? from.width : o.width, from.width, to.width};
  const Extent y = {o.y, whole ? from.height : o.height, from.height, to.height};
  int expected = !known ? StatusDataTypeErr : !sized ? StatusSizeErr : RefusalOf(o, x, y, overlaps);
  if (expected != StatusOk) call.Refused();
  const FuzzImage src = call.Source("srcStep", "src null", {srcBytes, from.height});
  const FuzzImage dst = call.OverlappingDestination("dst null", dstStep, {dstBytes, to.height});
  const bool none = in.Rarely("no options");
  if (!src.data || !dst.data || none) expected = StatusNullPtrErr;
  call.Run("qv_resample", expected, [&] {
    return Resample({src.data, from, src.step, dst.data, to, dst.step}, none ? nullptr : &o);
  });
}

}  // namespace qv::test
