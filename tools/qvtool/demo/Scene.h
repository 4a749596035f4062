// The frames that the demo works on.
#ifndef QV_TOOLS_QVTOOL_DEMO_SCENE_H
#define QV_TOOLS_QVTOOL_DEMO_SCENE_H

#include <string>

#include "io/Frame.h"

namespace qvtool::demo {

struct Spot {
  int x, y;
};

struct Scene {
  std::string about;  // what the frames show and their size

  Frame colour;  // Bgr
  Frame later;   // Bgr, one field later: what moves has moved on
  Frame woven;   // Bgr, an interlaced frame: even rows of `colour`, odd rows of `later`
  Frame packed;  // Yuyv, `colour` as a camera delivers it, cut to an even size; empty for one row
                 // or column
  Frame grey;    // Grey, the luma of `colour`
  Frame mask;    // Grey, an alpha plane: opaque in the middle, fading towards the edges

  // Pixels around which pictures are cut out: letters or another small thing, the finest detail,
  // the edge of something that moves, an edge between colours.
  Spot letters, fine, moving, coloured;
};

// Parts of pictures are shown at kZoom times their size, every pixel a square: as wide as a phone.
inline constexpr int kZoom = 4;
inline constexpr IppiSize kDetail = {84, 52};

// The part of a frame around a pixel, moved and cut so as to lie inside.
IppiRect Around(const Frame& frame, Spot spot, IppiSize size);

// The test card, drawn by the tool.
Scene TestCardScene();

// A picture, which pans a little from field to field, or the first two frames of a Y4M clip.
Scene FileScene(const std::string& path);

}  // namespace qvtool::demo

#endif
