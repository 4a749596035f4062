#include "io/Samples.h"

#include <algorithm>

#include "io/Status.h"

namespace qvtool {
namespace {

// Where the samples of a channel lie: every `spacing` bytes from `offset` on in rows of a plane,
// one for 2^shiftX columns and 2^shiftY rows of pixels.
struct Channel {
  const Plane* plane;
  int offset, spacing;
  int shiftX, shiftY;

  unsigned char& At(int column, int row) const {
    return plane->Row(row)[offset + static_cast<std::ptrdiff_t>(column) * spacing];
  }
};

Channel ChannelOf(const Frame& frame, int c) {
  switch (frame.GetLayout()) {
    case Layout::Grey: return {&frame.PlaneAt(0), 0, 1, 0, 0};
    case Layout::Bgr:
    case Layout::Bgra: return {&frame.PlaneAt(0), c, 3, 0, 0};
    case Layout::Yuyv:
      if (c == 0) return {&frame.PlaneAt(0), 0, 2, 0, 0};
      return {&frame.PlaneAt(0), 2 * c - 1, 4, 1, 0};
    case Layout::Nv12:
      if (c == 0) return {&frame.PlaneAt(0), 0, 1, 0, 0};
      return {&frame.PlaneAt(1), c - 1, 2, 1, 1};
    default: {
      const int plane = c > 0 && frame.GetLayout() == Layout::Yv12 ? 3 - c : c;
      const PlaneShape& shape = frame.Info().plane[plane];
      return {&frame.PlaneAt(plane), 0, 1, shape.shiftX, shape.shiftY};
    }
  }
}

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

void LoadColours(const Frame& frame, const IppiRect& region, const Plane& colours) {
  if (IsPacked(frame)) {
    CopyColours(CutColours(frame, region), colours);
    return;
  }
  for (int c = 0; c < 3; ++c) {
    const Channel channel = ChannelOf(frame, c);
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
  const int channels = frame.GetLayout() == Layout::Grey ? 1 : 3;
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
