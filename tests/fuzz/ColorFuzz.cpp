// The conversions between packed 4:2:2, planar 4:2:0 and BGR.
#include "tests/fuzz/Call.h"

namespace qv::test {

namespace {

using Lib = CqvAccLib;

// Three planes of a 4:2:0 image of even size, as arrays that may be missing themselves.
struct Planes {
  Planes(Input& in, Call& call, int width, int height, bool writable) {
    for (int c = 0; c < 3; ++c) {
      const std::ptrdiff_t bytes = c == 0 ? width : width / 2, rows = c == 0 ? height : height / 2;
      const int step = call.Step("plane step", bytes);
      const FuzzImage plane = writable ? call.Destination("plane null", step, {bytes, rows})
                                       : call.Source("plane null", step, {bytes, rows});
      data[c] = plane.data;
      steps[c] = plane.step;
    }
    if (contract::MayBeNull(in, "array null")) array = nullptr;
    if (contract::MayBeNull(in, "step array null")) stepArray = nullptr;
  }
  bool HasArrays() const { return array && stepArray; }
  bool HasPlanes() const { return data[0] && data[1] && data[2]; }

  unsigned char* data[3];
  int steps[3];
  unsigned char** array = data;
  int* stepArray = steps;
};

int Even(int n) { return n - n % 2; }

}  // namespace

void FuzzColor(Input& in) {
  const int operation =
      in.Pick("operation: 422 to BGR, 420 to BGR, 422 to 420, two planes to 420", 0, 1, 2, 3);
  const auto type = Type(in.Any("type"));
  Call call(in);
  IppiSize size = {in.Length("width"), in.Length("height")};
  const int leastWidth = operation == 1 ? 1 : 2, leastHeight = operation < 2 ? 1 : 2;
  const bool small = size.width < leastWidth || size.height < leastHeight;
  if (small) {
    call.Refused();
  } else {
    size = contract::Fitting(size, 3);
    if (size.width < leastWidth) size.width = leastWidth;
    if (size.height < leastHeight) size.height = leastHeight;
  }
  const int width = small ? 0 : Even(size.width), height = small ? 0 : Even(size.height);
  const auto status = [&](bool pointers, bool planes) {
    return !pointers ? StatusNullPtrErr
           : small   ? StatusSizeErr
           : !planes ? StatusNullPtrErr
                     : StatusOk;
  };

  if (operation == 0) {
    // Of an odd last pixel two bytes are there, and they suffice.
    const std::ptrdiff_t from = 2 * std::ptrdiff_t{size.width}, to = 3 * std::ptrdiff_t{size.width};
    const FuzzImage src = call.Source("srcStep", "src null", {from, size.height});
    const FuzzImage dst = call.Destination("dstStep", "dst null", {to, size.height});
    call.Run(Op::qvYCbCr422ToBGR, status(src.data && dst.data, true), [&] {
      return Lib::qvYCbCr422ToBGR(type, src.data, src.step, dst.data, dst.step, size);
    });
  } else if (operation == 1) {
    const Planes src(in, call, width, height, false);
    const FuzzImage dst = call.Destination("dstStep", "dst null", {3 * width, height});
    int expected = status(src.HasArrays() && dst.data, src.HasPlanes());
    if (expected == StatusOk && (size.width % 2 || size.height % 2))
      expected = StatusOddSizeWarning;
    call.Run(Op::qvYCbCr420ToBGR, expected, [&] {
      return Lib::qvYCbCr420ToBGR(type, const_cast<unsigned char**>(src.array),
                                  const_cast<int*>(src.stepArray), dst.data, dst.step, size);
    });
  } else if (operation == 2) {
    const FuzzImage src = call.Source("srcStep", "src null", {2 * width, height});
    const Planes dst(in, call, width, height, true);
    const int expected = status(src.data && dst.HasArrays() && dst.HasPlanes(), true);
    call.Run(Op::qvYCbCr422ToYCrCb420, expected, [&] {
      return Lib::qvYCbCr422ToYCrCb420(type, src.data, src.step,
                                       const_cast<unsigned char**>(dst.array),
                                       const_cast<int*>(dst.stepArray), size);
    });
  } else {
    const FuzzImage luma = call.Source("srcYStep", "srcY null", {width, height});
    const FuzzImage chroma = call.Source("srcCbCrStep", "srcCbCr null", {width, height / 2});
    const Planes dst(in, call, width, height, true);
    const bool pointers = luma.data && chroma.data && dst.HasArrays() && dst.HasPlanes();
    call.Run(Op::qvYCbCr420, status(pointers, true), [&] {
      return Lib::qvYCbCr420(type, luma.data, luma.step, chroma.data, chroma.step,
                             const_cast<unsigned char**>(dst.array),
                             const_cast<int*>(dst.stepArray), size);
    });
  }
}

}  // namespace qv::test
