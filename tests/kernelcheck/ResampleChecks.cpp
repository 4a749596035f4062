#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "kernels/resample/Resample.h"
#include "kernels/resize/Resize.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

namespace {

constexpr int kFilters[] = {InterpolateNearest, InterpolateLinear,  InterpolateCubic,
                            InterpolateArea,    InterpolateLanczos, kMitchell};

// Source samples per destination sample, at most and at least.
struct Ratio {
  double least, most, atBench;
};

constexpr Ratio kAny = {0.1, 6, 2.0 / 3}, kReducing = {3, 20, 4};

// A planned call with its scratch memory, which holds anything.
void CheckResampling(Case& c, int pixels, int filter, Ratio ratio) {
  Random& random = c.random;
  IppiSize to = c.Size();
  if (!c.IsBench() && random.OneIn(50)) to = {random.Between(300, 2000), random.Between(1, 5)};
  const auto source = [&](int length) {
    const double r = c.IsBench() ? ratio.atBench
                                 : std::exp(random.Between(std::log(ratio.least),
                                                           std::log(ratio.most)));
    return std::clamp(int(length * r + 0.5), 1, 20000);
  };
  const IppiSize from = {source(to.width), source(to.height)};
  ResampleOptions o = {};
  o.pixels = pixels;
  o.filter = filter;
  if (!c.IsBench()) {
    o.position = random.Between(0, 1);
    o.narrow = random.OneIn(4);
    if (random.OneIn(3)) {
      o.x = random.Between(0.0, from.width * 0.5);
      o.y = random.Between(0.0, from.height * 0.5);
      o.width = random.Between(1.0, from.width + 1.0);
      o.height = random.Between(1.0, from.height + 1.0);
    }
    if (random.OneIn(3)) o.srcPhaseX = o.dstPhaseY = random.Between(-1.0, 1.0);
  }
  const int channels = std::min(pixels + 1, 4);
  const Image src = c.Source(std::ptrdiff_t{from.width} * channels, from.height);
  const Image dst = c.Destination(std::ptrdiff_t{to.width} * channels, to.height);
  Resampling plan;
  if (plan.Plan({src.data, from, src.step, dst.data, to, dst.step}, &o) != StatusOk) return;
  std::vector<unsigned char> scratch(plan.ScratchBytes() + 64);
  unsigned char* const aligned =
      scratch.data() + (64 - reinterpret_cast<std::uintptr_t>(scratch.data()) % 64);
  unsigned char fill = 0;
  c.Compare([&] {
    if (!c.IsBench()) std::fill(scratch.begin(), scratch.end(), fill += 77);
    plan.Run(0, to.height, aligned);
    return 0;
  });
}

int AnyFilter(Case& c) { return c.IsBench() ? 4 : kFilters[c.random.Between(0, 5)]; }

}  // namespace

QV_CHECK(FilterRows_8u_C2) { CheckResampling(c, 1, AnyFilter(c), kAny); }
QV_CHECK(FilterRows_8u_C4) { CheckResampling(c, c.random.Between(3, 4), AnyFilter(c), kAny); }
QV_CHECK(LongRows_8u) {
  const int filter = c.IsBench() ? 16 : kFilters[c.random.Between(1, 5)];
  CheckResampling(c, c.IsBench() ? 2 : c.random.Between(0, 4), filter, kReducing);
}
QV_CHECK(WeightedRows_8u_C4) { CheckResampling(c, 5, AnyFilter(c), kAny); }
QV_CHECK(LimitToAlpha_8u_C4) {
  const IppiSize size = c.Size();
  const Image image = c.Destination(std::ptrdiff_t{size.width} * 4, size.height);
  c.Compare([=] { return LimitToAlpha_8u_C4(image.data, image.step, size); });
}
QV_CHECK(IsOpaque_8u_C4) {
  const IppiSize size = {c.Size().width, 1};
  const Image row = c.Destination(std::ptrdiff_t{size.width} * 4, 1);
  const bool opaque = c.random.OneIn(2);
  c.Compare([=] {
    for (int j = 0; opaque && j < size.width; ++j) row.data[4 * j + 3] = 255;
    return int(IsOpaque_8u_C4(row.data, size.width));
  });
}
