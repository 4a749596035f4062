#include "io/Resizer.h"

#include "io/Samples.h"
#include "io/Status.h"

namespace qvtool {
namespace {

bool IsPacked(const Frame& frame) { return frame.Info().plane[0].bytes == 4; }

// Between all channels of two frames of one size and subsampling.
void CopyChannels(const Frame& from, const Frame& to) {
  for (int c = 0; c < from.Info().Channels(); ++c)
    CopyChannel(ChannelOf(from, c), ChannelOf(to, c));
}

// A channel of pixels of four bytes side by side.
Channel PackedChannel(std::vector<unsigned char>& pixels, IppiSize size, int channel) {
  return {pixels.data() + channel, 4 * size.width, 4, size.width, size.height, 0, 0};
}

SampleGrid PackedGrid(std::vector<unsigned char>& pixels, IppiSize size) {
  return {pixels.data(), 4 * size.width, size, 0, 0, {0, 0}};
}

// Where a region of the full size lies in a frame.
Area AreaOf(const Frame& frame, const IppiRect& region) {
  if (!frame.reduction) return region;
  const Reduction& part = *frame.reduction;
  const double x = part.width / part.size.width, y = part.height / part.size.height;
  return {part.x + region.x * x, part.y + region.y * y, region.width * x, region.height * y};
}

}  // namespace

void Resample(int pixels, const SampleGrid& from, const Area& region, const SampleGrid& to,
              IppiSize size, int filter) {
  // The last unit of an odd frame reaches beyond it, and so does the part of `from` that it covers.
  const double unitX = 1 << from.shiftX, unitY = 1 << from.shiftY;
  const double scaleX = region.width / size.width, scaleY = region.height / size.height;
  qv_resample_options options = {};
  options.pixels = pixels;
  options.filter = filter;
  options.position = QV_POSITION_CENTRES;
  options.region_x = region.x / unitX;
  options.region_y = region.y / unitY;
  options.region_width = to.size.width * (1 << to.shiftX) * scaleX / unitX;
  options.region_height = to.size.height * (1 << to.shiftY) * scaleY / unitY;
  options.src_phase_x = from.phase.x;
  options.src_phase_y = from.phase.y;
  options.dst_phase_x = to.phase.x;
  options.dst_phase_y = to.phase.y;
  Check("qv_resample",
        qv_resample(from.data, {from.size.width, from.size.height}, from.step, to.data,
                    {to.size.width, to.size.height}, to.step, &options));
}

void Resizer::operator()(const Frame& in, const IppiRect& ofFull, IppiSize size, int filter,
                         Frame& out) {
  const Area region = AreaOf(in, ofFull);
  out.Reset(in.GetLayout(), size.width, size.height);
  out.coding = in.coding;
  if (in.Info().alphaPlane >= 0) {
    ResizeWithAlpha(in, region, out, filter);
  } else if (IsPacked(in)) {
    source_.Reset(Layout::I422, in.Width(), in.Height());
    result_.Reset(Layout::I422, size.width, size.height);
    CopyChannels(in, source_);
    ResizeUnits(source_, region, result_, filter);
    CopyChannels(result_, out);
  } else {
    ResizeUnits(in, region, out, filter);
  }
}

void Resizer::ResizeUnits(const Frame& in, const Area& region, const Frame& out, int filter) {
  for (int i = 0; i < in.Planes(); ++i) {
    const PlaneShape& shape = in.Info().plane[i];
    const auto grid = [&](const Plane& plane) {
      const Phase phase = PhaseOf(shape.shiftX, shape.shiftY, in.coding.siting);
      return SampleGrid{plane.data,   plane.step,   plane.Size(),
                        shape.shiftX, shape.shiftY, phase};
    };
    constexpr int kPixels[] = {0, QV_PIXELS_ONE, QV_PIXELS_TWO, QV_PIXELS_THREE};
    Resample(kPixels[shape.bytes], grid(in.PlaneAt(i)), region, grid(out.PlaneAt(i)), out.Size(),
             filter);
  }
}

void Resizer::ResizeWithAlpha(const Frame& in, const Area& region, const Frame& out,
                              int filter) {
  const bool isPixels = in.GetLayout() == Layout::Bgra;
  pixels_.resize(in.PackedBytes());
  resized_.resize(out.PackedBytes());
  if (isPixels) PackAlpha(in, pixels_.data());
  for (int c = 0; c < 4 && !isPixels; ++c)
    CopyChannel(ChannelOf(in, c), PackedChannel(pixels_, in.Size(), c));
  Resample(QV_PIXELS_STRAIGHT, PackedGrid(pixels_, in.Size()), region,
           PackedGrid(resized_, out.Size()), out.Size(), filter);
  if (isPixels) UnpackAlpha(resized_.data(), out);
  for (int c = 0; c < 4 && !isPixels; ++c)
    CopyChannel(PackedChannel(resized_, out.Size(), c), ChannelOf(out, c));
}

}  // namespace qvtool
