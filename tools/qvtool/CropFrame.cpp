#include "CropFrame.h"

#include "Arguments.h"
#include "io/Status.h"

namespace qvtool {
namespace {

// Chroma of a region that starts between two chroma samples would be shifted against its luma.
void CheckCorner(const std::string& argument, const IppiRect& region, const LayoutInfo& info) {
  for (int i = 0; i < info.planes; ++i) {
    const int columns = 1 << info.plane[i].shiftX;
    const int rows = 1 << info.plane[i].shiftY;
    if (region.x % columns != 0 || region.y % rows != 0)
      throw UsageError(argument + ": " + std::to_string(region.x) + "," + std::to_string(region.y) +
                       " given as its corner; wanted is a multiple of " + std::to_string(columns) +
                       "," + std::to_string(rows) + ", where " + NameOf(info.layout) +
                       " frames have chroma samples");
  }
}

}  // namespace

void CropFrame(const std::string& argument, const IppiRect& region, const Frame& in, Frame& out) {
  CheckRegion(argument, region, in);
  const LayoutInfo& info = in.Info();
  CheckCorner(argument, region, info);
  out.Reset(in.GetLayout(), region.width, region.height);
  out.Inherit(in);
  for (int i = 0; i < in.Planes(); ++i) {
    const Plane from = in.PlaneAt(i).Cut(region, info.plane[i]);
    const Plane& to = out.PlaneAt(i);
    const bool isColour = from.bytes == 3;
    Check("qvCopy", CqvAccLib::qvCopy(isColour ? CqvAccLib::ThreeChannels : CqvAccLib::OneChannel,
                                      from.data, from.step, to.data, to.step,
                                      isColour ? from.Size() : from.SizeInBytes()));
  }
}

}  // namespace qvtool
