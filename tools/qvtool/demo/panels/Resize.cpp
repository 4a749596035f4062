#include <algorithm>

#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

struct Scale {
  const char* name;
  const char* title;
  const char* note;
  double factor;
  IppiSize part;  // of the frame that is scaled
  Spot Scene::*spot;
};

constexpr Scale kScales[] = {
    {"up", "Resize, 2.5 times as large",
     "Nearest repeats pixels, linear blurs, cubic and Lanczos keep edges sharp; area averaging "
     "enlarges as Lanczos does.",
     2.5, {360, 200}, &Scene::letters},
    {"down", "Resize to 2 / 5 of the size",
     "What is too fine for the result comes out as patterns that the frame has not, except where "
     "every source pixel counts, as in area averaging.",
     0.4, {4096, 4096}, &Scene::fine}};

void AddScale(const Scene& scene, const Scale& scale, Gallery& gallery) {
  const Spot spot = scene.*scale.spot;
  const IppiRect part = Around(scene.colour, spot, scale.part);
  const Plane from = scene.colour.PlaneAt(0).Cut(part, scene.colour.Info().plane[0]);
  const IppiRect all = {0, 0, from.columns, from.rows};
  const auto scaled = [&](double length) { return static_cast<int>(length * scale.factor); };
  const IppiSize size = {std::max(1, scaled(from.columns)), std::max(1, scaled(from.rows))};
  const Spot shown = {scaled(spot.x - part.x), scaled(spot.y - part.y)};
  const double xFactor = static_cast<double>(size.width) / from.columns;
  const double yFactor = static_cast<double>(size.height) / from.rows;
  Frame result(Layout::Bgr, size.width, size.height);
  const Plane& dst = result.PlaneAt(0);
  for (const Variant& method : kMethods) {
    const int code = method.code;
    gallery.Add({.name = std::string("resize-") + scale.name + "-" + method.name,
                 .title = scale.title,
                 .variant = method.title,
                 .formula = "nearest: src(trunc((i + 0.5) / F)); linear: two taps at "
                            "i * (L - 1) / (L * F - 1); cubic: four, a = -0.5; Lanczos: six",
                 .note = scale.note,
                 .calls = {QV_CALL(CqvAccLib::qvResize(CqvAccLib::ThreeChannels, from.data,
                                                       from.Size(), from.step, all, dst.data,
                                                       dst.step, size, xFactor, yFactor, code))},
                 .before = {Detail("the frame", scene.colour, spot)},
                 .after = {Detail(method.title, result, shown)}});
  }
}

// Luma and chroma each on a grid of its own.
void AddPacked(const Scene& scene, Gallery& gallery) {
  if (scene.packed.Empty()) return;
  const Plane& from = scene.packed.PlaneAt(0);
  const IppiSize whole = scene.packed.Size();
  const IppiRect all = scene.packed.Bounds();
  const auto half = [](int length) { return std::max(2, length / 4 * 2); };
  const IppiSize size = {half(whole.width), half(whole.height)};
  const double xFactor = static_cast<double>(size.width) / whole.width;
  const double yFactor = static_cast<double>(size.height) / whole.height;
  Frame result(Layout::Yuyv, size.width, size.height), shown(Layout::Bgr, size.width, size.height);
  const Plane& dst = result.PlaneAt(0);
  const int code = 4;
  gallery.Add({.name = "resize-packed",
               .title = "Resize packed 4:2:2",
               .formula = "Y on the grid of pixels, Cb and Cr on the grid of pairs",
               .note = "A camera's bytes are halved as they are; pixels are made for this page.",
               .calls = {QV_CALL(CqvAccLib::qvResizeYUV422(
                   CqvAccLib::ThreeChannels, from.data, whole, from.step, all, dst.data, dst.step,
                   size, xFactor, yFactor, code))},
               .finish =
                   [&] {
                     const Plane& bgr = shown.PlaneAt(0);
                     CqvAccLib::qvYCbCr422ToBGR(CqvAccLib::ThreeChannels, dst.data, dst.step,
                                                bgr.data, bgr.step, size);
                   },
               .before = {{"the frame", scene.colour}},
               .after = {{"half its size, cubic", shown}}});
}

void Make(const Scene& scene, Gallery& gallery) {
  for (const Scale& scale : kScales) AddScale(scene, scale, gallery);
  AddPacked(scene, gallery);
}

const PanelSource source{20, "Resize", {Make}};

}  // namespace
}  // namespace qvtool::demo
