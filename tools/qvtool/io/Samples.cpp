#include "io/Samples.h"

#include <algorithm>
#include <cstring>

#include "Error.h"

namespace qvtool {

Channel ChannelOf(const Frame& frame, int channel) {
  const LayoutInfo& info = frame.Info();
  for (int i = 0; i < info.planes; ++i) {
    const PlaneShape& shape = info.plane[i];
    const int* const end = shape.channel + shape.bytes;
    const int* const first = std::find(shape.channel, end, channel);
    if (first == end) continue;
    const Plane& plane = frame.PlaneAt(i);
    const auto samples = static_cast<int>(std::count(first, end, channel));  // in a unit: 1 or 2
    return {plane.data + (first - shape.channel),
            plane.step,
            shape.bytes / samples,
            plane.columns * samples,
            plane.rows,
            shape.shiftX - (samples - 1),
            shape.shiftY};
  }
  throw Error(NameOf(info.layout) + " frames have no alpha");
}

Channel Channel::Cut(const IppiRect& region) const {
  const int left = region.x >> shiftX, top = region.y >> shiftY;
  Channel part = *this;
  part.data = &At(left, top);
  part.columns = ((region.x + region.width - 1) >> shiftX) + 1 - left;
  part.rows = ((region.y + region.height - 1) >> shiftY) + 1 - top;
  return part;
}

void CopyChannel(const Channel& from, const Channel& to) {
  const int both = std::min(from.columns, to.columns);
  for (int y = 0; y < to.rows; ++y) {
    if (from.spacing == 1 && to.spacing == 1)
      std::memcpy(to.Row(y), from.Row(y), static_cast<std::size_t>(both));
    else
      for (int x = 0; x < both; ++x) to.At(x, y) = from.At(x, y);
    if (to.columns > both) to.At(both, y) = from.At(both - 1, y);
  }
}

void FillChannel(const Channel& channel, unsigned char value) {
  for (int y = 0; y < channel.rows; ++y)
    for (int x = 0; x < channel.columns; ++x) channel.At(x, y) = value;
}

}  // namespace qvtool
