#include "demo/Thumbnail.h"

#include <algorithm>
#include <vector>

#include "io/Conversion.h"
#include "io/JpegFile.h"
#include "io/PngFile.h"
#include "io/Resizer.h"
#include "io/Status.h"

namespace qvtool::demo {
namespace {

constexpr int kQualities[] = {82, 72, 60, 45, 30, 15};

constexpr IppiSize kTile = {356, 200};
constexpr int kTileGap = 4;

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

Frame Resized(const Frame& frame, const IppiRect& region, IppiSize size, int filter) {
  Frame result;
  Resizer resizer;
  resizer(frame, region, size, filter, result);
  return result;
}

// Scaled down with its shape kept, where it is larger than `most`.
Frame Shrunk(const Frame& frame, IppiSize most) {
  const double factor = std::min({1.0, static_cast<double>(most.width) / frame.Width(),
                                  static_cast<double>(most.height) / frame.Height()});
  const auto scaled = [&](int length) {
    return std::max(1, static_cast<int>(length * factor + 0.5));
  };
  return Resized(frame, frame.Bounds(), {scaled(frame.Width()), scaled(frame.Height())},
                 QV_INTERPOLATE_AREA);
}

// Over squares in two greys, as editors show what is transparent.
Frame OverChecks(const Frame& bgra) {
  Frame result(Layout::Bgr, bgra.Width(), bgra.Height());
  const Plane &below = result.PlaneAt(0), &colours = bgra.PlaneAt(0), &alpha = bgra.PlaneAt(1);
  for (int y = 0; y < below.rows; ++y)
    for (int i = 0; i < below.RowBytes(); ++i)
      below.Row(y)[i] = (i / 30 + y / 10) % 2 == 0 ? 225 : 190;
  const qv_size size = {below.columns, below.rows};
  Check("qv_over", qv_over(3, below.data, below.step, size, 3, colours.data, colours.step, size,
                           alpha.data, alpha.step, 0, 0, 255, QV_ALPHA_OVER));
  return result;
}

}  // namespace

Embedded Embed(const Picture& picture, const Limits& limits) {
  const Frame& frame = picture.frame;
  const auto cut = [&](const IppiRect& part) {
    return Resized(frame, part, {part.width, part.height}, QV_INTERPOLATE_NEAREST);
  };
  Frame shown = picture.detail ? cut(*picture.detail) : Shrunk(frame, limits.size);
  if (shown.GetLayout() == Layout::Bgra) shown = OverChecks(shown);
  auto bytes = EncodePng(shown, picture.caption);
  std::string type = "png";
  for (int quality : kQualities) {
    if (picture.detail) break;
    auto jpeg = EncodeJpeg(shown, picture.caption, quality);
    if (jpeg.size() < bytes.size()) {
      bytes = std::move(jpeg);
      type = "jpeg";
    }
    if (bytes.size() <= limits.bytes) break;
  }
  return {"data:image/" + type + ";base64," + Base64(bytes), shown.Width(), shown.Height()};
}

Frame Tile(const Frame& picture) {
  const double shape = static_cast<double>(kTile.width) / kTile.height;
  const int width = std::clamp(static_cast<int>(picture.Height() * shape), 1, picture.Width());
  const int height = std::clamp(static_cast<int>(picture.Width() / shape), 1, picture.Height());
  const Spot middle = {picture.Width() / 2, picture.Height() / 2};
  const Frame tile =
      Resized(picture, Around(picture, middle, {width, height}), kTile, QV_INTERPOLATE_AREA);
  Conversion conversion;
  return conversion(tile, Layout::Bgr, tile.coding).Clone();
}

Frame ContactSheet(const std::vector<Frame>& pictures) {
  const int count = static_cast<int>(std::min<std::size_t>(pictures.size(), 8));
  const int rows = count > 3 ? 2 : 1, columns = count / rows;
  Frame sheet(Layout::Bgr, columns * (kTile.width + kTileGap) - kTileGap,
              rows * (kTile.height + kTileGap) - kTileGap);
  const Plane& all = sheet.PlaneAt(0);
  const unsigned char gap[3] = {128, 128, 128};
  Check("qvSet",
        CqvAccLib::qvSet(CqvAccLib::ThreeChannels, gap, all.data, all.step, all.Size()));
  for (int i = 0; i < rows * columns; ++i) {
    const Plane& tile = pictures[static_cast<std::size_t>(i)].PlaneAt(0);
    Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeChannels, tile.data, tile.step,
                                      all.Row(i / columns * (kTile.height + kTileGap)) +
                                          3 * (i % columns) * (kTile.width + kTileGap),
                                      all.step, tile.Size()));
  }
  return sheet;
}

}  // namespace qvtool::demo
