// Constant-alpha composition and the alpha merges, in place where that is allowed.
#include "qvAcceleratedLib/Settings.h"
#include "tests/fuzz/Call.h"

namespace qv::test {

namespace {

using Lib = CqvAccLib;

void FuzzAlphaComp(Input& in, Call& call) {
  const int type = in.Code("type", 2, 4, 4, 3);
  const int code = in.Code("alphaType", 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, -1);
  const auto alpha1 = static_cast<unsigned char>(in.Between("alpha1", 0, 255));
  const auto alpha2 = static_cast<unsigned char>(in.Between("alpha2", 0, 255));
  const bool known = type == 2 || type == 4, composes = code >= 0 && code <= 11;
  const IppiSize size = call.Size(!known || !composes, 3);
  const std::ptrdiff_t rowBytes = std::ptrdiff_t{type == 4 ? 3 : 1} * size.width;
  const Part part = {rowBytes, size.height};
  const FuzzImage dst = call.Destination("dst null", call.Step("dstStep", rowBytes), part);
  const int alias = in.Pick("dst is: apart, src1, src2, both", 0, 0, 0, 1, 2, 3);
  const FuzzImage src1 =
      alias & 1 ? dst : call.Source("src1 null", call.Step("src1Step", rowBytes), part);
  // What these codes do not read need not be there.
  const bool reads2 = code != 1 && code != 2 && code != 7 && code != 8;
  const FuzzImage src2 = alias & 2 ? dst
                                   : call.Source("src2 null", call.Step("src2Step", rowBytes),
                                                 reads2 ? part : Part{0, 1});
  const int expected = !known                                  ? StatusDataTypeErr
                       : !src1.data || !src2.data || !dst.data ? StatusNullPtrErr
                       : IsEmpty(size)                         ? StatusSizeErr
                       : !composes                             ? StatusAlphaTypeErr
                                                               : StatusOk;
  call.Run(Op::qvAlphaCompC, expected, [&] {
    return Lib::qvAlphaCompC(Type(type), src1.data, src1.step, alpha1, src2.data, src2.step, alpha2,
                             dst.data, dst.step, size, static_cast<IppiAlphaType>(code));
  });
}

// A pointer that must not be null.
FuzzImage Needed(Call& call, const char* name, Part part, bool writable) {
  return call.Required(call.Step(name, part.bytes), part, writable);
}

void FuzzMergePlus(Input& in, Call& call) {
  const int type = in.Code("type", 2, 4, 4, 3);
  const bool known = type == 2 || type == 4;
  const IppiSize size = call.Size(!known, 3);
  const Part colours = {std::ptrdiff_t{type == 4 ? 3 : 1} * size.width, size.height};
  const FuzzImage dst = Needed(call, "srcDstStep", colours, true);
  const FuzzImage src =
      in.Rarely("src is srcDst", 32) ? dst : Needed(call, "srcStep", colours, false);
  const FuzzImage alpha = Needed(call, "alphaStep", {size.width, size.height}, false);
  call.Run(Op::qvMergeAlphaPlus, known ? StatusOk : StatusDataTypeErr, [&] {
    return Lib::qvMergeAlphaPlus(Type(type), dst.data, dst.step, src.data, src.step, alpha.data,
                                 alpha.step, size.width, size.height);
  });
}

void FuzzMergeOver(Input& in, Call& call) {
  const unsigned path = static_cast<unsigned>(in.Pick("accelerated path", 1, 0));
  const int type = in.Any("type");
  IppiSize size = {in.Length("width"), in.Length("height")};
  if (size.width < 0 || size.height < 1)
    call.Refused();
  else
    size = contract::Fitting(size, 3);
  const std::ptrdiff_t rowBytes = size.width < 0 ? -1 : 3 * std::ptrdiff_t{size.width};
  const Part colours = {rowBytes, size.height}, alphas = {size.width, size.height};
  const FuzzImage fg = Needed(call, "fgStep", colours, true);
  const FuzzImage bg = Needed(call, "bgStep", colours, false);
  // dstAlpha lies apart, is fgAlpha, or is bgAlpha, which must then have its step. It is written
  // with fgAlpha's step, so its rows must be apart by that.
  const int alias = in.Pick("dstAlpha is: apart, fgAlpha, bgAlpha", 0, 0, 1, 2);
  const FuzzImage dstAlpha = Needed(call, "fgAlphaStep", alphas, true);
  const FuzzImage fgAlpha = alias == 1 ? dstAlpha : call.Required(dstAlpha.step, alphas, false);
  const FuzzImage bgAlpha = alias == 2 ? dstAlpha : Needed(call, "bgAlphaStep", alphas, false);
  // The colours are those of rowBytes whatever the width is.
  const int width = in.Rarely("less width", 32) ? in.Between("width", -3, 0) : size.width;
  const unsigned old = HostProcessorInfo;
  HostProcessorInfo = path;
  call.Run(Op::qvMergeAlphaOver, StatusOk, [&] {
    return Lib::qvMergeAlphaOver(Type(type), fg.data, fg.step, fgAlpha.data, fgAlpha.step, bg.data,
                                 bg.step, bgAlpha.data, bgAlpha.step, dstAlpha.data,
                                 static_cast<int>(rowBytes), width, size.height);
  });
  HostProcessorInfo = old;
}

}  // namespace

void FuzzComposite(Input& in) {
  static constexpr void (*kOperations[])(Input&, Call&) = {FuzzAlphaComp, FuzzMergePlus,
                                                           FuzzMergeOver};
  const int operation = in.Pick("operation: composition, plus, over", 0, 1, 2);
  Call call(in);
  kOperations[operation](in, call);
}

}  // namespace qv::test
