// The deinterlacing filter: its modes touch different rows.
#include "tests/fuzz/Call.h"

namespace qv::test {

void FuzzDeinterlace(Input& in) {
  using Lib = CqvAccLib;
  const int type = in.Code("type", 2, 4, 2, 3);
  const auto mode = static_cast<unsigned>(in.Code("mode", 0, 1, 4, 16, 2));
  const auto weight = static_cast<unsigned>(
      in.Rarely("any weight", 32) ? in.Any("weight") : in.Between("weight", 0, 258));
  Call call(in);
  IppiSize size = {in.Length("width"), in.Length("height")};
  const bool known = type == 2 || type == 4;
  // With three channels the width does not count.
  if (!known || (type == 2 && size.width < 1) || size.height < 3) {
    call.Refused();
  } else {
    const int width = size.width;
    size = contract::Fitting({width < 1 ? 1 : width, size.height}, 3);
    if (size.height < 3) size.height = 3;
    if (width < 1) size.width = width;
  }
  // With three channels a row is the whole step, which the contract lets be as long as memory
  // allows.
  int srcStep = call.Step("srcStep", (type == 4 ? 3 : 1) * std::ptrdiff_t{size.width});
  if (type == 4 && !call.refused() && srcStep > contract::kMostBytes / size.height)
    srcStep = in.Note("  as memory allows, srcStep", contract::kMostBytes / size.height);
  const std::ptrdiff_t rowBytes = type == 4 ? srcStep : size.width;
  if (rowBytes < 1) call.Refused();
  const bool early = mode == 4 || mode == 16;  // begins a row before the pointers
  const std::ptrdiff_t firstRead = early ? -2 : 0, firstWritten = early ? -1 : 0;
  const std::ptrdiff_t endWritten = std::ptrdiff_t{size.height} - (mode == 1 || mode == 4 ? 1 : 0);
  const FuzzImage src = call.Source(
      "src null", srcStep, {rowBytes, std::ptrdiff_t{size.height} - firstRead, 0, firstRead});
  // Also a step shorter than a row, such as that of an image without the source's padding.
  int dstStep = call.Step("dstStep", rowBytes);
  if (in.Rarely("whole vectors, dstStep", 64)) dstStep = in.Note("  dstStep", dstStep & -64);
  const FuzzImage dst = call.OverlappingDestination(
      "dst null", dstStep, {rowBytes, endWritten - firstWritten, 0, firstWritten});
  // Only an image that was to be touched moves its rows apart.
  const int step = src.step;
  const bool empty = size.height < 3 || (type == 4 ? step : size.width) < 1;
  const int expected = !known                   ? StatusDataTypeErr
                       : !src.data || !dst.data ? StatusNullPtrErr
                       : empty                  ? StatusSizeErr
                                                : StatusOk;
  call.Run(Op::qvDeinterlace, expected, [&] {
    return Lib::qvDeinterlace(Type(type), src.data, step, dst.data,
                              dst.step, size, weight, mode);
  });
}

}  // namespace qv::test
