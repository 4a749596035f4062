// qvRotate: quarter turns as exact permutations, the road each angle takes, statuses.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "kernels/geometry/Geometry.h"
#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Bytes.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

TEST(Rotate, QuarterTurnsArePermutations) {
  Random random(3);
  for (int n = 0; n < 600; ++n) {
    const int channels = random.Pick(1, 3), quarter = random.Pick(90, 180, 270);
    const IppiSize size = {random.Between(1, 70), random.Between(1, 70)};
    const IppiSize to = {random.Between(1, 90), random.Between(1, 90)};
    const IppiRect from = {random.Between(0, size.width - 1), random.Between(0, size.height - 1),
                           random.Between(1, 80), random.Between(1, 80)};
    IppiRect region = {random.Between(0, to.width - 1), random.Between(0, to.height - 1), 0, 0};
    region.width = random.Between(1, to.width - region.x);
    region.height = random.Between(1, to.height - region.y);
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

TEST(Rotate, FourQuartersGiveBackTheFrame) {
  for (const int channels : {1, 3}) {
    const IppiSize size = {641, 363};
    const Bytes start = Noise(std::size_t(channels) * size.width * size.height);
    Bytes frame = start, turned(start.size());
    IppiSize now = size;
    for (int i = 0; i < 4; ++i) {
      const IppiSize next = {now.height, now.width};
      ASSERT_EQ(Lib::qvRotate(Type(channels == 1 ? 2 : 4), frame.data(), now, now.width * channels,
                              {0, 0, now.width, now.height}, turned.data(), next.width * channels,
                              {0, 0, next.width, next.height}, 90, 0, now.width - 1, 1),
                StatusOk);
      std::swap(frame, turned);
      now = next;
      EXPECT_EQ(frame == start, i == 3);
    }
  }
}

TEST(Rotate, ChecksInOrderOnBothRoads) {
  Bytes src(400), dst(400);
  struct Arguments {
    const unsigned char* src;
    IppiSize size;
    int srcStep;
    IppiRect from;
    unsigned char* dst;
    int dstStep;
    IppiRect to;
    int type, method;
  };
  const struct {
    int quarter, general;  // what is expected on either road
    void (*breakIt)(Arguments&);
  } cases[] = {
      {StatusDataTypeErr, StatusDataTypeErr, [](Arguments& a) { a.type = 9; }},
      {StatusNullPtrErr, StatusNullPtrErr, [](Arguments& a) { a.src = nullptr; }},
      {StatusNullPtrErr, StatusNullPtrErr, [](Arguments& a) { a.dst = nullptr; }},
      {StatusSizeErr, StatusSizeErr, [](Arguments& a) { a.size.width = 0; }},
      {StatusSizeErr, StatusSizeErr, [](Arguments& a) { a.from.y = -1; }},
      {StatusSizeErr, StatusSizeErr, [](Arguments& a) { a.to.height = 0; }},
      {StatusStepErr, StatusStepErr, [](Arguments& a) { a.srcStep = 0; }},
      {StatusStepErr, StatusStepErr, [](Arguments& a) { a.dstStep = -20; }},
      {StatusOk, StatusInterpolationErr, [](Arguments& a) { a.method = 7; }},
      {StatusOk, StatusCoeffErr, [](Arguments& a) { a.from.width = 1; }},
      {StatusNoOverlapWarning, StatusRectErr, [](Arguments& a) { a.from.x = 20; }},
      {StatusNoOverlapWarning, StatusNoOverlapWarning, [](Arguments& a) { a.to.x = 90; }},
  };
  const Arguments good = {src.data(), {20, 20}, 20, {0, 0, 20, 20}, dst.data(), 20,
                          {0, 0, 20, 20}, 2, 2};
  const auto run = [](const Arguments& a, double angle) {
    return Lib::qvRotate(Type(a.type), a.src, a.size, a.srcStep, a.from, a.dst, a.dstStep, a.to,
                         angle, 0, 19, a.method);
  };
  for (const auto& c : cases) {
    Arguments a = good;
    c.breakIt(a);
    EXPECT_EQ(run(a, 90), c.quarter) << &c - cases;
    EXPECT_EQ(run(a, 89), c.general) << &c - cases;
    for (const auto* later = &c + 1; later != std::end(cases); ++later) {
      Arguments both = a;
      later->breakIt(both);
      if (c.quarter < 0) { EXPECT_EQ(run(both, 270), c.quarter); }
      if (c.general < 0) { EXPECT_EQ(run(both, 1), c.general); }
    }
  }
  const double nan = std::nan("");
  EXPECT_EQ(run(good, nan), StatusCoeffErr);
  EXPECT_EQ(run(good, HUGE_VAL), StatusCoeffErr);
  EXPECT_EQ(Lib::qvRotate(Type(2), src.data(), {20, 20}, 20, {0, 0, 20, 20}, dst.data(), 20,
                          {0, 0, 20, 20}, 180, 1e300, -HUGE_VAL, 1),
            StatusNoOverlapWarning);
}

// A quarter turn by half a pixel interpolates: midway between two neighbours.
TEST(Rotate, FractionalQuartersInterpolate) {
  const unsigned char src[] = {0, 100, 200, 10, 110, 210};
  unsigned char dst[6] = {7, 7, 7, 7, 7, 7};
  ASSERT_EQ(
      Lib::qvRotate(Type(2), src, {3, 2}, 3, {0, 0, 3, 2}, dst, 2, {0, 0, 2, 3}, 90, .5, 2, 2),
      StatusOk);
  const unsigned char expected[] = {7, 205, 7, 105, 7, 5};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(dst[i], expected[i]) << i;
}

}  // namespace
}  // namespace qv::test
