#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

void Make(const Scene& scene, Gallery& gallery) {
  const int width = scene.colour.Width();
  const int height = scene.colour.Height();
  {
    Frame result(Layout::Bgr, width, height);
    const Plane& dst = result.PlaneAt(0);
    const unsigned char value[3] = {12, 70, 180};
    gallery.Add({.name = "fill-colour",
                 .title = "Fill with a colour",
                 .formula = "dst[3k + c] = value[c]",
                 .calls = {QV_CALL(CqvAccLib::qvSet(CqvAccLib::ThreeChannels, value, dst.data,
                                                    dst.step, dst.Size()))},
                 .before = {{"the frame", scene.colour}},
                 .after = {{"value = {12, 70, 180}: blue, green, red", result}}});
  }
  // A region of the frame: the same call on a pointer further in.
  Frame blanked = scene.grey.Clone();
  const IppiRect region{width / 4, height / 4, width - width / 2, height - height / 2};
  const Plane part = blanked.PlaneAt(0).Cut(region, scene.grey.Info().plane[0]);
  const unsigned char grey = 128;
  gallery.Add({.name = "fill-region",
               .title = "Fill a region of a plane",
               .formula = "dst[k] = value[0]",
               .note = "A region is a pointer to its first pixel with the step of the whole image.",
               .calls = {QV_CALL(CqvAccLib::qvSet(CqvAccLib::OneChannel, &grey, part.data,
                                                  part.step, part.Size()))},
               .pixels = static_cast<long long>(region.width) * region.height,
               .before = {{"a grey plane", scene.grey}},
               .after = {{"its middle filled", blanked}}});
}

const PanelSource source{120, "Fill", {Make}};

}  // namespace
}  // namespace qvtool::demo
