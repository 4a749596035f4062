#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

Spot Warped(Spot spot, const double (&c)[3][3]) {
  const auto row = [&](int i) { return c[i][0] * spot.x + c[i][1] * spot.y + c[i][2]; };
  return {static_cast<int>(row(0) / row(2)), static_cast<int>(row(1) / row(2))};
}

void AddTwo(const Scene& scene, const double (&onto)[3][3], Gallery& gallery) {
  const IppiRect all = scene.colour.Bounds();
  Frame page = Blank(scene.colour.Size()), edge(Layout::Grey, all.width, all.height);
  const Plane& src = scene.colour.PlaneAt(0);
  const Plane& mask = scene.mask.PlaneAt(0);
  const Plane& dst = page.PlaneAt(0);
  const Plane& dstMask = edge.PlaneAt(0);
  const unsigned char none = 0;
  CqvAccLib::qvSet(CqvAccLib::OneChannel, &none, dstMask.data, dstMask.step, dstMask.Size());
  const int code = 2;
  gallery.Add({.name = "warp-two",
               .title = "Warp a frame and its alpha plane",
               .formula = "both by the same formula, each through a matrix of its own",
               .calls = {QV_CALL(CqvAccLib::qvWarpPerspectiveEx(
                   CqvAccLib::ThreeChannels, src.data, src.Size(), src.step, all, dst.data,
                   dst.step, all, onto, code, mask.data, mask.step, dstMask.data, dstMask.step,
                   onto))},
               .before = {{"its alpha", scene.mask}},
               .after = {{"the frame, linear", page}, {"its alpha", edge}}});
}

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
  const Spot spot = scene.letters;
  Frame page = Blank(scene.colour.Size()), back = Blank(scene.colour.Size());
  const Plane& slanted = page.PlaneAt(0);
  for (const Variant& method : kWarpMethods) {
    const int code = method.code;
    Panel panel = {.name = std::string("warp-") + method.name,
                   .title = "Warp onto a quadrilateral",
                   .variant = method.title,
                   .formula = "x' = (c00 X + c01 Y + c02) / (c20 X + c21 Y + c22), y' likewise",
                   .calls = {QV_CALL(CqvAccLib::qvGetPerspectiveTransform(CqvAccLib::ThreeChannels,
                                                                          all, quad, onto)),
                             QV_CALL(CqvAccLib::qvWarpPerspective(
                                 CqvAccLib::ThreeChannels, src.data, src.Size(), src.step, all,
                                 slanted.data, slanted.step, all, onto, code))},
                   .before = {Detail("the frame", scene.colour, spot)},
                   .after = {Detail(method.title, page, Warped(spot, onto))}};
    if (code == 4) panel.after.push_back({"a page at a slant", page});
    panel.cover = code == 4;
    gallery.Add(panel);
  }
  const Plane& dst = back.PlaneAt(0);
  for (const Variant& method : kWarpMethods) {
    const int code = method.code;
    Panel panel = {.name = std::string("unwarp-") + method.name,
                   .title = "Unwarp: a page made straight",
                   .variant = method.title,
                   .formula = "the same with the inverse matrix",
                   .calls = {QV_CALL(qv_invert_transform(onto[0], straight[0])),
                             QV_CALL(CqvAccLib::qvWarpPerspective(
                                 CqvAccLib::ThreeChannels, slanted.data, slanted.Size(),
                                 slanted.step, all, dst.data, dst.step, all, straight, code))},
                   .before = {Detail("the page", page, Warped(spot, onto))},
                   .after = {Detail(method.title, back, spot)}};
    if (code == 4) panel.after.push_back({"made straight", back});
    gallery.Add(panel);
  }

  AddTwo(scene, onto, gallery);
}

const PanelSource source{40, "Perspective", {Make}};

}  // namespace
}  // namespace qvtool::demo
