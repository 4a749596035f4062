// The taps of the separable filter from any positions and areas against double precision, and
// halving against the filter. What whole images become is ResizeAccuracyTest's.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "kernels/resize/FilterImage.h"
#include "tests/support/Bytes.h"
#include "tests/support/ExactResize.h"

namespace qv::test {
namespace {

// Taps with their memory.
struct Taps {
  std::vector<int> first;
  std::vector<short> weights;
  AxisTaps taps;

  Taps(int count, int tapCount) : first(count), weights(count * tapCount) {
    taps = {count, tapCount, first.data(), weights.data()};
  }
  Taps(const std::vector<double>& positions, int interpolation, int length)
      : Taps(static_cast<int>(positions.size()), TapCount(interpolation, length)) {
    BuildTaps({taps.count, positions.data(), length}, interpolation, &taps);
  }
  explicit Taps(const AxisArea& area) : Taps(area.count, AreaTapCount(area)) {
    BuildAreaTaps(area, &taps);
  }
};

// In order, inside, of sum 16384, and each within a rounding of the exact weight.
void ExpectTaps(const AxisTaps& taps, int length, const std::vector<Sample>& exact) {
  for (int i = 0; i < taps.count; ++i) {
    const int first = taps.first[i];
    ASSERT_GE(first, i ? taps.first[i - 1] : 0);
    ASSERT_LE(first + taps.taps, length);
    std::vector<double> dense(taps.taps);
    for (const auto& [s, w] : exact[i])
      if (s >= first && s < first + taps.taps) dense[s - first] += w;
    int sum = 0;
    for (int t = 0; t < taps.taps; ++t) {
      const int weight = taps.weights[i * taps.taps + t];
      sum += weight;
      ASSERT_NEAR(weight, dense[t] * 16384, 1.02) << "sample " << i << ", tap " << t;
    }
    ASSERT_EQ(sum, 16384);
  }
}

TEST(AxisTaps, AnyPositions) {
  Random random(20261);
  const double inf = std::numeric_limits<double>::infinity();
  for (int run = 0; run < 3000; ++run) {
    const int length = random.OneIn(2) ? random.Between(1, 8) : random.Between(1, 300);
    const int interpolation = random.Pick(4, 16);
    std::vector<double> positions;
    for (int i = random.Between(1, 30); i > 0; --i) {
      double p = random.Between(-8.0, length + 8.0);
      if (random.OneIn(4)) p = std::floor(p);
      if (random.OneIn(8)) p += random.Between(-1e-9, 1e-9);
      if (random.OneIn(16)) p = random.Between(-1e300, 1e300);
      positions.push_back(p);
    }
    if (random.OneIn(8)) positions.insert(positions.end(), {inf, -inf, 1e18, -1e18});
    std::sort(positions.begin(), positions.end());
    if (random.OneIn(8)) positions.insert(positions.begin(), std::nan(""));
    std::vector<Sample> exact;
    for (const double p : positions) exact.push_back(ExactTaps(interpolation, p, length));
    ASSERT_NO_FATAL_FAILURE(
        ExpectTaps(Taps(positions, interpolation, length).taps, length, exact));
  }
}

TEST(AxisTaps, PositionsOfLongAxes) {
  const int length = 2147483647;
  const Taps t({-2147483648.0, 0, 2147483640.25, 2147483646, 1e10}, 16, length);
  for (int i = 0; i < t.taps.count; ++i) {
    EXPECT_GE(t.first[i], i ? t.first[i - 1] : 0);
    EXPECT_LE(t.first[i], length - t.taps.taps);
  }
}

TEST(AxisTaps, Areas) {
  Random random(20262);
  for (int run = 0; run < 2000; ++run) {
    const int length = random.Between(1, 200);
    const double inverse =
        random.OneIn(3) ? random.Between(1, 7) * 0.5 + 0.5 : random.Between(1.0, 6.0);
    const AxisArea area = {std::max(1, int(length / inverse + random.Between(-1, 2))), inverse,
                           length};
    if (AreaTapCount(area) > kMaxTaps) continue;
    std::vector<Sample> exact;
    for (int i = 0; i < area.count; ++i)
      exact.push_back(ExactMean(i * inverse, (i + 1) * inverse, length));
    ASSERT_NO_FATAL_FAILURE(ExpectTaps(Taps(area).taps, length, exact));
  }
  EXPECT_EQ(AreaTapCount({720, 1 / (720 / 1080.0), 1080}), 2);
  EXPECT_EQ(AreaTapCount({540, 1 / (540 / 1080.0), 1080}), 2);
}

TEST(Filter, HalvesAsTapsDo) {
  for (const RowLayout layout : {RowLayout::kGray, RowLayout::kTriples})
    for (const int width : {1, 2, 19, 20, 21, 22, 23, 64, 157}) {
      const int channels = ComponentCount(layout), height = 5;
      const Bytes src = Noise(std::size_t(4) * channels * width * height);
      const Taps x(AxisArea{width, 2, 2 * width}), y(AxisArea{height, 2, 2 * height});
      Bytes filtered(src.size() / 4), halved(filtered);
      Bytes scratch(FilterScratchBytes(layout, {x.taps, {}}, y.taps));
      const auto filter = channels == 1 ? FilterRows_8u_C1 : FilterRows_8u_C3;
      filter(src.data(), 2 * channels * width, {x.taps, {}}, y.taps, filtered.data(),
             channels * width, scratch.data());
      const FilterTask task = {layout, src.data(), 2 * channels * width, halved.data(),
                               channels * width};
      EXPECT_EQ(AverageImage(task, {width, 2, 2 * width}, {}, {height, 2, 2 * height}), StatusOk);
      EXPECT_EQ(halved, filtered) << width;
    }
}

}  // namespace
}  // namespace qv::test
