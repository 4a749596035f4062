// The taps of the separable filter at positions that no image has, and areas that end at a sample.
// What whole images become is ResizeAccuracyTest's.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "kernels/resize/AxisTaps.h"
#include "support/Random.h"

namespace qv::test {
namespace {

// In order, inside the axis, and of sum 16384.
TEST(AxisTaps, AreSoundAtAnyPositions) {
  Random random(20261);
  const double inf = std::numeric_limits<double>::infinity();
  for (int run = 0; run < 3000; ++run) {
    const int length = random.OneIn(2) ? random.Between(1, 8)
                       : random.OneIn(8) ? std::numeric_limits<int>::max() - random.Between(0, 9)
                                         : random.Between(1, 300);
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

    const int interpolation = random.Pick(4, 16), count = static_cast<int>(positions.size());
    const int taps = TapCount(interpolation, length);
    std::vector<int> first(count);
    std::vector<short> weights(count * taps);
    AxisTaps axis = {count, taps, first.data(), weights.data()};
    BuildTaps({count, positions.data(), length}, interpolation, &axis);
    for (int i = 0; i < count; ++i) {
      ASSERT_GE(first[i], i ? first[i - 1] : 0);
      ASSERT_LE(first[i], length - taps);
      int sum = 0;
      for (int t = 0; t < taps; ++t) sum += weights[i * taps + t];
      ASSERT_EQ(sum, 16384);
    }
  }
}

TEST(AxisTaps, AreasThatEndAtASampleEndThere) {
  EXPECT_EQ(AreaTapCount({720, 1 / (720 / 1080.0), 1080}), 2);
  EXPECT_EQ(AreaTapCount({540, 1 / (540 / 1080.0), 1080}), 2);
}

}  // namespace
}  // namespace qv::test
