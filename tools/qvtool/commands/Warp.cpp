// qvtool warp: places frames on a quadrilateral, or makes a quadrilateral of them straight.
#include <algorithm>
#include <cmath>

#include "Projection.h"

namespace qvtool {
namespace {

struct Options {
  ProjectionOptions projection;
  std::vector<double> quad;
  std::optional<IppiSize> size;
  bool unwarp = false;
};

// The mean length of two opposite sides of the quadrilateral, in pixels.
int SideLength(const std::vector<double>& quad, int a, int b, int c, int d) {
  const auto side = [&](int from, int to) {
    const auto at = [&](int corner, int axis) {
      return quad[static_cast<std::size_t>(2 * corner + axis)];
    };
    return std::hypot(at(to, 0) - at(from, 0), at(to, 1) - at(from, 1));
  };
  return static_cast<int>(std::min(1e6, std::max(1.0, (side(a, b) + side(c, d)) / 2 + .5))) + 1;
}

// The part of the frame that the quadrilateral lies in, with the neighbours that sampling takes.
IppiRect AroundQuad(const std::vector<double>& quad, IppiSize size) {
  const auto range = [&](std::size_t axis, int length, int& first, int& count) {
    const auto [least, most] =
        std::minmax({quad[axis], quad[axis + 2], quad[axis + 4], quad[axis + 6]});
    first = static_cast<int>(std::clamp(std::floor(least) - 2, 0.0, length - 1.0));
    count = static_cast<int>(std::clamp(std::ceil(most) + 2, 0.0, length - 1.0)) - first + 1;
  };
  IppiRect region;
  range(0, size.width, region.x, region.width);
  range(1, size.height, region.y, region.height);
  return region;
}

Frame& Warp(const Options& options, const Frame& in, Frame& out) {
  const auto& quad = options.quad;
  if (options.unwarp) {
    const IppiSize size =
        options.size.value_or(IppiSize{SideLength(quad, 0, 1, 3, 2), SideLength(quad, 0, 3, 1, 2)});
    const Projection straight = OntoQuad(size, quad).Inverse();
    PrepareCanvas(options.projection, in, size, out);
    Project(options.projection, in, AroundQuad(quad, in.Size()), straight, out);
  } else {
    PrepareCanvas(options.projection, in, options.size.value_or(in.Size()), out);
    Project(options.projection, in, in.Bounds(), OntoQuad(in.Size(), quad), out);
  }
  return out;
}

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option_function<std::string>(
         "--quad",
         [options](const std::string& text) {
           options->quad = ParseNumbers("--quad", text, 8,
                                        "four points X0,Y0,X1,Y1,X2,Y2,X3,Y3: where the top-left, "
                                        "top-right, bottom-right and bottom-left corners are");
         },
         "Where the corners go: top left, top right, bottom right, bottom left")
      ->type_name("X0,Y0,...,X3,Y3")
      ->required();
  app.add_flag("--unwarp", options->unwarp,
               "The other way: the quadrilateral of the frame fills the result, such as a page "
               "photographed at a slant");
  app.add_option_function<std::string>(
         "--to", [options](const std::string& text) { options->size = ParseSize("--to", text); },
         "The size of the result (that of the frame; with --unwarp, that of the quadrilateral)")
      ->type_name("WxH");
  AddProjectionOptions(app, options->projection);
  app.footer(
      "Points are pixel centres: the top-left pixel is 0,0. They may lie outside of the result.\n"
      "  qvtool warp photo.jpg page.png --unwarp --quad 60,40,840,20,860,560,40,580");
  return EachFrame([options](Frame& in, Frame& out) -> Frame& { return Warp(*options, in, out); });
}

const Command command{"warp", "Place frames on a quadrilateral, or make one straight", Configure};

}  // namespace
}  // namespace qvtool
