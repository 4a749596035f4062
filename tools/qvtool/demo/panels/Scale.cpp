#include "demo/Panel.h"
#include "io/Status.h"

namespace qvtool::demo {
namespace {

void Make(const Scene& scene, Gallery& gallery) {
  Frame result = scene.colour.Clone();
  const Plane& src = scene.colour.PlaneAt(0);
  const Plane& dst = result.PlaneAt(0);
  const unsigned char value = 112;
  gallery.Add({.name = "scale",
               .title = "Scale all bytes in place",
               .formula = "x = floor(x * value / 255), value = 112",
               .calls = {QV_CALL(CqvAccLib::qvMulCScale(CqvAccLib::ScalePlane, value, dst.data,
                                                        dst.step, dst.SizeInBytes()))},
               // In place: every round starts from the frame again.
               .prepare =
                   [&] {
                     Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeChannels, src.data, src.step,
                                                       dst.data, dst.step, src.Size()));
                   },
               .before = {{"the frame", scene.colour}},
               .after = {{"at 112 / 255 of its brightness", result}}});
}

const PanelSource source{90, "Scale", {Make}};

}  // namespace
}  // namespace qvtool::demo
