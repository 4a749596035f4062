#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

void Make(const Scene& scene, Gallery& gallery) {
  if (scene.woven.Height() < 3) return;  // the filter takes three rows
  Frame result(Layout::Bgr, scene.woven.Width(), scene.woven.Height());
  const Plane& src = scene.woven.PlaneAt(0);
  const Plane& dst = result.PlaneAt(0);
  const unsigned centreWeight = 128, mode = 0;
  gallery.Add({.name = "deinterlace",
               .title = "Smooth the combing of two woven fields",
               .formula = "dst(y) = ((src(y - 1) + src(y + 1)) * (256 - w) / 2 + src(y) * w) >> 8",
               .note = "With a centre weight of 128, every row takes as much from its own field as "
                       "from the other one: what moves is seen at both places, without teeth.",
               .calls = {QV_CALL(CqvAccLib::qvDeinterlace(CqvAccLib::ThreeChannels, src.data,
                                                          src.step, dst.data, dst.step, src.Size(),
                                                          centreWeight, mode))},
               .before = {{"Two fields woven", scene.woven, scene.moving}},
               .after = {{"Filtered", result, scene.moving}}});
}

const PanelSource source{90, "Deinterlacing", Make};

}  // namespace
}  // namespace qvtool::demo
