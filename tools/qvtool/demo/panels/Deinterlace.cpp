#include <cstring>

#include "Error.h"
#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

void AddSmoothed(const Scene& scene, Gallery& gallery) {
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
               .before = {Detail("two fields woven", scene.woven, scene.moving)},
               .after = {Detail("smoothed", result, scene.moving)}});
}

// To a frame for each field, and back to the woven frame.
void AddFields(const Scene& scene, Gallery& gallery) {
  if (scene.woven.Height() < 2) return;
  const int width = scene.woven.Width(), height = scene.woven.Height();
  Frame early(Layout::Bgr, width, height), late(Layout::Bgr, width, height);
  const Plane& src = scene.woven.PlaneAt(0);
  const Plane& first = early.PlaneAt(0);
  const Plane& second = late.PlaneAt(0);
  const qv_size size = {src.RowBytes(), height};
  for (const int centreWeight : {256, 0}) {
    const std::string how = centreWeight ? "lines doubled" : "lines between are means";
    gallery.Add({.name = "bob-" + std::to_string(centreWeight),
                 .title = "Make each field a frame",
                 .variant = how,
                 .formula = "dst = (near * (256 - f) + far * f + 128) / 256, f = (256 - w) / 2",
                 .note = "Twice as many frames a second: what moves is at one place in each. Means "
                         "leave fewer steps in slanted edges than doubled lines.",
                 .calls = {QV_CALL(qv_deinterlace_bob(src.data, src.step, first.data, first.step,
                                                      second.data, second.step, size,
                                                      QV_TOP_FIELD_FIRST, centreWeight))},
                 .before = {Detail("two fields woven", scene.woven, scene.moving)},
                 .after = {Detail("the first field, " + how, early, scene.moving),
                           Detail("the second, " + how, late, scene.moving)}});
  }
  Frame woven(Layout::Bgr, width, height);
  const Plane& dst = woven.PlaneAt(0);
  gallery.Add({.name = "weave",
               .title = "Weave two fields into a frame",
               .formula = "even rows of the first, odd ones of the second",
               .note = "Each frame gives the lines of its field: the frame that they came from.",
               .calls = {QV_CALL(qv_weave(first.data, 2 * first.step, second.Row(1),
                                          2 * second.step, dst.data, dst.step, size,
                                          QV_TOP_FIELD_FIRST))},
               .finish =
                   [&] {
                     for (int y = 0; y < height; ++y)
                       if (std::memcmp(dst.Row(y), src.Row(y),
                                       static_cast<std::size_t>(src.RowBytes())) != 0)
                         throw Error("qv_weave: row " + std::to_string(y) + " is another");
                   },
               .before = {Detail("the first field", early, scene.moving),
                          Detail("the second", late, scene.moving)},
               .after = {Detail("woven", woven, scene.moving)}});
}

const PanelSource source{70, "Fields", {AddSmoothed, AddFields}};

}  // namespace
}  // namespace qvtool::demo
