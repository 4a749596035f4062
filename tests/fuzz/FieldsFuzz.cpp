// Fields made frames, and frames of fields.
#include "qvAcceleratedLib/Fields.h"

#include "tests/fuzz/Call.h"

namespace qv::test {

namespace {

bool IsOrder(int order) { return order == TopFieldFirst || order == BottomFieldFirst; }

IppiSize DrawSize(Input& in, Call& call, bool isRefused) {
  IppiSize size = {in.Length("width"), in.Length("height")};
  if (isRefused || size.width < 1 || size.height < 2) {
    call.Refused();
    return size;
  }
  size = contract::Fitting(size, 1);
  if (size.height < 2) size.height = 2;
  return size;
}

int Expected(bool isNull, IppiSize size, bool isInRange) {
  return isNull                                ? StatusNullPtrErr
         : size.width < 1 || size.height < 2 ? StatusSizeErr
         : isInRange                           ? StatusOk
                                               : StatusOutOfRangeErr;
}

void FuzzBob(Input& in, Call& call) {
  const int order = in.Code("order", 0, 1, 0, 1, 2);
  const int weight = in.Rarely("any weight", 32) ? in.Any("weight") : in.Between("weight", 0, 258);
  const bool isInRange = IsOrder(order) && weight >= 0 && weight <= 256;
  const IppiSize size = DrawSize(in, call, !isInRange);
  const Part all = {size.width, size.height};
  const FuzzImage src = call.Source("srcStep", "src null", all);
  const FuzzImage first = call.Destination("firstStep", "first null", all);
  FuzzImage second = {nullptr, 0};
  if (!in.Rarely("no second", 48))
    second = call.Required(call.Step("secondStep", size.width), all, true);
  call.Run("qv_deinterlace_bob", Expected(!src.data || !first.data, size, isInRange), [&] {
    return DeinterlaceBob(src.data, src.step, first.data, first.step, second.data, second.step,
                          size, order, weight);
  });
}

void FuzzWeave(Input& in, Call& call) {
  const int order = in.Code("order", 0, 1, 0, 1, 2);
  const IppiSize size = DrawSize(in, call, !IsOrder(order));
  const auto lines = [&](int parity) { return (std::ptrdiff_t{size.height} + 1 - parity) / 2; };
  const FuzzImage first =
      call.Source("firstStep", "first null", {size.width, lines(order == BottomFieldFirst)});
  const FuzzImage second =
      call.Source("secondStep", "second null", {size.width, lines(order == TopFieldFirst)});
  const FuzzImage dst = call.Destination("dstStep", "dst null", {size.width, size.height});
  const bool isNull = !first.data || !second.data || !dst.data;
  call.Run("qv_weave", Expected(isNull, size, IsOrder(order)), [&] {
    return Weave(first.data, first.step, second.data, second.step, dst.data, dst.step, size,
                 order);
  });
}

}  // namespace

void FuzzFields(Input& in) {
  const int operation = in.Pick("operation: bob, weave", 0, 0, 1);
  Call call(in);
  (operation == 0 ? FuzzBob : FuzzWeave)(in, call);
}

}  // namespace qv::test
