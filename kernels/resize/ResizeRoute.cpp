#include "kernels/resize/ResizeRoute.h"

#include <new>

#include "kernels/resize/ResizePlan.h"

namespace qv {

namespace {

bool IsNearIdentity(IppiSize srcSize, IppiRect srcRoi, IppiSize dstRoiSize) {
  const auto differs = [](int a, int b) { return a < b ? b - 1ll > a : a - 1ll > b; };
  return !differs(srcSize.width, dstRoiSize.width) &&
         !differs(srcSize.height, dstRoiSize.height) && srcRoi.x == 0 && srcRoi.y == 0 &&
         srcRoi.width == srcSize.width && srcRoi.height == srcSize.height;
}

int MethodOf(const ResizeCall& call) {
  if (IsNearIdentity(call.srcSize, call.srcRoi, call.dstRoiSize)) return InterpolateNearest;
  const bool enlarges =
      call.interpolation == InterpolateArea && Enlarges(call.xFactor, call.yFactor);
  return enlarges ? InterpolateLanczos : call.interpolation;
}

}  // namespace

ResizeRoute::ResizeRoute(const ResizeCall& call, Layout layout, int mostBands)
    : call_(call), layout_(layout), bands_(mostBands) {
  call_.interpolation = MethodOf(call);
  int bytes;
  if (bands_ > 1 && ResizeBandBufferSize(call_.dstRoiSize, PixelBytes(layout),
                                         call_.interpolation, &bytes) != StatusOk)
    bands_ = 1;
}

IppStatus ResizeRoute::RunWhole() const {
  const auto kernel = layout_ == Layout::kGrey ? Resize_8u_C1 : Resize_8u_C3;
  return kernel(call_.src, call_.srcSize, call_.srcStep, call_.srcRoi, call_.dst, call_.dstStep,
                call_.dstRoiSize, call_.xFactor, call_.yFactor, call_.interpolation);
}

IppStatus ResizeRoute::RunRows(int first, int length) const {
  const int width = call_.dstRoiSize.width, height = call_.dstRoiSize.height;
  const uint64_t bytes = ResizeWorkBytes(width, length, layout_, call_.interpolation);
  auto* const buffer = bytes <= PTRDIFF_MAX
                           ? new (std::nothrow) unsigned char[static_cast<size_t>(bytes)]
                           : nullptr;
  const IppStatus status =
      ResizeBand(call_, layout_, {0, first, width, length}, 0, 0, {buffer, bytes});
  delete[] buffer;
  if (status != StatusOk || length != height) return status;
  const int lastFirst = (bands_ - 1) * rowsPerBand();
  return HasResizeRows(call_.srcSize, call_.srcRoi, lastFirst, height - lastFirst, call_.yFactor)
             ? StatusOk
             : StatusNothingToDoWarning;
}

}  // namespace qv
