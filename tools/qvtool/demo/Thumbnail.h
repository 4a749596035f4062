// Pictures as they are put into the page.
#ifndef QV_TOOLS_QVTOOL_DEMO_THUMBNAIL_H
#define QV_TOOLS_QVTOOL_DEMO_THUMBNAIL_H

#include <string>

#include "demo/Panel.h"

namespace qvtool::demo {

struct Embedded {
  std::string uri;  // data: URI
  int width;
  int height;
};

struct Limits {
  IppiSize size;
  std::size_t bytes;
};

// So that the whole page stays below three megabytes, whatever it shows.
inline constexpr Limits kFigure = {{640, 640}, 44000};
inline constexpr Limits kCover = {{1440, 1440}, 180000};

// Scales a picture down, or cuts its detail out, and encodes it: a detail as PNG, all others as PNG
// or JPEG, whichever is smaller, the latter as well as the limit allows. What is transparent shows
// checks.
Embedded Embed(const Picture& picture, const Limits& limits = kFigure);

// Up to eight pictures side by side in two rows, a part of the same shape of each.
Frame ContactSheet(const std::vector<Frame>& pictures);

// The middle part of a picture with the shape of a tile of the sheet, at the size of a tile.
Frame Tile(const Frame& picture);

}  // namespace qvtool::demo

#endif
