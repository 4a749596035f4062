#include "io/Samples.h"

#include <algorithm>
#include <cstring>

#include "Error.h"
#include "io/Status.h"

namespace qvtool {
namespace {

bool IsPacked(const Frame& frame) {
  return frame.GetLayout() == Layout::Bgr || frame.GetLayout() == Layout::Bgra;
}

void CopyColours(const Plane& from, const Plane& to) {
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeChannels, from.data, from.step, to.data,
                                    to.step, to.Size()));
}

Plane CutColours(const Frame& frame, const IppiRect& region) {
  return frame.PlaneAt(0).Cut(region, frame.Info().plane[0]);
}

}  // namespace

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

void LoadColours(const Frame& frame, const IppiRect& region, const Plane& colours) {
  if (IsPacked(frame)) {
    CopyColours(CutColours(frame, region), colours);
    return;
  }
  const bool isGrey = frame.GetLayout() == Layout::Grey;
  for (int c = 0; c < 3; ++c) {
    const Channel channel = ChannelOf(frame, isGrey ? 0 : c);
    for (int y = 0; y < region.height; ++y)
      for (int x = 0; x < region.width; ++x)
        colours.Row(y)[3 * x + c] =
            channel.At((region.x + x) >> channel.shiftX, (region.y + y) >> channel.shiftY);
  }
}

void StoreColours(const Plane& colours, const Frame& frame, const IppiRect& region) {
  if (IsPacked(frame)) {
    CopyColours(colours, CutColours(frame, region));
    return;
  }
  const int right = region.x + region.width, bottom = region.y + region.height;
  const int channels = frame.Info().Channels();
  for (int c = 0; c < channels; ++c) {
    const Channel channel = ChannelOf(frame, c);
    const int width = 1 << channel.shiftX, height = 1 << channel.shiftY;
    // Pixels of the frame that a sample belongs to, which are fewer at its right and lower edge.
    for (int row = region.y >> channel.shiftY; row << channel.shiftY < bottom; ++row)
      for (int column = region.x >> channel.shiftX; column << channel.shiftX < right; ++column) {
        const int x0 = column * width, x1 = std::min(x0 + width, frame.Width());
        const int y0 = row * height, y1 = std::min(y0 + height, frame.Height());
        const int count = (x1 - x0) * (y1 - y0);
        unsigned char& sample = channel.At(column, row);
        int sum = count / 2;
        for (int y = y0; y < y1; ++y)
          for (int x = x0; x < x1; ++x) {
            const bool inside = x >= region.x && x < right && y >= region.y && y < bottom;
            sum += inside ? colours.Row(y - region.y)[3 * (x - region.x) + c] : sample;
          }
        sample = static_cast<unsigned char>(sum / count);
      }
  }
}

}  // namespace qvtool
