#include <cmath>
#include <numbers>

#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

constexpr char kFormula[] =
    "x' = cos a * x + sin a * y + xShift, y' = -sin a * x + cos a * y + yShift";

void AddTilted(const Scene& scene, Gallery& gallery) {
  const Plane& src = scene.colour.PlaneAt(0);
  const IppiRect all = scene.colour.Bounds();
  const double angle = 12;
  const qv_size size = {all.width, all.height};
  qv_size fit;
  double shift[2];
  qv_rotation_canvas(size, angle, &fit, shift);
  const double c = std::cos(angle * std::numbers::pi / 180);
  const double s = std::sin(angle * std::numbers::pi / 180);
  const Spot spot = scene.letters;
  const Spot turned = {static_cast<int>(c * spot.x + s * spot.y + shift[0]),
                       static_cast<int>(-s * spot.x + c * spot.y + shift[1])};
  Frame result = Blank({fit.width, fit.height});
  const Plane& dst = result.PlaneAt(0);
  const IppiRect canvas = result.Bounds();
  for (const Variant& method : kWarpMethods) {
    const int code = method.code;
    Panel panel = {
        .name = std::string("rotate-") + method.name,
        .title = "Rotate by 12 degrees",
        .variant = method.title,
        .formula = kFormula,
        .note = "The canvas holds all of the turned frame. Nearest leaves teeth, linear blurs.",
        .calls = {QV_CALL(qv_rotation_canvas(size, angle, &fit, shift)),
                  QV_CALL(CqvAccLib::qvRotate(CqvAccLib::ThreeChannels, src.data, src.Size(),
                                              src.step, all, dst.data, dst.step, canvas, angle,
                                              shift[0], shift[1], code))},
        .before = {Detail("the frame", scene.colour, spot)},
        .after = {Detail(method.title, result, turned)}};
    if (code == 4) panel.after.push_back({"turned by 12 degrees", result});
    panel.cover = code == 4;
    gallery.Add(panel);
  }
}

void AddQuarters(const Scene& scene, Gallery& gallery) {
  const Plane& src = scene.colour.PlaneAt(0);
  const IppiRect all = scene.colour.Bounds();
  for (const double angle : {90.0, 180.0}) {
    const int code = 1;
    double bound[2][2];
    CqvAccLib::qvGetRotateBound(CqvAccLib::ThreeChannels, all, bound, angle, 0, 0);
    Frame result = Blank({static_cast<int>(std::floor(bound[1][0] - bound[0][0])) + 1,
                          static_cast<int>(std::floor(bound[1][1] - bound[0][1])) + 1});
    const Plane& dst = result.PlaneAt(0);
    const IppiRect canvas = result.Bounds();
    const std::string degrees = std::to_string(static_cast<int>(angle)) + " degrees";
    gallery.Add(
        {.name = angle == 90 ? "rotate-quarter" : "rotate-half",
         .title = "Rotate by quarter turns",
         .variant = degrees,
         .formula = kFormula,
         .note = "Pixels stay as they are, whatever the method.",
         .calls = {QV_CALL(CqvAccLib::qvGetRotateBound(CqvAccLib::ThreeChannels, all, bound, angle,
                                                       0, 0)),
                   QV_CALL(CqvAccLib::qvRotate(CqvAccLib::ThreeChannels, src.data, src.Size(),
                                               src.step, all, dst.data, dst.step, canvas, angle,
                                               -bound[0][0], -bound[0][1], code))},
         .after = {{"turned by " + degrees, result}}});
  }
}

const PanelSource source{30, "Rotate", {AddTilted, AddQuarters}};

}  // namespace
}  // namespace qvtool::demo
