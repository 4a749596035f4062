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

// Scales a picture down to the width of the page (the mean of the pixels that fall on one), or cuts
// its detail out, and encodes it: as PNG where every pixel counts or there is alpha, else as JPEG.
Embedded Embed(const Picture& picture);

}  // namespace qvtool::demo

#endif
