// Inverse matrices and canvases: no images, but numbers of every kind.
#include <cmath>

#include "qvAcceleratedLib/qv.h"
#include "tests/fuzz/Call.h"

namespace qv::test {

namespace {

template <class Numbers>
bool AreFinite(const Numbers& numbers) {
  for (const double x : numbers)
    if (!std::isfinite(x)) return false;
  return true;
}

void FuzzInverse(Input& in, Call& call) {
  double coeffs[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  const int kind = in.Pick("coefficients: affine, simple, any", 0, 1, 2);
  for (int i = 0; i < (kind == 0 ? 6 : 9); ++i)
    coeffs[i] = kind == 2 ? in.Real("coefficient") : in.Between("coefficient", -128, 127) / 8.0;
  double inverse[9] = {}, *const to = in.Rarely("in place", 64) ? coeffs : inverse;
  const bool finite = AreFinite(coeffs), none = in.Rarely("inverse null");
  if (none) return call.Run("qv_invert_transform", StatusNullPtrErr, [&] {
    return qv_invert_transform(coeffs, nullptr);
  });
  double before[9], last[9];
  std::memcpy(before, coeffs, sizeof before);
  call.Run("qv_invert_transform", Call::kAnyStatus, [&] {
    std::memcpy(coeffs, before, sizeof before);
    const int status = qv_invert_transform(coeffs, to);
    if (status != StatusOk && (status != StatusCoeffErr || std::memcmp(coeffs, before, 72) != 0))
      call.Fail("a refusal that writes, or for another reason", "", 0, StatusCoeffErr, status);
    if (status == StatusOk && (!finite || !AreFinite(inverse) || !AreFinite(coeffs)))
      call.Fail("not a number of an inverse");
    // What eighths and whole numbers are multiplied by has an error that can be told.
    if (status == StatusOk && kind < 2)
      for (int i = 0; i < 9; ++i) {
        double sum = i % 4 == 0 ? -1 : 0, size = 1;
        for (int k = 0; k < 3; ++k) {
          const double product = before[i / 3 * 3 + k] * to[3 * k + i % 3];
          sum += product;
          size += std::fabs(product);
        }
        if (std::fabs(sum) > size * 0x1p-20) call.Fail("not the inverse");
      }
    std::memcpy(last, to, sizeof last);
    return status;
  });
}

void FuzzCanvas(Input& in, Call& call) {
  const qv_size size = {in.Length("width"), in.Length("height")};
  const double angle = in.Rarely("any angle", 64) ? in.Real("angle")
                                                   : in.Between("degrees, in eighths", -5760, 5760)
                                                         / 8.0;
  const bool none = in.Rarely("shift null"), empty = size.width < 1 || size.height < 1;
  const double diagonal = std::hypot(size.width, size.height);
  const int expected = none                    ? StatusNullPtrErr
                       : empty                 ? StatusSizeErr
                       : !std::isfinite(angle) ? StatusCoeffErr
                       : diagonal < INT_MAX - 4.0 ? StatusOk
                                                  : Call::kAnyStatus;
  call.Run("qv_rotation_canvas", expected, [&] {
    qv_size canvas = {-7, -7};
    double shift[2] = {};
    const int status = qv_rotation_canvas(size, angle, &canvas, none ? nullptr : shift);
    const double least = std::fmin(size.width, size.height) - 1;
    if (status == StatusOk
            ? canvas.width < least || canvas.height < least || canvas.width > diagonal + 3 ||
                  canvas.height > diagonal + 3 || !AreFinite(shift)
            : canvas.width != -7 || canvas.height != -7)
      call.Fail("a canvas that does not hold the image, or is written in spite of the status");
    return status;
  });
}

}  // namespace

void FuzzMatrices(Input& in) {
  const int operation = in.Pick("operation: inverse, canvas", 0, 1);
  Call call(in);
  (operation == 0 ? FuzzInverse : FuzzCanvas)(in, call);
}

}  // namespace qv::test
