// The taps of the separable filter at positions that no image has, areas that end at a sample, and
// halving. What whole images become is ResizeAccuracyTest's.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "kernels/resize/AxisTaps.h"
#include "kernels/resize/Resize.h"
#include "tests/support/Bytes.h"

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

TEST(Resize, HalvesByMeansOfFour) {
  const int height = 5;
  for (const int width : {1, 2, 19, 20, 21, 22, 23, 64, 157}) {
    const Bytes src = Noise(std::size_t(4) * width * height);
    Bytes halved(src.size() / 4);
    EXPECT_EQ(Resize_8u_C1(src.data(), {2 * width, 2 * height}, 2 * width,
                           {0, 0, 2 * width, 2 * height}, halved.data(), width, {width, height},
                           0.5, 0.5, 8),
              StatusOk);
    for (int i = 0; i < width * height; ++i) {
      const unsigned char* const p = &src[i / width * 4 * width + i % width * 2];
      ASSERT_EQ(halved[i], (p[0] + p[1] + p[2 * width] + p[2 * width + 1] + 2) >> 2) << width;
    }
  }
}

}  // namespace
}  // namespace qv::test
