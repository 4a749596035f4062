// A kernel as its callers see it: called like the function of its signature, it runs the rows of
// this processor's level.
#ifndef QV_DISPATCH_DISPATCHED_H
#define QV_DISPATCH_DISPATCHED_H

#include "dispatch/Hidden.h"
#include "dispatch/VariantIndex.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

constexpr int kSlots = 5;  // values of VariantIndex

template <class Signature>
struct Dispatched;

template <class Result, class... Args>
struct Dispatched<Result(Args...)> {
  using Rows = Result(Args...);

  Result operator()(Args... args) const { return slot[Current(VariantIndex)](args...); }

  Rows* slot[kSlots];
};

// Of the kernels that turn one image into another of `size`.
using ImageKernel = Dispatched<IppStatus(const unsigned char* src, int srcStep, unsigned char* dst,
                                         int dstStep, IppiSize size)>;

}  // namespace qv

#endif
