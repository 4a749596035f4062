#include "demo/Thumbnail.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "io/JpegFile.h"
#include "io/PngFile.h"
#include "io/Status.h"

namespace qvtool::demo {
namespace {

constexpr int kWidest = 720;
constexpr int kJpegQuality = 88;

std::string Base64(const std::vector<unsigned char>& bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    unsigned group = 0;
    for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? bytes[i + k] : 0u);
    for (std::size_t k = 0; k < 4; ++k)
      text += k <= count ? kDigits[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

// First and last-but-one source position of destination position i.
int Edge(int i, int from, int to) {
  return static_cast<int>(static_cast<long long>(i) * from / to);
}

void ShrinkPlane(const Plane& from, const Plane& to) {
  for (int y = 0; y < to.rows; ++y) {
    const int top = Edge(y, from.rows, to.rows);
    const int bottom = Edge(y + 1, from.rows, to.rows);
    for (int x = 0; x < to.columns; ++x) {
      const int left = Edge(x, from.columns, to.columns);
      const int right = Edge(x + 1, from.columns, to.columns);
      const unsigned count = static_cast<unsigned>((right - left) * (bottom - top));
      for (int c = 0; c < to.bytes; ++c) {
        unsigned long long sum = count / 2;
        for (int sy = top; sy < bottom; ++sy)
          for (int sx = left; sx < right; ++sx) sum += from.Row(sy)[sx * from.bytes + c];
        to.Row(y)[x * to.bytes + c] = static_cast<unsigned char>(sum / count);
      }
    }
  }
}

Frame Shrink(const Frame& frame) {
  const int width = std::min(frame.Width(), kWidest);
  const int height = std::clamp(
      static_cast<int>((static_cast<long long>(frame.Height()) * width + frame.Width() / 2) /
                       frame.Width()),
      1, frame.Height());
  Frame small(frame.GetLayout(), width, height);
  for (int i = 0; i < frame.Planes(); ++i) ShrinkPlane(frame.PlaneAt(i), small.PlaneAt(i));
  return small;
}

Frame Cut(const Frame& frame, const IppiRect& region) {
  Frame part(frame.GetLayout(), region.width, region.height);
  for (int i = 0; i < frame.Planes(); ++i) {
    const Plane from = frame.PlaneAt(i).Cut(region, frame.Info().plane[i]);
    const Plane& to = part.PlaneAt(i);
    Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::OneChannel, from.data, from.step, to.data, to.step,
                                      to.SizeInBytes()));
  }
  return part;
}

}  // namespace

Embedded Embed(const Picture& picture) {
  const Frame small = picture.detail ? Cut(picture.frame, *picture.detail) : Shrink(picture.frame);
  const bool exact = picture.detail || picture.frame.GetLayout() == Layout::Bgra;
  const auto bytes = exact ? EncodePng(small, picture.caption, 9)
                           : EncodeJpeg(small, picture.caption, kJpegQuality);
  return {std::string(exact ? "data:image/png;base64," : "data:image/jpeg;base64,") + Base64(bytes),
          small.Width(), small.Height()};
}

}  // namespace qvtool::demo
