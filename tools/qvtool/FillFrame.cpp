#include "FillFrame.h"

#include "io/Status.h"

namespace qvtool {
namespace {

void FillPlane(const Plane& plane, const unsigned char* value) {
  Check("qvSet",
        CqvAccLib::qvSet(plane.Type("filling"), value, plane.data, plane.step, plane.Size()));
}

}  // namespace

void FillFrame(const Frame& frame, const IppiRect& region, const Colour& colour,
               unsigned char alpha) {
  for (int i = 0; i < frame.Planes(); ++i) frame.PlaneAt(i).Type("filling");  // before any is
  const auto value = colour.In(frame.GetLayout());
  const LayoutInfo& info = frame.Info();
  for (int i = 0; i < frame.Planes(); ++i) {
    const Plane plane = frame.PlaneAt(i).Cut(region, info.plane[i]);
    if (i == info.alphaPlane) {
      FillPlane(plane, &alpha);
    } else {
      // The plane order of yv12 is Y, Cr, Cb.
      const int channel = info.layout == Layout::Yv12 && i > 0 ? 3 - i : i;
      FillPlane(plane, plane.bytes == 3 ? value.data() : &value[static_cast<std::size_t>(channel)]);
    }
  }
}

}  // namespace qvtool
