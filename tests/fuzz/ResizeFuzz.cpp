// qvResize and qvResizeYUV422. The statuses and the written rectangle are worked out again from the
// documentation; the regions are all of the source that may be read.
#include <algorithm>

#include "kernels/resize/Resize.h"
#include "tests/fuzz/Call.h"
#include "tests/support/ResizeCases.h"

namespace qv::test {

namespace {

using Lib = CqvAccLib;

struct Arguments {
  int type;
  IppiSize srcSize;
  IppiRect srcRoi;
  IppiSize dstSize;
  double xFactor, yFactor;
  int method;
};

int Clipped(int origin, int length, int size) { return std::min(length, size - origin); }

// Factors around what the sizes ask for, or anything.
double DrawFactor(Input& in, const char* name, int from, int to) {
  switch (in.Pick("factor: fitting, near, simple, any", 0, 0, 1, 2, 3)) {
    case 0: return in.Note(name, static_cast<double>(to) / (from == 0 ? 1 : from));
    case 1: return in.Note(name, (to + in.Between("of 8", -16, 16) / 8.0) / (from == 0 ? 1 : from));
    case 2: return in.Note(name, in.Between("of 16", 1, 64) / 16.0);
    default: return in.Real(name);
  }
}

Arguments Draw(Input& in, bool packed) {
  Arguments a;
  a.type = packed ? in.Any("type") : in.Code("type", 2, 4, 4, 3);
  a.method = in.Code("interpolation", 1, 2, 4, 8, 16, 3, 0);
  a.srcSize = {in.Length("srcSize.width"), in.Length("srcSize.height")};
  a.srcRoi = {0, 0, a.srcSize.width, a.srcSize.height};
  const int region = in.Pick("region: whole, inside, beyond, any", 0, 1, 2, 3);
  if (region == 1 && a.srcSize.width > 0 && a.srcSize.height > 0) {
    a.srcRoi.x = in.Between("srcRoi.x", 0, a.srcSize.width - 1);
    a.srcRoi.y = in.Between("srcRoi.y", 0, a.srcSize.height - 1);
    a.srcRoi.width = in.Between("srcRoi.width", 1, a.srcSize.width - a.srcRoi.x);
    a.srcRoi.height = in.Between("srcRoi.height", 1, a.srcSize.height - a.srcRoi.y);
  } else if (region == 2) {
    a.srcRoi.x = in.Between("srcRoi.x", -4, 400);
    a.srcRoi.y = in.Between("srcRoi.y", -4, 400);
    a.srcRoi.width = in.Length("srcRoi.width");
    a.srcRoi.height = in.Length("srcRoi.height");
  } else if (region == 3) {
    a.srcRoi = {in.Any("srcRoi.x"), in.Any("srcRoi.y"), in.Any("srcRoi.width"),
                in.Any("srcRoi.height")};
  }
  a.dstSize = {in.Length("dstSize.width"), in.Length("dstSize.height")};
  if (packed && !in.Rarely("odd sizes", 24)) {
    for (int* n : {&a.srcSize.width, &a.srcRoi.x, &a.srcRoi.width, &a.dstSize.width}) *n &= ~1;
  }
  a.xFactor = DrawFactor(in, "xFactor", a.srcRoi.width, a.dstSize.width);
  a.yFactor = DrawFactor(in, "yFactor", a.srcRoi.height, a.dstSize.height);
  return a;
}

bool IsSourceBad(const Arguments& a) {
  return a.srcSize.width < 1 || a.srcSize.height < 1 || a.srcRoi.x < 0 || a.srcRoi.y < 0 ||
         a.srcRoi.width < 1 || a.srcRoi.height < 1;
}

bool StartsOutside(const Arguments& a) {
  return a.srcRoi.x >= a.srcSize.width || a.srcRoi.y >= a.srcSize.height;
}

bool IsSizeKept(const Arguments& a) {
  const auto near = [](long long from, long long to) { return from - to <= 1 && to - from <= 1; };
  return near(a.srcSize.width, a.dstSize.width) && near(a.srcSize.height, a.dstSize.height) &&
         a.srcRoi.x == 0 && a.srcRoi.y == 0 && a.srcRoi.width == a.srcSize.width &&
         a.srcRoi.height == a.srcSize.height;
}

int BandCount(const Arguments& a, int budget) {
  int n = budget;
  while (n > 1 && (a.srcSize.height / n <= 64 || a.dstSize.height / n <= 64)) --n;
  return n;
}

// What may be read and written must fit into a test's memory and time.
void Fit(Arguments& a, int bytesAPixel) {
  const auto shrink = [&](int& width, int& height) {
    const IppiSize fitting = contract::Fitting({width, height}, bytesAPixel);
    width = fitting.width;
    height = fitting.height;
  };
  a.srcRoi = contract::Addressable(a.srcRoi);
  a.srcRoi.width = Clipped(a.srcRoi.x, a.srcRoi.width, a.srcSize.width);
  a.srcRoi.height = Clipped(a.srcRoi.y, a.srcRoi.height, a.srcSize.height);
  shrink(a.srcRoi.width, a.srcRoi.height);
  shrink(a.dstSize.width, a.dstSize.height);
}

void FuzzPixels(Input& in, Call& call) {
  Arguments a = Draw(in, false);
  const bool known = a.type == 2 || a.type == 4;
  const int channels = a.type == 4 ? 3 : 1;
  const bool factors = a.xFactor > 0 && a.yFactor > 0;
  const auto methodOf = [&] {
    if (IsSizeKept(a)) return 1;
    return a.method == 8 && (a.xFactor > 1 || a.yFactor > 1) ? 16 : a.method;
  };
  const auto methodKnown = [&](int m) { return m == 1 || m == 2 || m == 4 || m == 8 || m == 16; };
  bool works = known && !IsSourceBad(a) && !StartsOutside(a) && !IsEmpty(a.dstSize) && factors &&
               methodKnown(methodOf());
  if (works) {
    Fit(a, channels);
    works = methodKnown(methodOf());  // which may have hung on the size
  }
  if (!works) call.Refused();
  const int method = methodOf();
  int bufferBytes;  // too many for an int: not in bands
  const bool banded = known && ResizeBandBufferSize(a.dstSize, channels, method, &bufferBytes) == 0;
  const int count = banded ? BandCount(a, call.budget()) : 1;

  int refusal = StatusOk;
  if (!known)
    refusal = StatusDataTypeErr;
  else if (IsSourceBad(a))
    refusal = StatusSizeErr;
  else if (count == 1 && StartsOutside(a))
    refusal = StatusNoOverlapWarning;
  else if (IsEmpty(a.dstSize))
    refusal = StatusSizeErr;
  else if (!factors)
    refusal = StatusResizeFactorErr;
  else if (!methodKnown(method))
    refusal = StatusInterpolationErr;
  else if (StartsOutside(a))
    refusal = StatusNoOverlapWarning;

  // The written rectangle.
  Written columns = {0, 0}, rows = {0, 0};
  if (works && count > 1) {
    const int bandRows = a.dstSize.height / count;
    columns = WrittenInBands(a.srcRoi.x, a.srcRoi.width, a.xFactor, 0, 0, a.dstSize.width);
    rows = WrittenInBands(a.srcRoi.y, a.srcRoi.height, a.yFactor, 0, 0, a.dstSize.height);
    const Written last = WrittenInBands(a.srcRoi.y, a.srcRoi.height, a.yFactor, 0,
                                        bandRows * (count - 1), a.dstSize.height);
    if (columns.end < columns.first || last.end < last.first) refusal = StatusNothingToDoWarning;
    if (columns.end <= columns.first || rows.end <= rows.first) columns = rows = {0, 0};
  } else if (works) {
    columns.end = Extent(a.srcRoi.width, a.xFactor, a.dstSize.width);
    rows.end = Extent(a.srcRoi.height, a.yFactor, a.dstSize.height);
    if (columns.end < 1 || rows.end < 1) refusal = StatusEmptyOutputErr;
  }

  const std::ptrdiff_t srcBytes = std::ptrdiff_t{channels} * a.srcRoi.width;
  const FuzzImage src =
      call.Source("srcStep", "src null",
                  {srcBytes, a.srcRoi.height, std::ptrdiff_t{channels} * a.srcRoi.x, a.srcRoi.y});
  const auto width = static_cast<std::ptrdiff_t>(columns.end - columns.first);
  const FuzzImage dst = call.Destination(
      "dst null", call.Step("dstStep", channels * std::max<std::ptrdiff_t>(width, 0)),
      {channels * width, static_cast<std::ptrdiff_t>(rows.end - rows.first),
       static_cast<std::ptrdiff_t>(channels * columns.first),
       static_cast<std::ptrdiff_t>(rows.first)});
  if (known && (!src.data || !dst.data)) refusal = StatusNullPtrErr;
  // 0 times infinity has no place.
  const bool sure = count == 1 || !works || (a.xFactor < 1e300 && a.yFactor < 1e300);
  const bool bandsDiffer = BandCount(a, 2) > 1;
  call.Run(
      Op::qvResize,
      sure ? refusal : Call::kAnyStatus,
      [&] {
        return Lib::qvResize(Type(a.type), src.data, a.srcSize, src.step,
                             a.srcRoi, dst.data, dst.step, a.dstSize, a.xFactor, a.yFactor,
                             a.method);
      },
      bandsDiffer ? contract::Bands::kSeveralDiffer : contract::Bands::kSame);
}

void FuzzPacked(Input& in, Call& call) {
  Arguments a = Draw(in, true);
  const int method = std::min(a.method, 4);
  const auto odd = [](int n) { return n % 2 != 0; };
  const auto refusalOf = [&] {
    if (IsSourceBad(a)) return StatusSizeErr;
    if (StartsOutside(a)) return StatusNoOverlapWarning;
    if (IsEmpty(a.dstSize) || odd(a.srcSize.width) || odd(a.srcRoi.width) || odd(a.srcRoi.x) ||
        a.dstSize.width < 2)
      return StatusSizeErr;
    if (!(a.xFactor > 0 && a.yFactor > 0)) return StatusResizeFactorErr;
    if (method != 1 && method != 2 && method != 4) return StatusInterpolationErr;
    return StatusOk;
  };
  if (refusalOf() == StatusOk) {
    Fit(a, 2);
    a.srcRoi.width = std::max(2, a.srcRoi.width & ~1);
    a.dstSize.width = std::max(2, a.dstSize.width);
  } else {
    call.Refused();
  }
  IppStatus refusal = refusalOf();
  int pairs = 0, rows = 0;
  if (refusal == StatusOk) {
    const double wide = a.srcRoi.width * a.xFactor + 1e-07;
    const int width = wide < a.dstSize.width ? static_cast<int>(wide) : a.dstSize.width;
    pairs = std::max(2, width) / 2;
    rows = Extent(a.srcRoi.height, a.yFactor, a.dstSize.height);
    if ((width < 2 && wide < 1.5) || rows < 1) refusal = StatusEmptyOutputErr, pairs = rows = 0;
  }
  const std::ptrdiff_t srcBytes = 2 * std::ptrdiff_t{a.srcRoi.width},
                       dstBytes = std::ptrdiff_t{4} * pairs;
  // The region's first byte is four bytes a pixel to the right.
  const FuzzImage src =
      call.Source("srcStep", "src null",
                  {srcBytes, a.srcRoi.height, 4 * std::ptrdiff_t{a.srcRoi.x}, a.srcRoi.y});
  const FuzzImage dst = call.Destination("dstStep", "dst null", {dstBytes, rows});
  if (!src.data || !dst.data) refusal = StatusNullPtrErr;
  call.Run(Op::qvResizeYUV422, refusal, [&] {
    return Lib::qvResizeYUV422(Type(a.type), src.data, a.srcSize, src.step,
                               a.srcRoi, dst.data, dst.step, a.dstSize, a.xFactor, a.yFactor,
                               a.method);
  });
}

}  // namespace

void FuzzResize(Input& in) {
  const int operation = in.Pick("operation: pixels, packed 4:2:2", 0, 0, 1);
  Call call(in);
  (operation == 0 ? FuzzPixels : FuzzPacked)(in, call);
}

}  // namespace qv::test
