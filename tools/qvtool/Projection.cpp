#include "Projection.h"

#include <cmath>

#include "io/Status.h"

namespace qvtool {
namespace {

Projection Product(const Projection& a, const Projection& b) {
  Projection product{};
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 3; ++k)
      for (int n = 0; n < 3; ++n) product.m[i][k] += a.m[i][n] * b.m[n][k];
  return product;
}

// The units of a plane that cover the pixels of a region.
IppiRect InPlane(const IppiRect& region, const PlaneShape& shape) {
  const int x = region.x >> shape.shiftX, y = region.y >> shape.shiftY;
  const int right = (region.x + region.width + (1 << shape.shiftX) - 1) >> shape.shiftX;
  const int bottom = (region.y + region.height + (1 << shape.shiftY) - 1) >> shape.shiftY;
  return {x, y, right - x, bottom - y};
}

}  // namespace

void AddProjectionOptions(CLI::App& app, ProjectionOptions& options) {
  AddChoice<IppiInterpolation>(app, "--method", options.method,
                               {{"nearest", InterpolateNearest},
                                {"linear", InterpolateLinear},
                                {"cubic", InterpolateCubic}},
                               "How (cubic)");
  app.add_option_function<std::string>(
         "--background",
         [&options](const std::string& text) {
           options.background = Colour::Parse("--background", text);
           options.isOpaque = true;
         },
         "Colour of what is left free (black; transparent where there is alpha)")
      ->type_name("COLOUR");
}

Projection Projection::Inverse() const {
  Projection inverse;
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 3; ++k) {
      const int a = (k + 1) % 3, b = (k + 2) % 3, c = (i + 1) % 3, d = (i + 2) % 3;
      inverse.m[i][k] = m[a][c] * m[b][d] - m[a][d] * m[b][c];
    }
  return inverse;
}

Projection Projection::Between(const PlaneShape& shape) const {
  const double sx = 1 << shape.shiftX, sy = 1 << shape.shiftY;
  const double x = (sx - 1) / 2, y = (sy - 1) / 2;
  const Projection toPixels = {{{sx, 0, x}, {0, sy, y}, {0, 0, 1}}};
  const Projection toUnits = {{{1 / sx, 0, -x / sx}, {0, 1 / sy, -y / sy}, {0, 0, 1}}};
  return Product(toUnits, Product(*this, toPixels));
}

Projection OntoQuad(IppiSize size, const std::vector<double>& quad) {
  double corners[4][2];
  for (std::size_t i = 0; i < 8; ++i) corners[i / 2][i % 2] = quad[i];
  Projection projection;
  Check("qvGetPerspectiveTransform",
        CqvAccLib::qvGetPerspectiveTransform(CqvAccLib::OneChannel, {0, 0, size.width, size.height},
                                             corners, projection.m));
  return projection;
}

void PrepareCanvas(const ProjectionOptions& options, const Frame& in, IppiSize size, Frame& out) {
  for (int i = 0; i < in.Planes(); ++i) in.PlaneAt(i).Type("moving pixels");
  out.Reset(in.GetLayout(), size.width, size.height);
  FillFrame(out, out.Bounds(), options.background, options.isOpaque ? 255 : 0);
}

void Project(const ProjectionOptions& options, const Frame& in, const IppiRect& region,
             const Projection& projection, Frame& out) {
  const int method = options.method;
  const LayoutInfo& info = in.Info();
  const Plane& colour = in.PlaneAt(0);
  const Plane& canvas = out.PlaneAt(0);
  if (info.planes == 2 && info.alphaPlane == 1) {  // a picture and its alpha in one call
    const Plane& alpha = in.PlaneAt(1);
    const Plane& alphaCanvas = out.PlaneAt(1);
    Check("qvWarpPerspectiveEx",
          CqvAccLib::qvWarpPerspectiveEx(
              CqvAccLib::ThreeChannels, colour.data, in.Size(), colour.step, region, canvas.data,
              canvas.step, out.Bounds(), projection.m, method, alpha.data, alpha.step,
              alphaCanvas.data, alphaCanvas.step, projection.m));
    return;
  }
  for (int i = 0; i < info.planes; ++i) {
    const Plane& from = in.PlaneAt(i);
    const Plane& to = out.PlaneAt(i);
    const Projection map = projection.Between(info.plane[i]);
    Check("qvWarpPerspective",
          CqvAccLib::qvWarpPerspective(from.Type("moving pixels"), from.data, from.Size(),
                                       from.step, InPlane(region, info.plane[i]), to.data, to.step,
                                       {0, 0, to.columns, to.rows}, map.m, method));
  }
}

void Rotate(const ProjectionOptions& options, const Frame& in, double angle, bool fit, Frame& out) {
  // The library's own bounds give all that is needed: those of the pixels (1, 0) and (0, 1) are the
  // columns of the rotation, and those of the frame tell its size and middle.
  const auto bound = [angle](IppiRect region) {
    Projection corners{};  // smallest x, y; largest x, y
    double found[2][2];
    Check("qvGetRotateBound",
          CqvAccLib::qvGetRotateBound(CqvAccLib::OneChannel, region, found, angle, 0, 0));
    for (int i = 0; i < 4; ++i) corners.m[i / 2][i % 2] = found[i / 2][i % 2];
    return corners;
  };
  const Projection right = bound({1, 0, 1, 1}), down = bound({0, 1, 1, 1});
  const Projection all = bound(in.Bounds());
  const auto length = [&](int axis) {
    const double apart = all.m[1][axis] - all.m[0][axis];
    if (!(apart < 1e9))
      throw UsageError("--fit: the canvas would be more than 1000000000 pixels long");
    return static_cast<int>(std::ceil(apart - 1e-6)) + 1;
  };
  const IppiSize size = fit ? IppiSize{length(0), length(1)} : in.Size();
  const Projection turn = {
      {{right.m[0][0], down.m[0][0], (size.width - 1 - all.m[0][0] - all.m[1][0]) / 2},
       {right.m[0][1], down.m[0][1], (size.height - 1 - all.m[0][1] - all.m[1][1]) / 2},
       {0, 0, 1}}};
  PrepareCanvas(options, in, size, out);
  for (int i = 0; i < in.Planes(); ++i) {
    const Plane& from = in.PlaneAt(i);
    const Plane& to = out.PlaneAt(i);
    const PlaneShape& shape = in.Info().plane[i];
    const Projection map = turn.Between(shape);
    const IppiRect whole = {0, 0, from.columns, from.rows}, canvas = {0, 0, to.columns, to.rows};
    const int method = options.method;
    if (shape.shiftX == shape.shiftY) {
      Check("qvRotate", CqvAccLib::qvRotate(from.Type("moving pixels"), from.data, from.Size(),
                                            from.step, whole, to.data, to.step, canvas, angle,
                                            map.m[0][2], map.m[1][2], method));
    } else {  // on a grid of oblong units a rotation is none
      Check("qvWarpPerspective", CqvAccLib::qvWarpPerspective(
                                     from.Type("moving pixels"), from.data, from.Size(), from.step,
                                     whole, to.data, to.step, canvas, map.m, method));
    }
  }
}

}  // namespace qvtool
