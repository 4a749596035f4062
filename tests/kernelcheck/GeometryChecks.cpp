#include <cmath>

#include "kernels/geometry/Geometry.h"
#include "kernels/geometry/Transform.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

namespace {

struct Matrix {
  double c[3][3];
};

// Mostly a quadrilateral or a rotation that covers much of the destination; now and then something
// steep, tiny or far off.
Matrix RandomMatrix(Random& random, IppiRect roi, IppiSize dst, bool perspective) {
  Matrix m = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  const double width = dst.width, height = dst.height;
  if (!perspective) {
    double r[2][3];
    const double scale = random.OneIn(2) ? 1 : std::exp(random.Between(-4.0, 4.0));
    RotationCoefficients(random.OneIn(4) ? 0 : random.Between(0.0, 360.0),
                         random.Between(0.0, 1.0) * width, random.Between(0.0, 1.0) * height, r);
    for (int i = 0; i < 2; ++i)
      for (int k = 0; k < 3; ++k) m.c[i][k] = k < 2 ? r[i][k] * scale : r[i][k];
    return m;
  }
  const double spread = random.OneIn(4) ? 3 : 1.2, bend = random.OneIn(4) ? .49 : .25;
  double quad[4][2];
  do {
    const double x0 = random.Between(-.2, .5) * width, y0 = random.Between(-.2, .5) * height;
    const double w = random.Between(.1, spread) * width + 2;
    const double h = random.Between(.1, spread) * height + 2;
    for (int i = 0; i < 4; ++i) {
      quad[i][0] = x0 + (i == 1 || i == 2 ? w : 0) + random.Between(-bend, bend) * w;
      quad[i][1] = y0 + (i < 2 ? 0 : h) + random.Between(-bend, bend) * h;
    }
  } while (GetPerspectiveTransform_64f(roi, quad, m.c) != StatusOk);
  return m;
}

void CheckWarp(Case& c, int channels) {
  IppiSize size = c.Size();
  IppiSize srcSize = size;
  if (!c.IsBench() && size.height < 1000 && size.width < 1000) {
    size.height += c.random.Between(0, 30);
    srcSize = {c.random.Between(2, 130), c.random.Between(2, 60)};
  }
  IppiRect roi = {0, 0, srcSize.width < 2 ? 2 : srcSize.width,
                  srcSize.height < 2 ? 2 : srcSize.height};
  if (!c.IsBench() && c.random.OneIn(3)) {
    roi.x = c.random.Between(0, srcSize.width - 1);
    roi.y = c.random.Between(0, srcSize.height - 1);
  }
  const Image src = c.Source(std::ptrdiff_t{srcSize.width} * channels, srcSize.height, true);
  const Image dst = c.Destination(std::ptrdiff_t{size.width} * channels, size.height, true);
  const bool perspective = !c.random.OneIn(3);
  Matrix m = RandomMatrix(c.random, roi, size, perspective);
  if (c.IsBench()) {  // a trapezium that fills most of the frame
    const double w = size.width, h = size.height;
    const double quad[4][2] = {{.1 * w, .02 * h}, {.95 * w, .05 * h}, {w, .97 * h}, {0, .9 * h}};
    GetPerspectiveTransform_64f(roi, quad, m.c);
  }
  IppiRect to = {0, 0, size.width, size.height};
  if (!c.IsBench() && c.random.OneIn(3)) {
    to.x = c.random.Between(0, size.width - 1);
    to.width = c.random.Between(1, size.width - to.x);
  }
  const int method = c.IsBench() ? 2 : c.random.Pick(1, 2, 4);
  c.Compare([=] {
    const auto kernel = channels == 3 ? WarpPerspective_8u_C3 : WarpPerspective_8u_C1;
    return kernel(src.data, srcSize, src.step, roi, dst.data, dst.step, to, m.c, method);
  });
}

void CheckTranspose(Case& c, decltype(Transpose_8u_C1)* kernel, int channels) {
  IppiSize size = c.Size();
  if (!c.IsBench() && size.height < 1000) size.height += c.random.Between(0, 90);
  const Image src = c.Source(std::ptrdiff_t{size.height} * channels, size.width);
  const Image dst = c.Destination(std::ptrdiff_t{size.width} * channels, size.height);
  c.Compare([=] {
    kernel(src.data, src.step, dst.data, dst.step, size);
    return 0;
  });
}

}  // namespace

QV_CHECK(WarpRow_8u_C1) { CheckWarp(c, 1); }
QV_CHECK(WarpRow_8u_C3) { CheckWarp(c, 3); }
QV_CHECK(Transpose_8u_C1) { CheckTranspose(c, Transpose_8u_C1, 1); }
QV_CHECK(Transpose_8u_C3) { CheckTranspose(c, Transpose_8u_C3, 3); }
