// Resampling as the C interface has it: every filter by one position rule.
#include <algorithm>
#include <cmath>

#include "demo/Panel.h"
#include "io/Status.h"

namespace qvtool::demo {
namespace {

struct Filter {
  int code;
  const char* name;
  const char* title;
  int narrow;
};

constexpr Filter kFilters[] = {{QV_INTERPOLATE_NEAREST, "nearest", "nearest", 0},
                               {QV_INTERPOLATE_LINEAR, "linear", "linear", 0},
                               {QV_INTERPOLATE_MITCHELL, "mitchell", "Mitchell", 0},
                               {QV_INTERPOLATE_CUBIC, "cubic", "cubic", 0},
                               {QV_INTERPOLATE_LANCZOS, "lanczos", "Lanczos", 0},
                               {QV_INTERPOLATE_AREA, "area", "area", 0},
                               {QV_INTERPOLATE_LANCZOS, "narrow", "Lanczos, narrow", 1}};

qv_size SizeOf(const Plane& plane) { return {plane.columns, plane.rows}; }

void AddEnlarged(const Scene& scene, Gallery& gallery) {
  const Spot spot = scene.letters;
  const IppiRect part = Around(scene.colour, spot, {360, 200});
  const Plane& src = scene.colour.PlaneAt(0);
  Frame result(Layout::Bgr, part.width * 3, part.height * 3);
  const Plane& dst = result.PlaneAt(0);
  for (const Filter& filter : kFilters) {
    if (filter.narrow) continue;  // the same where nothing is reduced
    qv_resample_options options = {};
    options.pixels = QV_PIXELS_THREE;
    options.filter = filter.code;
    options.region_x = part.x;
    options.region_y = part.y;
    options.region_width = part.width;
    options.region_height = part.height;
    gallery.Add({.name = std::string("resample-up-") + filter.name,
                 .title = "Resample a part to three times its size",
                 .variant = filter.title,
                 .formula = "position = S + (i + 0.5) * L / N - 0.5; a byte is the sum of the "
                            "source's, weighted by the filter's value at their distance",
                 .note = "Nearest repeats pixels, linear and Mitchell are soft, cubic is sharper, "
                         "Lanczos sharpest and with faint echoes beside edges.",
                 .calls = {QV_CALL(qv_resample(src.data, SizeOf(src), src.step, dst.data,
                                               SizeOf(dst), dst.step, &options))},
                 .before = {Detail("the frame", scene.colour, spot)},
                 .after = {Detail(filter.title, result,
                                  {(spot.x - part.x) * 3, (spot.y - part.y) * 3})}});
  }
}

void AddReduced(const Scene& scene, Gallery& gallery) {
  const Plane& src = scene.colour.PlaneAt(0);
  const Spot spot = scene.fine;
  Frame result(Layout::Bgr, std::max(1, src.columns * 2 / 5), std::max(1, src.rows * 2 / 5));
  const Plane& dst = result.PlaneAt(0);
  for (const Filter& filter : kFilters) {
    qv_resample_options options = {};
    options.pixels = QV_PIXELS_THREE;
    options.filter = filter.code;
    options.narrow = filter.narrow;
    gallery.Add({.name = std::string("resample-down-") + filter.name,
                 .title = "Resample to 2 / 5 of the size",
                 .variant = filter.title,
                 .formula = "filters are widened by L / N, unless narrow is 1",
                 .note = "Widened, every source pixel counts, and what is too fine for the result "
                         "becomes its mean; nearest and narrow filters make patterns of it that "
                         "the frame has not.",
                 .calls = {QV_CALL(qv_resample(src.data, SizeOf(src), src.step, dst.data,
                                               SizeOf(dst), dst.step, &options))},
                 .before = {Detail("the frame", scene.colour, spot)},
                 .after = {Detail(filter.title, result, {spot.x * 2 / 5, spot.y * 2 / 5})}});
  }
}

// An orange ring; what is transparent is black, as painting programs leave it.
constexpr qv_size kRing = {40, 25};

std::vector<unsigned char> DrawRing() {
  std::vector<unsigned char> pixels;
  for (int y = 0; y < kRing.height; ++y)
    for (int x = 0; x < kRing.width; ++x) {
      const double far = std::abs(std::hypot(x - 19.5, y - 12.0) - 8);
      const int alpha = static_cast<int>(std::clamp(3 - far, 0.0, 1.0) * 255);
      for (int value : {alpha ? 30 : 0, alpha ? 140 : 0, alpha ? 255 : 0, alpha})
        pixels.push_back(static_cast<unsigned char>(value));
    }
  return pixels;
}

void AddAlpha(const Scene&, Gallery& gallery) {
  const std::vector<unsigned char> ring = DrawRing();
  const unsigned char* const src = ring.data();
  const int srcStep = 4 * kRing.width;
  const qv_size size = {kDetail.width, kDetail.height};
  std::vector<unsigned char> resized(static_cast<std::size_t>(size.width * size.height * 4));
  unsigned char* const dst = resized.data();
  const int dstStep = 4 * size.width;
  Frame result(Layout::Bgr, size.width, size.height);
  const Plane& paper = result.PlaneAt(0);
  struct Kind {
    const char* name;
    const char* title;
    int pixels;
  };
  constexpr Kind kKinds[] = {{"alike", "all four bytes alike", QV_PIXELS_FOUR},
                             {"straight", "colours weighted by alpha", QV_PIXELS_STRAIGHT}};
  for (const Kind& kind : kKinds) {
    qv_resample_options options = {};
    options.pixels = kind.pixels;
    options.filter = QV_INTERPOLATE_CUBIC;
    gallery.Add(
        {.name = std::string("resample-alpha-") + kind.name,
         .title = "Resample a picture with alpha",
         .variant = kind.title,
         .formula = "colour = sum(w * alpha * colour) / sum(w * alpha)",
         .note = "Where transparent pixels are black, bytes that are all filtered alike get a dark "
                 "seam; weighted by alpha, what cannot be seen does not count.",
         .calls = {QV_CALL(qv_resample(src, kRing, srcStep, dst, size, dstStep, &options))},
         .finish =
             [&] {
               for (int y = 0; y < paper.rows; ++y)
                 std::fill_n(paper.Row(y), paper.RowBytes(), static_cast<unsigned char>(235));
               Check("qv_over", qv_over(3, paper.data, paper.step, size, 4, dst, dstStep, size,
                                        nullptr, 0, 0, 0, 255, QV_ALPHA_OVER));
             },
         .after = {Detail(kind.title, result, {kDetail.width / 2, kDetail.height / 2})}});
  }
}

const PanelSource source{10, "Resample", {AddEnlarged, AddReduced, AddAlpha}};

}  // namespace
}  // namespace qvtool::demo
