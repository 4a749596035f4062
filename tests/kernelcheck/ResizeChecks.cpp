#include <algorithm>
#include <cstdint>
#include <vector>

#include "kernels/resize/Positions.h"
#include "kernels/resize/Resize.h"
#include "kernels/resize/ResizeRows.h"
#include "tests/kernelcheck/Case.h"
#include "tests/support/ResizeCases.h"

using namespace qv;
using namespace qv::test;

namespace {

// Means over more than eight samples of an axis at least are of spans.
double Strongly(Random& random) { return 1 / random.Between(7.0, 25.0); }

double Half(Random&) { return 0.5; }

struct Scaling {
  double (*factor)(Random& random);
  double atBench;
};

constexpr Scaling kAny = {RandomFactor, 1.5}, kReducing = {RandomReduction, 2.0 / 3},
                  kStrongly = {Strongly, 0.1}, kHalf = {Half, 0.5};

// A source image, a region of it between guard pages, and a destination of about the scaled size.
ResizeCase PlanCase(Case& c, Scaling scaling) {
  IppiSize dst = c.Size();
  if (c.IsBench()) {  // the size asked for is the destination's
    const double factor = scaling.atBench;
    const IppiSize src = {int(dst.width / factor + .5), int(dst.height / factor + .5)};
    return {src, {0, 0, src.width, src.height}, factor, factor, dst};
  }
  // Rows of several strips.
  if (c.random.OneIn(50)) dst = {c.random.Between(400, 4000), c.random.Between(1, 6)};
  const double xFactor = scaling.factor(c.random), yFactor = scaling.factor(c.random);
  return RandomResize(c.random, dst, xFactor, yFactor);
}

// Only the region is readable: what lies around it in the image must not be touched. The image's
// first byte is `pixelBytes` a column before it.
Image MakeSource(Case& c, const ResizeCase& r, int rowBytes, int pixelBytes) {
  Image region = c.Source(rowBytes, r.Clipped().height);
  region.data -= r.roi.y * std::ptrdiff_t{region.step} + std::ptrdiff_t{r.roi.x} * pixelBytes;
  return region;
}

// Whole image or, as often, the band kernel.
void CheckResize(Case& c, int channels, int interpolation, Scaling scaling) {
  const ResizeCase r = PlanCase(c, scaling);
  const int width = r.Clipped().width;
  const Image src = MakeSource(c, r, width * channels, channels);
  const Image dst = c.Destination(std::ptrdiff_t{r.dstSize.width} * channels, r.dstSize.height);
  if (c.IsBench() || c.random.OneIn(2)) {
    const auto kernel = channels == 1 ? Resize_8u_C1 : Resize_8u_C3;
    c.Compare([=] {
      return kernel(src.data, r.srcSize, src.step, r.roi, dst.data, dst.step, r.dstSize, r.xFactor,
                    r.yFactor, interpolation);
    });
    return;
  }
  const auto kernel = channels == 1 ? ResizeBand_8u_C1 : ResizeBand_8u_C3;
  int bytes = 0;
  ResizeBandBufferSize(r.dstSize, channels, interpolation, &bytes);
  std::vector<unsigned char> buffer(std::size_t(bytes) + 1);
  unsigned char fill = 0;
  const double xShift = c.random.OneIn(3) ? c.random.Between(-9.0, 9.0) : 0;
  const double yShift = c.random.OneIn(3) ? c.random.Between(-2.0, 2.0) : 0;
  c.Compare([=, &buffer, &fill] {
    std::fill(buffer.begin(), buffer.end(), fill += 77);  // nothing may depend on what was there
    return kernel(src.data, r.srcSize, src.step, r.roi, dst.data, dst.step,
                  {0, 0, r.dstSize.width, r.dstSize.height}, r.xFactor, r.yFactor, xShift, yShift,
                  interpolation, buffer.data());
  });
}

void CheckResize422(Case& c, int interpolation, Scaling scaling) {
  ResizeCase r = PlanCase(c, scaling);
  r.dstSize.width += r.dstSize.width % 2;
  r.roi.width += r.roi.width % 2;
  r.srcSize.width += r.srcSize.width % 2;
  r.roi.x -= r.roi.x % 2;
  const int width = r.Clipped().width;
  const Image src = MakeSource(c, r, width * 2, 4);
  const Image dst = c.Destination(std::ptrdiff_t{r.dstSize.width} * 2, r.dstSize.height);
  c.Compare([=] {
    return ResizeYUV422_8u_C2(src.data, r.srcSize, src.step, r.roi, dst.data, dst.step, r.dstSize,
                              r.xFactor, r.yFactor, interpolation);
  });
}

// Pixels of four bytes, which no operation resizes: all channels, or three and a byte that stays.
void CheckLinearRowsOfFourBytes(Case& c) {
  const ResizeCase r = PlanCase(c, kAny);
  const IppiSize from = {r.roi.width, r.roi.height}, to = r.dstSize;
  std::vector<int> x(std::size_t(to.width)), y(std::size_t(to.height));
  std::vector<unsigned short> xWeight(x.size()), yWeight(y.size());
  AlignedTaps({from.width, r.xFactor}, to.width, x.data(), xWeight.data());
  AlignedTaps({from.height, r.yFactor}, to.height, y.data(), yWeight.data());
  const int channels = c.random.Pick(3, 4);
  const LinearTables tables = {to.width,
                               to.height,
                               from.width,
                               channels == 3 ? Layout::kTriplesOfQuads : Layout::kQuads,
                               {from.width > 1, x.data(), xWeight.data()},
                               {from.height > 1, y.data(), yWeight.data()},
                               {}};
  const Image src = c.Source(std::ptrdiff_t{from.width} * 4, from.height);
  const Image dst = c.Destination(std::ptrdiff_t{to.width} * 4 - (channels == 3), to.height);
  const auto bytes = std::size_t(RowsWorkBytes(std::uint64_t(to.width) * 4));
  std::vector<unsigned char> memory(bytes + 64);
  unsigned char* const aligned =
      memory.data() + (64 - reinterpret_cast<std::uintptr_t>(memory.data()) % 64);
  unsigned char fill = 0;
  c.Compare([&] {
    std::fill(memory.begin(), memory.end(), fill += 77);
    ResizeLinearRows_8u(src.data, src.step, dst.data, dst.step, &tables, aligned);
    return 0;
  });
}

// One or three channels or packed 4:2:2.
void CheckAnyLayout(Case& c, int interpolation) {
  const int channels = c.IsBench() ? 3 : c.random.Between(1, 3);
  if (channels == 2) CheckResize422(c, interpolation, kAny);
  else CheckResize(c, channels, interpolation, kAny);
}

// Cubic, Lanczos, or means over few samples, which are taps as well.
void CheckFilter(Case& c, int channels) {
  const int method = c.IsBench() ? 4 : c.random.Pick(4, 8, 16);
  CheckResize(c, channels, method, method == 8 ? kReducing : kAny);
}

}  // namespace

QV_CHECK(NearestRows_8u) { CheckAnyLayout(c, InterpolateNearest); }
QV_CHECK(ResizeLinearRows_8u) {
  if (c.IsBench() || !c.random.OneIn(4)) CheckAnyLayout(c, InterpolateLinear);
  else CheckLinearRowsOfFourBytes(c);
}
QV_CHECK(HalveRows_8u_C1) { CheckResize(c, 1, InterpolateArea, kHalf); }
QV_CHECK(HalveRows_8u_C3) { CheckResize(c, 3, InterpolateArea, kHalf); }
QV_CHECK(FilterRows_8u_C1) { CheckFilter(c, 1); }
QV_CHECK(FilterRows_8u_C3) { CheckFilter(c, 3); }
QV_CHECK(FilterRows422_8u_C2) {
  const bool mean = !c.IsBench() && c.random.OneIn(3);
  CheckResize422(c, mean ? InterpolateArea : InterpolateCubic, mean ? kReducing : kAny);
}
QV_CHECK(AreaRows_8u_C1) { CheckResize(c, 1, InterpolateArea, kStrongly); }
QV_CHECK(AreaRows_8u_C3) { CheckResize(c, 3, InterpolateArea, kStrongly); }
QV_CHECK(AreaRows422_8u_C2) { CheckResize422(c, InterpolateArea, kStrongly); }
