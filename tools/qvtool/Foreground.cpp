#include "Foreground.h"

#include <algorithm>

#include "io/Samples.h"
#include "io/Status.h"

namespace qvtool {
namespace {

// The most pixels that share a chroma sample.
constexpr int kSharedColumns = 4, kSharedRows = 2;

// The part of an axis of `limit` pixels that `length` pixels from `at` on cover.
void Overlap(int at, int length, int limit, int& first, int& count) {
  const long long end = std::min<long long>(static_cast<long long>(at) + length, limit);
  first = std::max(at, 0);
  count = static_cast<int>(std::max<long long>(end - first, 0));
}

// A foreground over pixels that have an alpha themselves (Porter and Duff 1984), rounded once.
// Opacity, in 1 / 255, is a factor of the foreground's alpha.
void OverAlpha(const Frame& colours, const Channel& alpha, const Frame& frame,
               const IppiRect& place, int opacity) {
  Channel fore[3], below[3];
  for (int c = 0; c < 3; ++c) {
    fore[c] = ChannelOf(colours, c);
    below[c] = ChannelOf(frame, c).Cut(place);
  }
  const Channel belowAlpha = ChannelOf(frame, 3).Cut(place);
  for (int y = 0; y < alpha.rows; ++y)
    for (int x = 0; x < alpha.columns; ++x) {
      const long long a = alpha.At(x, y) * opacity, ba = belowAlpha.At(x, y);
      if (a == 0) continue;
      const long long rest = ba * (65025 - a), all = a * 255 + rest;
      for (int c = 0; c < 3; ++c)
        below[c].At(x, y) = static_cast<unsigned char>(
            (fore[c].At(x, y) * a * 255 + below[c].At(x, y) * rest + all / 2) / all);
      belowAlpha.At(x, y) = static_cast<unsigned char>((all + 32512) / 65025);
    }
}

}  // namespace

Foreground::Foreground(const Frame& picture, Position at)
    : picture_(conversion_(picture, Layout::Bgra, picture.coding).Clone()), at_(at) {}

bool Foreground::LayOver(const Frame& frame, int opacity) {
  const IppiRect visible = Visible(frame);
  if (visible.width == 0 || visible.height == 0) return false;
  if (!IsReadyFor(frame)) MakeReadyFor(frame, visible);
  if (frame.Info().alphaPlane >= 0) {
    OverAlpha(colours_, ChannelOf(alphas_, 0), frame, place_, opacity);
    return true;
  }
  for (int i = 0; i < frame.Planes(); ++i) {
    const Plane below = frame.PlaneAt(i).Cut(place_, frame.Info().plane[i]);
    const Plane &colours = colours_.PlaneAt(i), &alphas = alphas_.PlaneAt(i);
    const int channels = below.RowBytes() / alphas.RowBytes();
    const qv_size size = {alphas.RowBytes(), below.rows};
    Check("qv_over",
          qv_over(channels, below.data, below.step, size, channels, colours.data, colours.step,
                  size, alphas.data, alphas.step, 0, 0, opacity, QV_ALPHA_OVER));
  }
  return true;
}

// The part of the frame that the picture covers.
IppiRect Foreground::Visible(const Frame& frame) const {
  IppiRect part;
  Overlap(at_.x, picture_.Width(), frame.Width(), part.x, part.width);
  Overlap(at_.y, picture_.Height(), frame.Height(), part.y, part.height);
  return part;
}

bool Foreground::IsReadyFor(const Frame& frame) const {
  return !colours_.Empty() && colours_.GetLayout() == frame.GetLayout() &&
         frameSize_.width == frame.Width() && frameSize_.height == frame.Height() &&
         colours_.coding.HasColoursOf(frame.coding);
}

void Foreground::MakeReadyFor(const Frame& frame, const IppiRect& visible) {
  const Layout layout = frame.GetLayout();
  frameSize_ = frame.Size();
  place_.x = visible.x / kSharedColumns * kSharedColumns;
  place_.y = visible.y / kSharedRows * kSharedRows;
  place_.width = visible.x + visible.width - place_.x;
  place_.height = visible.y + visible.height - place_.y;
  colours_.Reset(layout, place_.width, place_.height);
  alphas_.Reset(frame.Info().isYCbCr ? layout : Layout::Grey, place_.width, place_.height);
  colours_.coding = frame.coding;

  const Layout full = frame.Info().isYCbCr     ? Layout::I444
                      : layout == Layout::Grey ? Layout::Grey
                                               : Layout::Bgr;
  const Frame& recoloured = conversion_(picture_, full, frame.coding);
  for (int c = 0; c < frame.Info().Channels(); ++c) AverageChannel(c, ChannelOf(recoloured, c));
}

void Foreground::AverageChannel(int channel, const Channel& picture) {
  const Channel colours = ChannelOf(colours_, channel), alpha = ChannelOf(picture_, 3);
  const Channel alphas = ChannelOf(alphas_, std::min(channel, alphas_.Info().Channels() - 1));
  const int width = 1 << colours.shiftX, height = 1 << colours.shiftY;
  for (int row = 0; row < colours.rows; ++row)
    for (int column = 0; column < colours.columns; ++column) {
      // Of the frame, which the samples at its right and lower edge reach beyond.
      const int left = place_.x + column * width, top = place_.y + row * height;
      const int right = std::min(left + width, frameSize_.width);
      const int bottom = std::min(top + height, frameSize_.height);
      const int pixels = (right - left) * (bottom - top);
      int weights = 0, sum = 0;
      for (int y = std::max(top - at_.y, 0); y < std::min(bottom - at_.y, alpha.rows); ++y)
        for (int x = std::max(left - at_.x, 0); x < std::min(right - at_.x, alpha.columns); ++x) {
          weights += alpha.At(x, y);
          sum += alpha.At(x, y) * picture.At(x, y);
        }
      colours.At(column, row) =
          static_cast<unsigned char>(weights > 0 ? (sum + weights / 2) / weights : 0);
      alphas.At(column, row) =
          static_cast<unsigned char>(weights > 0 ? (weights + pixels / 2) / pixels : 0);
    }
}

}  // namespace qvtool
