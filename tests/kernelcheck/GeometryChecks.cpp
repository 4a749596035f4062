#include "kernels/geometry/Geometry.h"
#include "tests/kernelcheck/Case.h"
#include "tests/support/RandomMatrix.h"

using namespace qv;
using namespace qv::test;

namespace {

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
  const Image src = c.Source(std::ptrdiff_t{srcSize.width} * channels, srcSize.height,
                             Rows::kDownwards);
  const Image dst = c.Destination(std::ptrdiff_t{size.width} * channels, size.height,
                                  Rows::kDownwards);
  const bool perspective = !c.random.OneIn(3);
  Matrix m = RandomMatrix(c.random, roi, size, perspective, true);
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

void CheckTranspose(Case& c, const TransposeKernel& kernel, int channels) {
  IppiSize size = c.Size();
  if (!c.IsBench() && size.height < 1000 && size.width < 1000)
    size.height += c.random.Between(0, 90);
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
