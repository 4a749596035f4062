#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

void Make(const Scene& scene, Gallery& gallery) {
  constexpr Variant kFlips[] = {{AxisHorizontal, "mirror-top-bottom", "top to bottom, axis 0"},
                                {AxisVertical, "mirror-left-right", "left to right, axis 1"},
                                {AxisBoth, "mirror-both", "both, axis 2"}};
  for (const Variant& flip : kFlips) {
    Frame result(Layout::Bgr, scene.colour.Width(), scene.colour.Height());
    const Plane& src = scene.colour.PlaneAt(0);
    const Plane& dst = result.PlaneAt(0);
    const auto axis = static_cast<IppiAxis>(flip.code);
    gallery.Add({.name = flip.name,
                 .title = "Mirror",
                 .variant = flip.title,
                 .formula = "dst(x, H - 1 - y) = src(x, y), dst(W - 1 - x, y) = src(x, y), or both",
                 .calls = {QV_CALL(CqvAccLib::qvMirror(CqvAccLib::ThreeChannels, src.data, src.step,
                                                       dst.data, dst.step, src.Size(), axis))},
                 .before = {{"the frame", scene.colour}},
                 .after = {{flip.title, result}}});
  }
}

const PanelSource source{100, "Mirror", {Make}};

}  // namespace
}  // namespace qvtool::demo
