// Rotation, warping, and the two operations that only compute.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "tests/fuzz/Call.h"
#include "tests/support/RandomMatrix.h"

namespace qv::test {

namespace {

using Lib = CqvAccLib;

// Regions of images: (0, 0) on, elsewhere, up to the largest int and beyond, anything.
IppiRect DrawRegion(Input& in, const char* xName, const char* yName, const char* widthName,
                    const char* heightName, int most) {
  IppiRect roi = {0, 0, 0, 0};
  const int origin = in.Pick("origin: 0, near, below 0, far, any, last", 0, 5, 1, 1, 2, 3, 4);
  if (origin == 1) roi.x = in.Between(xName, 0, 300), roi.y = in.Between(yName, 0, 300);
  if (origin == 2) roi.x = in.Between(xName, -2, 2), roi.y = in.Between(yName, -2, 2);
  if (origin == 3) roi.x = in.Between(xName, 0, 1 << 24), roi.y = in.Between(yName, 0, 1 << 24);
  if (origin == 4) roi.x = in.Any(xName), roi.y = in.Any(yName);
  roi.width = in.Length(widthName, most);
  roi.height = in.Length(heightName, most);
  if (origin == 5) roi.x = in.Between(xName, INT_MAX - 255, INT_MAX);
  if (origin == 5 && in.Byte() % 2) roi.y = in.Between(yName, INT_MAX - 255, INT_MAX);
  return roi;
}

// Mostly what carries one region onto a quadrilateral near the other one.
Matrix DrawMatrix(Input& in, IppiRect from, IppiRect to) {
  Matrix m = kIdentity;
  switch (in.Pick("matrix: quadrilateral, affine, shift, any", 0, 0, 1, 2, 3)) {
    case 0: {
      double quad[4][2];
      for (int i = 0; i < 4; ++i) {
        const bool right = i == 1 || i == 2, low = i >= 2;
        const double x = to.x + (right ? to.width - 1.0 : 0),
                     y = to.y + (low ? to.height - 1.0 : 0);
        quad[i][0] = x + in.Between("corner, in eighths of the width", -8, 8) / 8.0 * to.width;
        quad[i][1] = y + in.Between("corner, in eighths of the height", -8, 8) / 8.0 * to.height;
      }
      Lib::qvGetPerspectiveTransform(Lib::OneChannel, from, quad, m.c);
      break;
    }
    case 1:
      for (int i = 0; i < 2; ++i)
        for (int k = 0; k < 2; ++k) m.c[i][k] = in.Between("affine, in 32nds", -96, 96) / 32.0;
      [[fallthrough]];
    case 2:
      m.c[0][2] = to.x - m.c[0][0] * from.x - m.c[0][1] * from.y + in.Real("x shift");
      m.c[1][2] = to.y - m.c[1][0] * from.x - m.c[1][1] * from.y + in.Real("y shift");
      break;
    default:
      for (auto& row : m.c)
        for (double& c : row) c = in.Real("coefficient");
  }
  return m;
}

struct Images {
  IppiSize srcSize;
  IppiRect srcRoi, dstRoi;
};

Images DrawImages(Input& in) {
  Images images;
  images.srcRoi = DrawRegion(in, "srcRoi.x", "srcRoi.y", "srcRoi.width", "srcRoi.height", 300);
  const auto fitting = [&](const char* name, int origin, int length) {
    const long long end = static_cast<long long>(origin) + length;
    const int some = in.Pick("image: all of the region, part, none, any", 0, 0, 0, 1, 2, 3);
    if (some == 3 || end < 1 || end > INT_MAX) return in.Any(name);
    if (some == 0) return in.Note(name, static_cast<int>(end));
    const long long size = some == 1 ? origin + length / 2 : origin;
    return in.Note(name, size < 1 ? 1 : static_cast<int>(size));
  };
  images.srcSize.width = fitting("srcSize.width", images.srcRoi.x, images.srcRoi.width);
  images.srcSize.height = fitting("srcSize.height", images.srcRoi.y, images.srcRoi.height);
  images.dstRoi = contract::Refusable(
      DrawRegion(in, "dstRoi.x", "dstRoi.y", "dstRoi.width", "dstRoi.height", 700));
  return images;
}

bool IsRegion(IppiRect roi) {
  return roi.x >= 0 && roi.y >= 0 && roi.width >= 1 && roi.height >= 1;
}

bool AreSizesGood(const Images& a) {
  return a.srcSize.width >= 1 && a.srcSize.height >= 1 && IsRegion(a.srcRoi) && IsRegion(a.dstRoi);
}

void Shrink(IppiRect& roi, int channels) {
  const IppiSize size = contract::Fitting({roi.width, roi.height}, channels);
  roi = contract::Addressable(roi);
  roi.width = size.width;
  roi.height = size.height;
}

// Pointers to pixel (0, 0) of images of which only the regions' pixels exist.
struct Placed {
  FuzzImage src, dst;
};

int PositiveStep(Input& in, Call& call, const char* name, std::ptrdiff_t rowBytes,
                 std::ptrdiff_t rows) {
  int step = call.Step(name, rowBytes);
  if (step < 0 && step >= -INT_MAX && !in.Rarely("negative step")) step = in.Note(name, -step);
  return rows > 1 ? contract::DisjointStep(step, rowBytes, rows) : step;
}

Placed PlaceImages(Input& in, Call& call, const Images& a, int channels) {
  Part read = {0, 0}, written = {0, 0};
  if (!call.refused()) {
    const auto part = [](int origin, int length, int size) {
      return std::min<std::ptrdiff_t>(length, std::ptrdiff_t{size} - origin);
    };
    read = {channels * part(a.srcRoi.x, a.srcRoi.width, a.srcSize.width),
            part(a.srcRoi.y, a.srcRoi.height, a.srcSize.height),
            std::ptrdiff_t{channels} * a.srcRoi.x, a.srcRoi.y};
    written = {std::ptrdiff_t{channels} * a.dstRoi.width, a.dstRoi.height,
               std::ptrdiff_t{channels} * a.dstRoi.x, a.dstRoi.y};
  }
  const int srcStep = PositiveStep(in, call, "srcStep", read.bytes, 1);
  const int dstStep = PositiveStep(in, call, "dstStep", written.bytes, written.rows);
  if (srcStep < 1 || dstStep < 1) call.Refused();
  Placed placed;
  placed.src = call.Source("src null", srcStep, read);
  placed.dst = call.Destination("dst null", dstStep, written);
  return placed;
}

// What is refused before the transform is looked at; kAnyStatus after that.
int Refusal(const Images& a, const Placed& images, int method, bool looksAtMethod) {
  if (!images.src.data || !images.dst.data) return StatusNullPtrErr;
  if (!AreSizesGood(a)) return StatusSizeErr;
  if (images.src.step < 1 || images.dst.step < 1) return StatusStepErr;
  const int code = method & INT_MAX;
  if (looksAtMethod && code != 1 && code != 2 && code != 4) return StatusInterpolationErr;
  return Call::kAnyStatus;
}

int DrawMethod(Input& in) {
  return in.Code("interpolation", 1, 2, 4, static_cast<int>(0x80000001u), 3, 8);
}

// What warps and rotations of one image begin with.
struct Typed {
  int type;
  bool known;
  int channels, method;
  Images images;
};

Typed DrawTyped(Input& in, Call& call) {
  const int type = in.Code("type", 2, 4, 4, 3), method = DrawMethod(in);
  Typed typed = {type, type == 2 || type == 4, type == 4 ? 3 : 1, method, DrawImages(in)};
  Images& a = typed.images;
  if (!typed.known || !AreSizesGood(a))
    call.Refused();
  else
    Shrink(a.srcRoi, typed.channels), Shrink(a.dstRoi, typed.channels);
  return typed;
}

void FuzzWarp(Input& in, Call& call) {
  const Typed typed = DrawTyped(in, call);
  const Images& a = typed.images;
  const int channels = typed.channels, method = typed.method;
  const auto type = Type(typed.type);
  const Matrix m = DrawMatrix(in, a.srcRoi, a.dstRoi);
  const Placed images = PlaceImages(in, call, a, channels);
  call.Run(
      Op::qvWarpPerspective,
      typed.known ? Refusal(a, images, method, true) : StatusDataTypeErr,
      [&] {
        return Lib::qvWarpPerspective(type, images.src.data, a.srcSize, images.src.step, a.srcRoi,
                                      images.dst.data, images.dst.step, a.dstRoi, m.c, method);
      },
      contract::Bands::kStatusMayVary);
}

void FuzzWarpTwo(Input& in, Call& call) {
  const int method = DrawMethod(in);
  Images a = DrawImages(in);
  if (!AreSizesGood(a))
    call.Refused();
  else
    Shrink(a.srcRoi, 3), Shrink(a.dstRoi, 3);
  const Matrix m = DrawMatrix(in, a.srcRoi, a.dstRoi), m2 = DrawMatrix(in, a.srcRoi, a.dstRoi);
  const Placed first = PlaceImages(in, call, a, 3);
  // On several bands the second image is warped whatever became of the first.
  if (AreSizesGood(a)) call.NotRefused();
  const Placed second = PlaceImages(in, call, a, 1);
  call.Run(
      Op::qvWarpPerspectiveEx,
      Call::kAnyStatus,
      [&] {
        return Lib::qvWarpPerspectiveEx(Lib::OneChannel, first.src.data, a.srcSize, first.src.step,
                                        a.srcRoi, first.dst.data, first.dst.step, a.dstRoi, m.c,
                                        method, second.src.data, second.src.step, second.dst.data,
                                        second.dst.step, m2.c);
      },
      contract::Bands::kSeveralDiffer);
}

void FuzzRotate(Input& in, Call& call) {
  const Typed typed = DrawTyped(in, call);
  const Images& a = typed.images;
  const int channels = typed.channels, method = typed.method;
  const auto type = Type(typed.type);
  const int kind = in.Pick("angle: quarters, whole, any", 0, 1, 2);
  const double angle = kind == 0   ? 90.0 * in.Between("quarters", -5, 5)
                       : kind == 1 ? in.Between("degrees", -720, 720)
                                   : in.Real("angle");
  double shift[2];
  for (int i = 0; i < 2; ++i)
    shift[i] = in.Rarely("any shift", 48) ? in.Real("shift")
                                          : in.Between("shift, in halves", -800, 800) / 2.0;
  const Placed images = PlaceImages(in, call, a, channels);
  // Quarter turns by whole numbers do not look at the interpolation.
  const int expected = typed.known ? Refusal(a, images, method, false) : StatusDataTypeErr;
  // A rotation by numbers is refused for nothing else, and warns of a region without a pixel.
  const bool isNumber = std::isfinite(angle) && std::isfinite(shift[0]) && std::isfinite(shift[1]);
  const bool isOutside = a.srcRoi.x >= a.srcSize.width || a.srcRoi.y >= a.srcSize.height;
  call.Run(Op::qvRotate, expected, [&] {
    const IppStatus status = Lib::qvRotate(type, images.src.data, a.srcSize, images.src.step,
                                           a.srcRoi, images.dst.data, images.dst.step, a.dstRoi,
                                           angle, shift[0], shift[1], method);
    if (expected == Call::kAnyStatus && isNumber && status != StatusNoOverlapWarning &&
        status != Refusal(a, images, method, true) && (status != StatusOk || isOutside))
      call.Fail("status of a rotation", "", 0, StatusOk, status);
    return status;
  });
}

void FuzzNumbers(Input& in, Call& call) {
  const auto type = Type(in.Any("type"));
  const IppiRect roi = DrawRegion(in, "roi.x", "roi.y", "roi.width", "roi.height", 700);
  double quad[4][2];
  for (auto& corner : quad)
    for (double& c : corner) c = in.Real("corner");
  // Doubles at an address of their own, so that what is written is compared.
  const FuzzImage matrix = call.Required(72, {72, 1}, true),
                  bound = call.Required(32, {32, 1}, true);
  call.Run(Op::qvGetPerspectiveTransform, Call::kAnyStatus, [&] {
    double coeffs[3][3], box[2][2];
    std::memcpy(coeffs, matrix.data, sizeof coeffs);
    std::memcpy(box, bound.data, sizeof box);
    const IppStatus status = Lib::qvGetPerspectiveTransform(type, roi, quad, coeffs);
    const IppStatus boundStatus =
        Lib::qvGetRotateBound(type, roi, box, quad[0][0], quad[1][0], quad[1][1]);
    if ((boundStatus == StatusOk) != IsRegion(roi)) call.Fail("wrong status of the bound");
    if (boundStatus == StatusOk) Call::Succeeded().insert("qvGetRotateBound");
    std::memcpy(matrix.data, coeffs, sizeof coeffs);
    if (status == StatusOk) std::memcpy(bound.data, box, sizeof box);
    return static_cast<int>(status);
  });
}

}  // namespace

void FuzzGeometry(Input& in) {
  static constexpr void (*kOperations[])(Input&, Call&) = {FuzzWarp, FuzzRotate, FuzzWarpTwo,
                                                           FuzzNumbers};
  const int operation =
      in.Pick("operation: warp, rotate, two images, numbers", 0, 0, 0, 1, 1, 1, 2, 3);
  Call call(in);
  kOperations[operation](in, call);
}

}  // namespace qv::test
