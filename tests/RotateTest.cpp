// qvRotate: quarter turns as exact permutations, and the road that fractions take.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/Bytes.h"
#include "support/Levels.h"
#include "tests/support/RandomMatrix.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

TEST(Rotate, QuarterTurnsArePermutations) {
  Random random(3);
  for (int n = 0; n < 600; ++n) {
    const int channels = random.Pick(1, 3), quarter = random.Pick(90, 180, 270);
    const IppiSize size = {random.Between(1, 70), random.Between(1, 70)};
    const IppiSize to = {random.Between(1, 90), random.Between(1, 90)};
    const IppiRect from = RandomRegion(random, size, 1, 10);
    const IppiRect region = ClippedTo(to, RandomRegion(random, to));
    const int dx = random.Between(-20, 120), dy = random.Between(-20, 120);
    const int srcStep = size.width * channels + random.Between(0, 5);
    const int dstStep = to.width * channels + random.Between(0, 5);
    const Bytes src = Noise(std::size_t(srcStep) * size.height);
    Bytes expected(std::size_t(dstStep) * to.height, 7);
    bool any = false;
    for (int y = from.y; y < std::min(size.height, from.y + from.height); ++y)
      for (int x = from.x; x < std::min(size.width, from.x + from.width); ++x) {
        const int tx = (quarter == 90 ? y : quarter == 180 ? -x : -y) + dx;
        const int ty = (quarter == 90 ? -x : quarter == 180 ? -y : x) + dy;
        if (tx < region.x || ty < region.y || tx >= region.x + region.width ||
            ty >= region.y + region.height)
          continue;
        any = true;
        for (int c = 0; c < channels; ++c)
          expected[std::size_t(ty) * dstStep + tx * channels + c] =
              src[std::size_t(y) * srcStep + x * channels + c];
      }
    const double angle = quarter + 360.0 * random.Between(-3, 3);
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      Bytes dst(expected.size(), 7);
      ASSERT_EQ(Lib::qvRotate(Type(channels == 1 ? 2 : 4), src.data(), size, srcStep, from,
                              dst.data(), dstStep, region, angle, dx, dy, 7),  // 7 is not looked at
                any ? StatusOk : StatusNoOverlapWarning);
      ASSERT_TRUE(dst == expected) << n << ' ' << level.name;
    }
  }
}

// A quarter turn by half a pixel interpolates: midway between two neighbours.
TEST(Rotate, FractionalQuartersInterpolate) {
  const unsigned char src[] = {0, 100, 200, 10, 110, 210};
  const struct {
    double dx, dy;
    Bytes expected;
  } cases[] = {{.5, 2, {7, 205, 7, 105, 7, 5}}, {0, 2.5, {7, 7, 150, 160, 50, 60}}};
  for (const auto& c : cases) {
    Bytes dst(6, 7);
    ASSERT_EQ(Lib::qvRotate(Type(2), src, {3, 2}, 3, {0, 0, 3, 2}, dst.data(), 2, {0, 0, 2, 3}, 90,
                            c.dx, c.dy, 2),
              StatusOk);
    EXPECT_EQ(dst, c.expected);
  }
}

}  // namespace
}  // namespace qv::test
