#include <algorithm>

#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

struct Method {
  int code;
  const char* name;
  const char* title;
  const char* formula;
};

constexpr Method kMethods[] = {
    {1, "nearest", "nearest neighbour", "dst(i) = src(trunc((i + 0.5) / F))"},
    {2, "linear", "linear", "two taps at i * (L - 1) / (L * F - 1)"},
    {4, "cubic", "cubic", "four taps, Keys 1981 with a = -0.5"},
    {8, "area", "area averaging", "mean of src over [i / F, (i + 1) / F); enlarging: Lanczos"},
    {16, "lanczos", "Lanczos", "six taps, sinc(x) * sinc(x / 3)"}};

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
               .title = "Resize packed 4:2:2: cubic, code 4",
               .formula = "Y on the grid of pixels, Cb and Cr on the grid of pairs",
               .calls = {QV_CALL(CqvAccLib::qvResizeYUV422(
                   CqvAccLib::ThreeChannels, from.data, whole, from.step, all, dst.data, dst.step,
                   size, xFactor, yFactor, code))},
               .finish =
                   [&] {
                     const Plane& bgr = shown.PlaneAt(0);
                     CqvAccLib::qvYCbCr422ToBGR(CqvAccLib::ThreeChannels, dst.data, dst.step,
                                                bgr.data, bgr.step, size);
                   },
               .before = {{"The frame, in B, G, R", scene.colour}},
               .after = {{"Resized, in B, G, R", shown}}});
}

// The zone plate, in which every spatial frequency and every direction has its place.
void Make(const Scene& scene, Gallery& gallery) {
  struct Scale {
    const char* name;
    const char* title;
    double factor;
  };
  constexpr Scale kScales[] = {{"up", "enlarged", 2.5}, {"down", "reduced", 0.4}};
  const Plane& src = scene.colour.PlaneAt(0);
  for (const Scale& scale : kScales) {
    const IppiRect part = scene.fine;
    // Enlarged is the detail, reduced the whole frame: each result fits the page.
    const bool up = scale.factor > 1;
    const Plane from = up ? src.Cut(part, scene.colour.Info().plane[0]) : src;
    const IppiRect all = {0, 0, from.columns, from.rows};
    const auto scaled = [&](int length) {
      return std::max(1, static_cast<int>(length * scale.factor));
    };
    const IppiSize size = {scaled(from.columns), scaled(from.rows)};
    const IppiSize shownSize = {scaled(part.width), scaled(part.height)};
    const IppiRect shown = {std::min(scaled(part.x), size.width - shownSize.width),
                            std::min(scaled(part.y), size.height - shownSize.height),
                            shownSize.width, shownSize.height};
    for (const Method& method : kMethods) {
      Frame result(Layout::Bgr, size.width, size.height);
      const Plane& dst = result.PlaneAt(0);
      const double xFactor = static_cast<double>(size.width) / from.columns;
      const double yFactor = static_cast<double>(size.height) / from.rows;
      const int code = method.code;
      Picture after = {"Resized", result};
      if (!up) after.detail = shown;
      gallery.Add(
          {.name = std::string("resize-") + scale.name + "-" + method.name,
           .title = std::string("Resize, ") + scale.title + ": " + method.title + ", code " +
                    std::to_string(code),
           .formula = method.formula,
           .calls = {QV_CALL(CqvAccLib::qvResize(CqvAccLib::ThreeChannels, from.data, from.Size(),
                                                 from.step, all, dst.data, dst.step, size, xFactor,
                                                 yFactor, code))},
           .before = {{"A part of the frame", scene.colour, part}},
           .after = {after}});
    }
  }
  AddPacked(scene, gallery);
}

const PanelSource source{60, "Resize", Make};

}  // namespace
}  // namespace qvtool::demo
