#include <cmath>

#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

struct Turn {
  const char* name;
  const char* title;
  double angle;
  int code;
};

constexpr Turn kTurns[] = {
    {"quarter", "Rotate by 90 degrees: pixels as they are", 90, 1},
    {"half", "Rotate by 180 degrees: pixels as they are", 180, 1},
    {"nearest", "Rotate by 12 degrees: nearest neighbour, code 1", 12, 1},
    {"linear", "Rotate by 12 degrees: linear, code 2", 12, 2},
    {"cubic", "Rotate by 12 degrees: cubic (Keys 1981), code 4", 12, 4}};

// The canvas is the bounding rectangle of the turned frame.
void Make(const Scene& scene, Gallery& gallery) {
  const Plane& src = scene.colour.PlaneAt(0);
  const IppiRect all = scene.colour.Bounds();
  for (const Turn& turn : kTurns) {
    const double angle = turn.angle;
    const int code = turn.code;
    double bound[2][2];
    CqvAccLib::qvGetRotateBound(CqvAccLib::ThreeChannels, all, bound, angle, 0, 0);
    const double xShift = -bound[0][0], yShift = -bound[0][1];
    Frame result(Layout::Bgr, static_cast<int>(std::floor(bound[1][0] - bound[0][0])) + 1,
                 static_cast<int>(std::floor(bound[1][1] - bound[0][1])) + 1);
    const Plane& dst = result.PlaneAt(0);
    const IppiRect canvas = result.Bounds();
    const unsigned char background[] = {64, 64, 64};
    CqvAccLib::qvSet(CqvAccLib::ThreeChannels, background, dst.data, dst.step, dst.Size());
    gallery.Add({.name = std::string("rotate-") + turn.name,
                 .title = turn.title,
                 .formula = "x' = cos a * x + sin a * y + xShift, "
                            "y' = -sin a * x + cos a * y + yShift",
                 .calls = {QV_CALL(CqvAccLib::qvGetRotateBound(CqvAccLib::ThreeChannels, all, bound,
                                                               angle, 0, 0)),
                           QV_CALL(CqvAccLib::qvRotate(CqvAccLib::ThreeChannels, src.data,
                                                       src.Size(), src.step, all, dst.data,
                                                       dst.step, canvas, angle, xShift, yShift,
                                                       code))},
                 .before = {{"The frame", scene.colour}},
                 .after = {{"Turned", result}}});
  }
}

const PanelSource source{70, "Rotate", Make};

}  // namespace
}  // namespace qvtool::demo
