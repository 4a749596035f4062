#include "FillFrame.h"

#include <algorithm>

#include "io/Samples.h"
#include "io/Status.h"

namespace qvtool {
namespace {

void FillPlane(const Plane& plane, const unsigned char* value) {
  Check("qvSet",
        CqvAccLib::qvSet(plane.Type("filling"), value, plane.data, plane.step, plane.Size()));
}

// Planes whose units are groups of samples, one channel after the other.
void FillUnits(const Frame& frame, const PlaneShape& shape, IppiRect region,
               const unsigned char* values) {
  // With the luma that packed frames of odd width have beyond their last column.
  if (region.x + region.width == frame.Width()) region.width += frame.Width() & 1;
  for (int c = 0; c < 3; ++c)
    if (std::find(shape.channel, shape.channel + shape.bytes, c) != shape.channel + shape.bytes)
      FillChannel(ChannelOf(frame, c).Cut(region), values[c]);
}

}  // namespace

void FillFrame(const Frame& frame, const IppiRect& region, const Colour& colour,
               unsigned char alpha) {
  const auto colours = colour.In(frame.GetLayout(), frame.coding);
  const unsigned char values[4] = {colours[0], colours[1], colours[2], alpha};
  for (int i = 0; i < frame.Planes(); ++i) {
    const PlaneShape& shape = frame.Info().plane[i];
    if (shape.bytes == 1 || shape.bytes == 3)
      FillPlane(frame.PlaneAt(i).Cut(region, shape), values + shape.channel[0]);
    else
      FillUnits(frame, shape, region, values);
  }
}

}  // namespace qvtool
