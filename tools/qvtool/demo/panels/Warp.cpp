#include <vector>

#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

struct Method {
  int code;
  const char* name;
  const char* title;
};

constexpr Method kMethods[] = {
    {1, "nearest", "nearest neighbour"}, {2, "linear", "linear"}, {4, "cubic", "cubic, Keys 1981"}};

// The frame as a page at a slant, and the page made straight again.
void Make(const Scene& scene, Gallery& gallery) {
  const Plane& src = scene.colour.PlaneAt(0);
  const IppiRect all = scene.colour.Bounds();
  const double w = all.width - 1, h = all.height - 1;
  const double quad[4][2] = {
      {.12 * w, .18 * h}, {.86 * w, .04 * h}, {.97 * w, .95 * h}, {.03 * w, .8 * h}};
  double onto[3][3], straight[3][3];
  if (CqvAccLib::qvGetPerspectiveTransform(CqvAccLib::ThreeChannels, all, quad, onto) != StatusOk)
    return;  // a frame of a single row or column
  for (int i = 0; i < 3; ++i)  // the inverse, up to a factor: cofactors
    for (int k = 0; k < 3; ++k) {
      const int a = (k + 1) % 3, b = (k + 2) % 3, c = (i + 1) % 3, d = (i + 2) % 3;
      straight[i][k] = onto[a][c] * onto[b][d] - onto[a][d] * onto[b][c];
    }
  const unsigned char background[] = {64, 64, 64};
  for (const Method& method : kMethods) {
    const int code = method.code;
    const std::string tail = std::string(": ") + method.title + ", code " + std::to_string(code);
    Frame page(Layout::Bgr, all.width, all.height), back(Layout::Bgr, all.width, all.height);
    const Plane& slanted = page.PlaneAt(0);
    const Plane& dst = back.PlaneAt(0);
    for (const Plane* plane : {&slanted, &dst})
      CqvAccLib::qvSet(CqvAccLib::ThreeChannels, background, plane->data, plane->step,
                       plane->Size());
    gallery.Add({.name = std::string("warp-") + method.name,
                 .title = "Warp onto a quadrilateral" + tail,
                 .formula = "x' = (c00 X + c01 Y + c02) / (c20 X + c21 Y + c22), y' likewise",
                 .calls = {QV_CALL(CqvAccLib::qvGetPerspectiveTransform(CqvAccLib::ThreeChannels,
                                                                        all, quad, onto)),
                           QV_CALL(CqvAccLib::qvWarpPerspective(
                               CqvAccLib::ThreeChannels, src.data, src.Size(), src.step, all,
                               slanted.data, slanted.step, all, onto, code))},
                 .before = {{"The frame", scene.colour}},
                 .after = {{"At a slant", page}}});
    gallery.Add({.name = std::string("unwarp-") + method.name,
                 .title = "Unwarp: a page made straight" + tail,
                 .formula = "the same with the inverse matrix",
                 .calls = {QV_CALL(CqvAccLib::qvWarpPerspective(
                     CqvAccLib::ThreeChannels, slanted.data, slanted.Size(), slanted.step, all,
                     dst.data, dst.step, all, straight, code))},
                 .before = {{"The page", page}},
                 .after = {{"Made straight", back}}});
  }

  Frame page(Layout::Bgr, all.width, all.height), edge(Layout::Grey, all.width, all.height);
  const Plane& slanted = page.PlaneAt(0);
  const Plane& mask = scene.mask.PlaneAt(0);
  const Plane& slantedMask = edge.PlaneAt(0);
  CqvAccLib::qvSet(CqvAccLib::ThreeChannels, background, slanted.data, slanted.step,
                   slanted.Size());
  CqvAccLib::qvSet(CqvAccLib::OneChannel, background, slantedMask.data, slantedMask.step,
                   slantedMask.Size());
  const int code = 2;
  gallery.Add({.name = "warp-two",
               .title = "Warp a frame and its alpha plane: linear, code 2",
               .formula = "both by the same formula, each through a matrix of its own",
               .calls = {QV_CALL(CqvAccLib::qvWarpPerspectiveEx(
                   CqvAccLib::ThreeChannels, src.data, src.Size(), src.step, all, slanted.data,
                   slanted.step, all, onto, code, mask.data, mask.step, slantedMask.data,
                   slantedMask.step, onto))},
               .before = {{"The frame", scene.colour}, {"Its alpha", scene.mask}},
               .after = {{"The frame at a slant", page}, {"Its alpha", edge}}});
}

const PanelSource source{80, "Perspective", Make};

}  // namespace
}  // namespace qvtool::demo
