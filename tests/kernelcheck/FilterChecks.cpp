#include <algorithm>
#include <cmath>
#include <vector>

#include "kernels/resize/Filter.h"
#include "tests/kernelcheck/Case.h"

using namespace qv;
using namespace qv::test;

namespace {

// Taps with their memory.
struct Taps {
  std::vector<int> first;
  std::vector<short> weights;
  AxisTaps taps;

  void Place(int count, int tapCount) {
    first.resize(static_cast<std::size_t>(count));
    weights.resize(static_cast<std::size_t>(count) * static_cast<std::size_t>(tapCount));
    taps = {count, tapCount, first.data(), weights.data()};
  }
};

int Bytes(RowLayout layout, int pixels) {
  return pixels * (layout == RowLayout::kGray ? 1 : layout == RowLayout::kTriples ? 3 : 2);
}

// A factor from 1/20 to 20, often one that many scale by.
double Factor(Case& c) {
  if (c.random.OneIn(3)) return c.random.Between(1, 6) / double(c.random.Between(1, 6));
  return std::exp2(c.random.Between(-4.3, 4.3));
}

// Corner-aligned, centred, or beginning anywhere.
enum class Start { kAligned, kCentred, kAnywhere };

Start RandomStart(Case& c) {
  return c.IsBench() ? Start::kAligned : static_cast<Start>(c.random.Between(0, 2));
}

Taps RandomTaps(Case& c, int count, int length, double factor, int interpolation, Start from) {
  Taps t;
  if (interpolation == 8) {
    const AxisArea area = {count, std::max(1.0, 1 / factor), length};
    if (AreaTapCount(area) <= kMaxTaps) {
      t.Place(count, AreaTapCount(area));
      BuildAreaTaps(area, &t.taps);
      return t;
    }
    interpolation = 4;
  }
  double step = 1 / factor, start = 0;
  if (from == Start::kCentred) start = 0.5 * step - 0.5;
  else if (from == Start::kAnywhere) start = c.random.Between(-8.0, length + 2.0);
  else if (count > 1) step = (length - 1.0) / (count - 1);
  std::vector<double> positions(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) positions[static_cast<std::size_t>(i)] = start + i * step;
  t.Place(count, TapCount(interpolation, length));
  BuildTaps({count, positions.data(), length}, interpolation, &t.taps);
  return t;
}

using FilterKernel = decltype(FilterRows_8u_C1);
using AreaKernel = decltype(AreaRows_8u_C1);

struct Shape {
  IppiSize src, dst;
  double xFactor, yFactor;
};

Shape RandomShape(Case& c, bool pairs) {
  Shape s;
  s.xFactor = c.IsBench() ? 1.5 : Factor(c);
  s.yFactor = c.IsBench() ? 1.5 : Factor(c);
  s.dst = c.Size(pairs ? 2 : 1);
  // Rows of several strips.
  if (!c.IsBench() && c.random.OneIn(50))
    s.dst = {c.random.Between(400, 4000), c.random.Between(1, 6)};
  const double width = s.dst.width / s.xFactor, height = s.dst.height / s.yFactor;
  s.src = {static_cast<int>(std::clamp(width, 1.0, 20000.0)),
           static_cast<int>(std::clamp(height, 1.0, 2000.0))};
  s.dst.height = std::min(s.dst.height, 2000);
  s.dst.width = std::min(s.dst.width, 20000);
  if (pairs) {
    s.dst.width = s.dst.width / 2 * 2;
    s.src.width = (s.src.width + 1) / 2 * 2;
  }
  return s;
}

void CheckFilter(Case& c, FilterKernel* kernel, RowLayout layout) {
  const bool pairs = layout == RowLayout::kPairs422;
  Shape s = RandomShape(c, pairs);
  const int method = c.IsBench() ? 4 : c.random.Pick(4, 8, 16);
  // Luma and chroma of the same place are near each other, mostly.
  const Start start = RandomStart(c);
  const Taps x = RandomTaps(c, s.dst.width, s.src.width, s.xFactor, method, start);
  Taps chroma = x;
  if (pairs)
    chroma = RandomTaps(c, s.dst.width / 2, s.src.width / 2, s.xFactor, method, start);
  const Taps y = RandomTaps(c, s.dst.height, s.src.height, s.yFactor, method, RandomStart(c));
  const FilterColumns columns = {x.taps, chroma.taps};
  const Image src = c.Source(Bytes(layout, s.src.width), s.src.height);
  const Image dst = c.Destination(Bytes(layout, s.dst.width), s.dst.height);
  std::vector<unsigned char> scratch(
      static_cast<std::size_t>(FilterScratchBytes(layout, columns, y.taps)));
  unsigned char fill = 0;
  c.Compare([&] {
    std::fill(scratch.begin(), scratch.end(), fill += 77);  // nothing may depend on what was there
    return kernel(src.data, src.step, columns, y.taps, dst.data, dst.step, scratch.data());
  });
}

void CheckArea(Case& c, AreaKernel* kernel, RowLayout layout) {
  const bool pairs = layout == RowLayout::kPairs422;
  const Shape s = RandomShape(c, pairs);
  const double xInverse = std::max(1.0, 1 / s.xFactor), yInverse = std::max(1.0, 1 / s.yFactor);
  std::vector<AreaSpan> memory[3];
  AxisSpans spans[3];
  const AxisArea area[] = {{s.dst.width, xInverse, s.src.width},
                           {std::max(1, s.dst.width / 2), xInverse, std::max(1, s.src.width / 2)},
                           {s.dst.height, yInverse, s.src.height}};
  for (int a = 0; a < 3; ++a) {
    memory[a].resize(static_cast<std::size_t>(area[a].count));
    spans[a] = {area[a].count, 0, memory[a].data()};
    BuildSpans(area[a], &spans[a]);
  }
  const AreaColumns columns = {spans[0], spans[1]};
  const Image src = c.Source(Bytes(layout, s.src.width), s.src.height);
  const Image dst = c.Destination(Bytes(layout, s.dst.width), s.dst.height);
  std::vector<unsigned char> scratch(
      static_cast<std::size_t>(AreaScratchBytes(layout, columns, spans[2])));
  unsigned char fill = 0;
  c.Compare([&] {
    std::fill(scratch.begin(), scratch.end(), fill += 77);
    return kernel(src.data, src.step, columns, spans[2], dst.data, dst.step, scratch.data());
  });
}

void CheckHalve(Case& c, decltype(HalveRows_8u_C1)* kernel, int channels) {
  const IppiSize size = c.Size();
  const Image src = c.Source(std::ptrdiff_t{2} * channels * size.width, 2 * size.height);
  const Image dst = c.Destination(std::ptrdiff_t{channels} * size.width, size.height);
  c.Compare([=] { return kernel(src.data, src.step, dst.data, dst.step, size); });
}

}  // namespace

QV_CHECK(HalveRows_8u_C1) { CheckHalve(c, HalveRows_8u_C1, 1); }
QV_CHECK(HalveRows_8u_C3) { CheckHalve(c, HalveRows_8u_C3, 3); }
QV_CHECK(FilterRows_8u_C1) { CheckFilter(c, FilterRows_8u_C1, RowLayout::kGray); }
QV_CHECK(FilterRows_8u_C3) { CheckFilter(c, FilterRows_8u_C3, RowLayout::kTriples); }
QV_CHECK(FilterRows422_8u_C2) { CheckFilter(c, FilterRows422_8u_C2, RowLayout::kPairs422); }
QV_CHECK(AreaRows_8u_C1) { CheckArea(c, AreaRows_8u_C1, RowLayout::kGray); }
QV_CHECK(AreaRows_8u_C3) { CheckArea(c, AreaRows_8u_C3, RowLayout::kTriples); }
QV_CHECK(AreaRows422_8u_C2) { CheckArea(c, AreaRows422_8u_C2, RowLayout::kPairs422); }
