#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

void Make(const Scene& scene, Gallery& gallery) {
  struct Flip {
    IppiAxis axis;
    const char* name;
    const char* title;
    const char* formula;
  };
  constexpr Flip kFlips[] = {
      {AxisHorizontal, "mirror-top-bottom", "Mirror, top to bottom: axis 0",
       "dst(x, H - 1 - y) = src(x, y)"},
      {AxisVertical, "mirror-left-right", "Mirror, left to right: axis 1",
       "dst(W - 1 - x, y) = src(x, y)"},
      {AxisBoth, "mirror-both", "Mirror, both: axis 2", "dst(W - 1 - x, H - 1 - y) = src(x, y)"}};
  for (const Flip& flip : kFlips) {
    Frame result(Layout::Bgr, scene.colour.Width(), scene.colour.Height());
    const Plane& src = scene.colour.PlaneAt(0);
    const Plane& dst = result.PlaneAt(0);
    const IppiAxis axis = flip.axis;
    gallery.Add({.name = flip.name,
                 .title = flip.title,
                 .formula = flip.formula,
                 .calls = {QV_CALL(CqvAccLib::qvMirror(CqvAccLib::ThreeChannels, src.data, src.step,
                                                       dst.data, dst.step, src.Size(), axis))},
                 .before = {{"The frame", scene.colour}},
                 .after = {{"Mirrored", result}}});
  }
}

const PanelSource source{30, "Mirror", Make};

}  // namespace
}  // namespace qvtool::demo
