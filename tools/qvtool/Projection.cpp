#include "Projection.h"

#include <algorithm>
#include <cmath>

#include "io/Samples.h"
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

// ---- Colours by their alpha -----------------------------------------------------------------

// What the samples around a place count there, from the one numbered `first` on, along an axis.
struct Taps {
  int first, count;
  double weight[4];
};

Taps TapsAt(double at, int method) {
  const double whole = std::floor(at), t = at - whole;
  const int first = static_cast<int>(whole);
  if (method == InterpolateLinear) return {first, 2, {1 - t, t, 0, 0}};
  return {first - 1,  // Keys 1981 with a = -1/2
          4,
          {((1 - t / 2) * t - .5) * t, (1.5 * t - 2.5) * t * t + 1,
           ((2 - 1.5 * t) * t + .5) * t, (t - 1) / 2 * t * t}};
}

bool IsOfOneValue(const Channel& channel) {
  for (int y = 0; y < channel.rows; ++y)
    for (int x = 0; x < channel.columns; ++x)
      if (channel.At(x, y) != channel.data[0]) return false;
  return true;
}

// The colours around a place of a region, each counted by its alpha. As in the operations, what
// lies beyond the region repeats its edge, and places beyond its outer pixels have no colour.
class AlphaSampler {
 public:
  AlphaSampler(const Frame& frame, const IppiRect& region) : alpha_(Part(frame, region, 3)) {
    for (int c = 0; c < 3; ++c) colour_[c] = Part(frame, region, c);
    left_ = region.x;
    top_ = region.y;
  }

  // False where there is none, and where the alphas around are all the same or count nothing.
  bool operator()(double x, double y, int method, unsigned char (&colours)[3]) const {
    x -= left_;
    y -= top_;
    if (!IsInside(x, alpha_.columns) || !IsInside(y, alpha_.rows)) return false;
    const Taps across = TapsAt(x, method), down = TapsAt(y, method);
    double sum = 0, sums[3] = {};
    int least = 255, most = 0;
    for (int j = 0; j < down.count; ++j)
      for (int i = 0; i < across.count; ++i) {
        const int column = std::clamp(across.first + i, 0, alpha_.columns - 1);
        const int row = std::clamp(down.first + j, 0, alpha_.rows - 1);
        const int alpha = alpha_.At(column, row);
        least = std::min(least, alpha);
        most = std::max(most, alpha);
        const double weight = across.weight[i] * down.weight[j] * alpha;
        sum += weight;
        for (int c = 0; c < 3; ++c) sums[c] += weight * colour_[c].At(column, row);
      }
    if (least == most || sum <= 0) return false;
    for (int c = 0; c < 3; ++c)
      colours[c] = static_cast<unsigned char>(std::clamp(sums[c] / sum + .5, 0.0, 255.0));
    return true;
  }

 private:
  // Frames with alpha have samples of every channel for every pixel.
  static Channel Part(const Frame& frame, const IppiRect& region, int channel) {
    return ChannelOf(frame, channel).Cut(region);
  }
  static bool IsInside(double at, int length) { return at >= -1e-6 && at <= length - 1 + 1e-6; }

  Channel alpha_, colour_[3];
  double left_, top_;
};

// The operations interpolate colours and alpha apart from each other, and what is transparent has a
// colour too. Where alphas differ, this puts the colours that count in the place of theirs.
void WeighByAlpha(const Frame& in, const IppiRect& region, const Projection& projection, int method,
                  const Frame& out) {
  if (in.Info().alphaPlane < 0 || method == InterpolateNearest) return;
  if (IsOfOneValue(ChannelOf(in, 3))) return;
  const AlphaSampler sample(in, region);
  const Projection back = projection.Inverse();
  const Channel alpha = ChannelOf(out, 3);
  const Channel colour[] = {ChannelOf(out, 0), ChannelOf(out, 1), ChannelOf(out, 2)};
  for (int v = 0; v < alpha.rows; ++v)
    for (int u = 0; u < alpha.columns; ++u) {
      if (alpha.At(u, v) == 0) continue;
      double at[3];
      for (int i = 0; i < 3; ++i) at[i] = back.m[i][0] * u + back.m[i][1] * v + back.m[i][2];
      unsigned char colours[3];
      if (!sample(at[0] / at[2], at[1] / at[2], method, colours)) continue;
      for (int c = 0; c < 3; ++c) colour[c].At(u, v) = colours[c];
    }
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
    WeighByAlpha(in, region, projection, method, out);
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
  WeighByAlpha(in, region, projection, method, out);
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
  WeighByAlpha(in, in.Bounds(), turn, options.method, out);
}

}  // namespace qvtool
