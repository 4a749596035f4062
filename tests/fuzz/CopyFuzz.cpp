// Copy, duplicate, fill, mirror, palette lookup and scaling.
#include "tests/fuzz/Call.h"

namespace qv::test {

namespace {

using Lib = CqvAccLib;

void FuzzLayouts(Input& in, Call& call) {
  const bool dup = in.Pick("operation: copy, dup", 0, 1) == 1;
  const int type = in.Code("type", 2, 4, 9, 13, 14, 0, 3, 16);
  const bool known = dup || type == 2 || type == 4 || type == 9 || type == 13 || type == 14;
  const IppiSize size = call.Size(!known, 4);
  const int from = dup || type == 2 || type == 9 ? 1 : type == 13 ? 4 : 3;
  const int to = !dup && type == 2 ? 1 : !dup && type == 14 ? 4 : 3;
  const std::ptrdiff_t width = size.width;
  // The last pixel's kept bytes are not touched.
  const std::ptrdiff_t written = to * width - (dup ? 0 : type == 9 ? 2 : type == 14 ? 1 : 0);
  const FuzzImage src = call.Source("srcStep", "src null", {from * width, size.height});
  const FuzzImage dst =
      call.Destination("dst null", call.Step("dstStep", to * width), {written, size.height});
  const int expected = !known                   ? StatusDataTypeErr
                       : !src.data || !dst.data ? StatusNullPtrErr
                       : IsEmpty(size)          ? StatusSizeErr
                                                : StatusOk;
  call.Run(dup ? Op::qvDup : Op::qvCopy, expected, [&] {
    return dup ? Lib::qvDup(Type(type), src.data, src.step, dst.data, dst.step, size)
               : Lib::qvCopy(Type(type), src.data, src.step, dst.data, dst.step, size);
  });
}

void FuzzSet(Input& in, Call& call) {
  const int type = in.Code("type", 2, 4, 9);
  const bool known = type == 2 || type == 4;
  const IppiSize size = call.Size(!known, 3);
  const int channels = type == 4 ? 3 : 1;
  const unsigned char bytes[3] = {static_cast<unsigned char>(in.Byte()),
                                  static_cast<unsigned char>(in.Byte()),
                                  static_cast<unsigned char>(in.Byte())};
  const unsigned char* const value =
      type == 4 && contract::MayBeNull(in, "value null") ? nullptr : bytes;
  if (!value) call.Refused();
  const std::ptrdiff_t rowBytes = std::ptrdiff_t{channels} * size.width;
  const FuzzImage dst = call.Destination("dstStep", "dst null", {rowBytes, size.height});
  const int expected = !known                ? StatusDataTypeErr
                       : !dst.data || !value ? StatusNullPtrErr
                       : IsEmpty(size)       ? StatusSizeErr
                                             : StatusOk;
  call.Run(Op::qvSet, expected,
           [&] { return Lib::qvSet(Type(type), value, dst.data, dst.step, size); });
}

void FuzzMirror(Input& in, Call& call) {
  const int type = in.Code("type", 2, 4, 9);
  const int axis = in.Code("axis", 0, 1, 2, 3);
  const bool known = type == 2 || type == 4, any = axis >= 0 && axis <= 2;
  const IppiSize size = call.Size(!known || !any, 3);
  const std::ptrdiff_t rowBytes = std::ptrdiff_t{type == 4 ? 3 : 1} * size.width;
  const FuzzImage src = call.Source("srcStep", "src null", {rowBytes, size.height});
  const FuzzImage dst = call.Destination("dstStep", "dst null", {rowBytes, size.height});
  const int expected = !any                     ? StatusOk
                       : !known                 ? StatusDataTypeErr
                       : !src.data || !dst.data ? StatusNullPtrErr
                       : IsEmpty(size)          ? StatusSizeErr
                                                : StatusOk;
  call.Run(Op::qvMirror, expected, [&] {
    return Lib::qvMirror(Type(type), src.data, src.step, dst.data, dst.step, size,
                         static_cast<IppiAxis>(axis));
  });
}

void FuzzPalette(Input& in, Call& call) {
  const int type = in.Any("type");
  const int bits = in.Code("bitSize", 8, 1, 2, 3, 4, 5, 6, 7, 0, 9);
  const bool known = bits >= 1 && bits <= 8;
  const IppiSize size = call.Size(!known, 3);
  const std::ptrdiff_t width = size.width;
  const FuzzImage palette =
      call.Source("palette null", 0, {known ? std::ptrdiff_t{3} << bits : 0, 1});
  const FuzzImage src = call.Source("srcStep", "src null", {width, size.height});
  const FuzzImage dst = call.Destination("dstStep", "dst null", {3 * width, size.height});
  const int expected = !src.data || !dst.data || !palette.data ? StatusNullPtrErr
                       : IsEmpty(size)                         ? StatusSizeErr
                       : !known                                ? StatusOutOfRangeErr
                                                               : StatusOk;
  call.Run(Op::qvLUTPalette, expected, [&] {
    return Lib::qvLUTPalette(Type(type), src.data, src.step, dst.data, dst.step, size, palette.data,
                             bits);
  });
}

void FuzzScale(Input& in, Call& call) {
  const int type = in.Code("type", 16, 16, 16, 2);
  const auto value = static_cast<unsigned char>(in.Between("value", 0, 255));
  const IppiSize size = call.Size(type != 16, 1);
  const int step = contract::DisjointStep(call.Step("step", size.width), size.width, size.height);
  if (step < 1) call.Refused();
  const FuzzImage image = call.Destination("srcDst null", step, {size.width, size.height});
  const int expected = type != 16      ? StatusDataTypeErr
                       : !image.data   ? StatusNullPtrErr
                       : step < 1      ? StatusStepErr
                       : IsEmpty(size) ? StatusSizeErr
                                       : StatusOk;
  call.Run(Op::qvMulCScale, expected,
           [&] { return Lib::qvMulCScale(Type(type), value, image.data, image.step, size); });
}

}  // namespace

void FuzzCopy(Input& in) {
  static constexpr void (*kOperations[])(Input&, Call&) = {FuzzLayouts, FuzzSet, FuzzMirror,
                                                           FuzzPalette, FuzzScale};
  const int operation = in.Pick("operation: layouts, set, mirror, palette, scale", 0, 1, 2, 3, 4);
  Call call(in);
  kOperations[operation](in, call);
}

}  // namespace qv::test
