#include "Projection.h"

#include "io/Status.h"
#include "qvAcceleratedLib/qv.h"

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
  Check("qv_invert_transform", qv_invert_transform(m[0], inverse.m[0]));
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
  const IppiSize frame = in.Size();
  qv_size canvas;
  double shift[2];
  Check("qv_rotation_canvas",
        qv_rotation_canvas({frame.width, frame.height}, angle, &canvas, shift));
  const IppiSize size = fit ? IppiSize{canvas.width, canvas.height} : frame;
  // Where the pixels (1, 0) and (0, 1) go are the columns of the rotation.
  const auto turned = [angle](int x, int y, double (&to)[2][2]) {
    Check("qvGetRotateBound",
          CqvAccLib::qvGetRotateBound(CqvAccLib::OneChannel, {x, y, 1, 1}, to, angle, 0, 0));
  };
  double right[2][2], down[2][2];
  turned(1, 0, right);
  turned(0, 1, down);
  const Projection turn = {
      {{right[0][0], down[0][0], shift[0] + (size.width - canvas.width) / 2.0},
       {right[0][1], down[0][1], shift[1] + (size.height - canvas.height) / 2.0},
       {0, 0, 1}}};
  PrepareCanvas(options, in, size, out);
  for (int i = 0; i < in.Planes(); ++i) {
    const Plane& from = in.PlaneAt(i);
    const Plane& to = out.PlaneAt(i);
    const PlaneShape& shape = in.Info().plane[i];
    const Projection map = turn.Between(shape);
    const IppiRect whole = {0, 0, from.columns, from.rows}, all = {0, 0, to.columns, to.rows};
    const int method = options.method;
    if (shape.shiftX == shape.shiftY) {
      Check("qvRotate", CqvAccLib::qvRotate(from.Type("moving pixels"), from.data, from.Size(),
                                            from.step, whole, to.data, to.step, all, angle,
                                            map.m[0][2], map.m[1][2], method));
    } else {  // on a grid of oblong units a rotation is none
      Check("qvWarpPerspective", CqvAccLib::qvWarpPerspective(
                                     from.Type("moving pixels"), from.data, from.Size(), from.step,
                                     whole, to.data, to.step, all, map.m, method));
    }
  }
}

}  // namespace qvtool
