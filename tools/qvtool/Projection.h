// Rotations and projections of whole frames.
#ifndef QV_TOOLS_QVTOOL_PROJECTION_H
#define QV_TOOLS_QVTOOL_PROJECTION_H

#include <optional>
#include <vector>

#include "Command.h"
#include "FillFrame.h"

namespace qvtool {

// What sub-commands that move pixels have in common: --method and --background.
struct ProjectionOptions {
  IppiInterpolation method = InterpolateCubic;
  Colour background = Colour::Parse("--background", "#000000");
  bool isOpaque = false;  // a background was asked for
};
void AddProjectionOptions(CLI::App& app, ProjectionOptions& options);

// A map of pixel positions, (x, y) to (x', y') with
//   x' = (m00 x + m01 y + m02) / (m20 x + m21 y + m22), y' likewise with m10, m11, m12.
struct Projection {
  double m[3][3];

  Projection Inverse() const;
  // The same map between the grids of planes of this shape. A sample of a subsampled plane sits in
  // the middle of the pixels that it serves.
  Projection Between(const PlaneShape& shape) const;
};

// The projection that carries a frame of this size onto a quadrilateral: P0, P1, P2, P3 as x, y are
// the places of its top-left, top-right, bottom-right and bottom-left pixels.
Projection OntoQuad(IppiSize size, const std::vector<double>& quad);

// Gives `out` this size and the layout of `in`, and its pixels the background; alpha is 0 unless
// a background was asked for.
void PrepareCanvas(const ProjectionOptions& options, const Frame& in, IppiSize size, Frame& out);

// Moves the pixels of a region of `in` onto the canvas.
void Project(const ProjectionOptions& options, const Frame& in, const IppiRect& region,
             const Projection& projection, Frame& out);

// Turns `in` by `angle` degrees, counter-clockwise, about its middle, which goes to the middle of a
// canvas of its own size or (fit) of a size that holds all of it.
void Rotate(const ProjectionOptions& options, const Frame& in, double angle, bool fit, Frame& out);

}  // namespace qvtool

#endif
