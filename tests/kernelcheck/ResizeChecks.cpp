#include <algorithm>
#include <cmath>
#include <vector>

#include "kernels/resize/Resize.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

namespace {

// A factor: mostly between 1/20 and 20, often a ratio of small numbers.
double RandomFactor(Case& c) {
  if (c.random.OneIn(3)) return c.random.Between(1, 6) / double(c.random.Between(1, 6));
  return std::exp(c.random.Between(-3.0, 3.0));
}

// A source image, a region of it between guard pages, and a destination of about the scaled size.
struct ResizeCase {
  IppiSize srcSize;
  IppiRect roi;
  double xFactor, yFactor;
  IppiSize dstSize;
};

ResizeCase PlanCase(Case& c, bool reduction = false) {
  ResizeCase r;
  if (c.IsBench()) {  // the size asked for is the destination's
    r.dstSize = c.Size();
    r.xFactor = r.yFactor = reduction ? 2.0 / 3 : 1.5;
    r.srcSize = {int(r.dstSize.width / r.xFactor + .5), int(r.dstSize.height / r.yFactor + .5)};
    r.roi = {0, 0, r.srcSize.width, r.srcSize.height};
    return r;
  }
  r.dstSize = c.Size();
  r.xFactor = RandomFactor(c);
  r.yFactor = RandomFactor(c);
  if (reduction) {
    r.xFactor = std::min(r.xFactor, 1 / r.xFactor);
    r.yFactor = std::min(r.yFactor, 1 / r.yFactor);
  }
  const auto source = [&](int size, double factor) {
    return std::clamp(int(size / factor + c.random.Between(-1.0, 1.0)), 1, 40000);
  };
  r.roi = {0, 0, source(r.dstSize.width, r.xFactor), source(r.dstSize.height, r.yFactor)};
  if (double(r.roi.width) * r.roi.height > 4e6) r.roi.height = 1 + int(4e6 / r.roi.width);
  r.srcSize = {r.roi.width, r.roi.height};
  if (c.random.OneIn(3)) {
    r.roi.x = c.random.Between(0, 40);
    r.roi.y = c.random.Between(0, 5);
    r.srcSize.width += r.roi.x + c.random.Between(-3, 40);
    r.srcSize.height += r.roi.y + c.random.Between(-1, 5);
    r.srcSize = {std::max(r.srcSize.width, r.roi.x + 1), std::max(r.srcSize.height, r.roi.y + 1)};
  }
  return r;
}

// Whole image or, as often, the band kernel.
void CheckResize(Case& c, int channels, int interpolation) {
  const ResizeCase r = PlanCase(c, interpolation == InterpolateArea);
  // Only the region is readable: what lies around it in the image must not be touched.
  const int width = std::min(r.roi.width, r.srcSize.width - r.roi.x);
  const int height = std::min(r.roi.height, r.srcSize.height - r.roi.y);
  const Image region = c.Source(std::ptrdiff_t{width} * channels, height);
  const unsigned char* const src =
      region.data - r.roi.y * std::ptrdiff_t{region.step} - std::ptrdiff_t{r.roi.x} * channels;
  const Image dst = c.Destination(std::ptrdiff_t{r.dstSize.width} * channels, r.dstSize.height);
  if (c.IsBench() || c.random.OneIn(2)) {
    const auto kernel = channels == 1 ? Resize_8u_C1 : Resize_8u_C3;
    c.Compare([=] {
      return kernel(src, r.srcSize, region.step, r.roi, dst.data, dst.step, r.dstSize, r.xFactor,
                    r.yFactor, interpolation);
    });
    return;
  }
  const auto kernel = channels == 1 ? ResizeBand_8u_C1 : ResizeBand_8u_C3;
  int bytes = 0;
  ResizeBandBufferSize(r.dstSize, channels, interpolation, &bytes);
  std::vector<unsigned char> buffer(std::size_t(bytes) + 1);
  const double xShift = c.random.OneIn(3) ? c.random.Between(-9.0, 9.0) : 0;
  const double yShift = c.random.OneIn(3) ? c.random.Between(-2.0, 2.0) : 0;
  c.Compare([=, &buffer] {
    return kernel(src, r.srcSize, region.step, r.roi, dst.data, dst.step,
                  {0, 0, r.dstSize.width, r.dstSize.height}, r.xFactor, r.yFactor, xShift, yShift,
                  interpolation, buffer.data());
  });
}

void CheckResize422(Case& c, int interpolation) {
  ResizeCase r = PlanCase(c, interpolation == InterpolateArea);
  r.dstSize.width += r.dstSize.width % 2;
  r.roi.width += r.roi.width % 2;
  r.srcSize.width += r.srcSize.width % 2;
  r.roi.x -= r.roi.x % 2;
  const int width = std::min(r.roi.width, r.srcSize.width - r.roi.x);
  const int height = std::min(r.roi.height, r.srcSize.height - r.roi.y);
  const Image region = c.Source(std::ptrdiff_t{width} * 2, height);
  const unsigned char* const src =
      region.data - r.roi.y * std::ptrdiff_t{region.step} - std::ptrdiff_t{r.roi.x} * 4;
  const Image dst = c.Destination(std::ptrdiff_t{r.dstSize.width} * 2, r.dstSize.height);
  c.Compare([=] {
    return ResizeYUV422_8u_C2(src, r.srcSize, region.step, r.roi, dst.data, dst.step, r.dstSize,
                              r.xFactor, r.yFactor, interpolation);
  });
}

}  // namespace

// One or three channels or packed 4:2:2.
static void CheckAnyLayout(Case& c, int interpolation) {
  const int channels = c.IsBench() ? 3 : c.random.Between(1, 3);
  if (channels == 2)
    CheckResize422(c, interpolation);
  else
    CheckResize(c, channels, interpolation);
}

QV_CHECK(NearestRows_8u) { CheckAnyLayout(c, InterpolateNearest); }
QV_CHECK(LinearRows_8u) { CheckAnyLayout(c, InterpolateLinear); }
