// qvWarpPerspective, qvWarpPerspectiveEx and qvRotate: statuses and their order, exact copies,
// bands, and arguments at their extremes.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "kernels/geometry/Geometry.h"
#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Bytes.h"
#include "tests/support/Guarded.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

struct Matrix {
  double c[3][3];
};
constexpr Matrix kIdentity = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

TEST(Warp, ChecksInOrder) {
  Bytes image(64 * 64), out(64 * 64);
  struct Arguments {
    const unsigned char* src;
    IppiSize srcSize;
    int srcStep;
    IppiRect srcRoi;
    unsigned char* dst;
    int dstStep;
    IppiRect dstRoi;
    Matrix m;
    int method;
  };
  const Arguments good = {image.data(), {20, 10}, 64, {0, 0, 20, 10}, out.data(), 64,
                          {0, 0, 30, 30}, kIdentity, 2};
  // Each change breaks one check; broken together, the earlier one in this list must be reported.
  const struct {
    int expected;
    void (*breakIt)(Arguments&);
  } cases[] = {
      {StatusNullPtrErr, [](Arguments& a) { a.src = nullptr; }},
      {StatusNullPtrErr, [](Arguments& a) { a.dst = nullptr; }},
      {StatusSizeErr, [](Arguments& a) { a.srcSize.width = 0; }},
      {StatusSizeErr, [](Arguments& a) { a.srcSize.height = -1; }},
      {StatusSizeErr, [](Arguments& a) { a.srcRoi.x = -1; }},
      {StatusSizeErr, [](Arguments& a) { a.srcRoi.y = -1; }},
      {StatusSizeErr, [](Arguments& a) { a.srcRoi.width = 0; }},
      {StatusSizeErr, [](Arguments& a) { a.srcRoi.height = 0; }},
      {StatusSizeErr, [](Arguments& a) { a.dstRoi.x = -1; }},
      {StatusSizeErr, [](Arguments& a) { a.dstRoi.y = -1; }},
      {StatusSizeErr, [](Arguments& a) { a.dstRoi.width = 0; }},
      {StatusSizeErr, [](Arguments& a) { a.dstRoi.height = 0; }},
      {StatusStepErr, [](Arguments& a) { a.srcStep = 0; }},
      {StatusStepErr, [](Arguments& a) { a.dstStep = -64; }},
      {StatusInterpolationErr, [](Arguments& a) { a.method = 3; }},
      {StatusInterpolationErr, [](Arguments& a) { a.method = 8; }},
      {StatusInterpolationErr, [](Arguments& a) { a.method = 0; }},
      {StatusCoeffErr, [](Arguments& a) { a.m.c[0][1] = a.m.c[1][0] = 1; }},
      {StatusCoeffErr, [](Arguments& a) { a.srcRoi.width = 1; }},
      {StatusRectErr, [](Arguments& a) { a.srcRoi.x = 20; }},
      {StatusRectErr, [](Arguments& a) { a.srcRoi.y = 10; }},
      {StatusNoOverlapWarning, [](Arguments& a) { a.m.c[0][2] = 30.5; }},
      {StatusNoOverlapWarning, [](Arguments& a) { a.m.c[1][2] = -9.5; }},
  };
  const auto run = [&](const Arguments& a) {
    return Lib::qvWarpPerspective(Type(2), a.src, a.srcSize, a.srcStep, a.srcRoi, a.dst, a.dstStep,
                                  a.dstRoi, a.m.c, a.method);
  };
  for (std::size_t i = 0; i < std::size(cases); ++i)
    for (std::size_t k = i; k < std::size(cases); ++k) {
      Arguments a = good;
      cases[k].breakIt(a);
      cases[i].breakIt(a);
      SCOPED_TRACE(testing::Message() << i << " and " << k);
      if (cases[i].expected == cases[k].expected || cases[i].expected != StatusNoOverlapWarning) {
        EXPECT_EQ(run(a), cases[i].expected);
      }
    }
  EXPECT_EQ(out, Bytes(64 * 64));
  for (const int type : {0, 3, 9, 13})
    EXPECT_EQ(
        Lib::qvWarpPerspective(Type(type), nullptr, {0, 0}, 0, {}, nullptr, 0, {}, kIdentity.c, 0),
        StatusDataTypeErr);
  for (const unsigned method : {1u, 2u, 4u, 0x80000001u, 0x80000004u}) {
    Arguments a = good;
    a.method = static_cast<int>(method);
    EXPECT_EQ(run(a), StatusOk) << method;
  }
  Arguments a = good;  // reaching up to the edge is no miss
  a.m.c[0][2] = 29;
  EXPECT_EQ(run(a), StatusOk);
}

// Planes are checked by the cores, behind the interpolation and before the matrix.
TEST(Warp, PlanarLayouts) {
  const int w = 40, h = 30;
  const Bytes image = Noise(4 * w * h);
  Bytes out(4 * w * h), expected(4 * w * h);
  const unsigned char* src[4];
  unsigned char* dst[4];
  for (int i = 0; i < 4; ++i) {
    src[i] = &image[std::size_t(i) * w * h];
    dst[i] = &out[std::size_t(i) * w * h];
  }
  const double c[2][3] = {{.8, .3, 2}, {-.3, .8, 9}};
  const IppiRect all = {0, 0, w, h};
  for (int i = 0; i < 4; ++i)
    ASSERT_EQ(WarpAffineCore(src[i], {w, h}, w, all, &expected[std::size_t(i) * w * h], w, all,
                             LayoutOneChannel, c, 4),
              StatusOk);
  ASSERT_EQ(WarpAffineCore(src, {w, h}, w, all, dst, w, all, LayoutFourPlanes, c, 4), StatusOk);
  EXPECT_EQ(out, expected);
  src[3] = nullptr;
  EXPECT_EQ(WarpAffineCore(src, {w, h}, w, all, dst, w, all, LayoutThreePlanes, c, 4), StatusOk);
  EXPECT_EQ(WarpAffineCore(src, {w, h}, w, all, dst, w, all, LayoutFourPlanes, c, 4),
            StatusNullPtrErr);
  EXPECT_EQ(RotateCore(src, {w, h}, w, all, dst, w, all, LayoutFourPlanes, 90, 0, 5, 4),
            StatusNullPtrErr);
}

TEST(Warp, WholeShiftsCopyEveryPixel) {
  const int w = 150, h = 40;
  const Bytes src = Noise(3 * w * h);
  for (const Level& level : AvailableLevels())
    for (const int channels : {1, 3})
      for (const int method : {1, 2, 4})
        for (const int rotate : {0, 1}) {
          const UseLevel use(level);
          SCOPED_TRACE(testing::Message() << level.name << ' ' << channels << ' ' << method);
          const int dx = -7, dy = 12;
          Bytes dst(src.size(), 7), expected(src.size(), 7);
          Matrix m = kIdentity;
          m.c[0][2] = dx, m.c[1][2] = dy;
          const auto type = Type(channels == 1 ? 2 : 4);
          const int step = w * channels;
          if (rotate) {
            ASSERT_EQ(Lib::qvRotate(type, src.data(), {w, h}, step, {0, 0, w, h}, dst.data(), step,
                                    {0, 0, w, h}, 720, dx, dy, method),
                      StatusOk);
          } else {
            ASSERT_EQ(Lib::qvWarpPerspective(type, src.data(), {w, h}, step, {0, 0, w, h},
                                             dst.data(), step, {0, 0, w, h}, m.c, method),
                      StatusOk);
          }
          for (int y = dy; y < h; ++y)
            std::memcpy(&expected[std::size_t(y) * step],
                        &src[std::size_t(y - dy) * step - std::size_t(dx) * channels],
                        std::size_t(w + dx) * channels);
          ASSERT_EQ(dst, expected);
        }
}

TEST(Warp, BandsWriteWhatOneCallWrites) {
  const int w = 333, h = 401, step = 3 * w;
  const Bytes src = Noise(3 * w * h);
  const Matrix m = {{{.9, .2, 3}, {-.15, .8, 40}, {2e-4, -3e-4, 1}}};
  for (const int method : {1, 2, 4})
    for (const int type : {2, 4}) {
      Bytes whole;
      for (const int budget : {1, 2, 3, 6}) {
        const UseBudget use(budget);
        Bytes dst(src.size(), 7);
        ASSERT_EQ(Lib::qvWarpPerspective(Type(type), src.data(), {w, h}, step, {5, 3, w, h},
                                         dst.data(), step, {2, 1, w - 2, h - 1}, m.c, method),
                  StatusOk);
        if (budget == 1) whole = dst;
        ASSERT_TRUE(dst == whole) << method << ' ' << type << ' ' << budget;
      }
    }
}

// The second image waits for the first one on one band only.
TEST(WarpEx, FollowsTheFirstImageOnOneBandOnly) {
  const int w = 100, h = 200;
  const Bytes src = Noise(3 * w * h), src2 = Noise(w * h);
  const Matrix singular = {{{1, 1, 0}, {1, 1, 0}, {0, 0, 1}}};
  for (const int budget : {1, 2}) {
    const UseBudget use(budget);
    SCOPED_TRACE(budget);
    Bytes dst(src.size()), dst2(src2.size());
    const auto run = [&](const Matrix& m, const unsigned char* second, unsigned char* out2,
                         const Matrix& m2) {
      dst.assign(dst.size(), 7);
      dst2.assign(dst2.size(), 7);
      return Lib::qvWarpPerspectiveEx(Type(12345), src.data(), {w, h}, 3 * w, {0, 0, w, h},
                                      dst.data(), 3 * w, {0, 0, w, h}, m.c, 2, second, w, out2, w,
                                      m2.c);
    };
    const Bytes kept2(src2.size(), 7);
    EXPECT_EQ(run(kIdentity, src2.data(), dst2.data(), kIdentity), StatusOk);
    EXPECT_EQ(dst, src);
    EXPECT_EQ(dst2, src2);
    EXPECT_EQ(run(kIdentity, nullptr, dst2.data(), singular), StatusOk);
    EXPECT_EQ(dst, src);
    EXPECT_EQ(dst2, kept2);
    EXPECT_EQ(run(kIdentity, src2.data(), nullptr, singular), StatusOk);
    EXPECT_EQ(run(kIdentity, src2.data(), dst2.data(), singular), StatusCoeffErr);
    EXPECT_EQ(run(singular, src2.data(), dst2.data(), kIdentity),
              budget == 1 ? StatusCoeffErr : StatusOk);
    EXPECT_EQ(dst, Bytes(src.size(), 7));
    EXPECT_EQ(dst2, budget == 1 ? kept2 : src2);
  }
}

// Any matrix: statuses may be what they like, but all levels agree and nothing outside is touched.
TEST(Warp, SurvivesExtremeMatrices) {
  const double values[] = {0, 1, -1, 1e-9, 1e9, -1e9, 1e-160, 1e160, 1e300, -1e300, 5e-324,
                           std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN()};
  const GuardedMemory source(4096), target(4096);
  Random random(7);
  int accepted = 0;
  for (int n = 0; n < 60000; ++n) {
    Matrix m;
    for (auto& row : m.c)
      for (double& v : row)
        v = random.OneIn(3) ? values[random.Between(0, int(std::size(values)) - 1)]
                            : random.Between(-2.0, 2.0);
    if (random.OneIn(2)) m.c[2][0] = random.Between(-.3, .3), m.c[2][1] = random.Between(-.3, .3);
    const int w = random.Between(1, 30), h = random.Between(1, 20);
    const int channels = random.Pick(1, 3), step = w * channels;
    unsigned char* const src = source.end() - step * h;
    unsigned char* const dst = target.end() - 32 * 3 * 40;
    const IppiRect srcRoi = {0, 0, w + 1, h + 1}, dstRoi = {0, 0, 32, 40};
    const int method = random.Pick(1, 2, 4);
    Bytes plain;
    IppStatus plainStatus = StatusOk;
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      std::memset(dst, 7, 32 * 3 * 40);
      const IppStatus status =
          Lib::qvWarpPerspective(Type(channels == 1 ? 2 : 4), src, {w, h}, step, srcRoi, dst,
                                 32 * channels, dstRoi, m.c, method);
      const Bytes bytes(dst, dst + 32 * 3 * 40);
      if (level.variantIndex == 0) {
        plain = bytes;
        plainStatus = status;
        accepted += status == StatusOk;
      }
      ASSERT_EQ(status, plainStatus);
      ASSERT_TRUE(bytes == plain) << n << ' ' << level.name;
    }
  }
  EXPECT_GT(accepted, 1000);
}

// A matrix whose horizon crosses the destination: pixels behind it would repeat the image upside
// down.
TEST(Warp, WritesNothingBehindTheHorizon) {
  const int n = 200;
  const Bytes src(n * n, 255);
  const Matrix m = {{{1, 0, 0}, {0, 1, 0}, {0, -.01, 1}}};  // row y maps to y / (1 - y / 100)
  Bytes dst(n * n, 0);
  ASSERT_EQ(Lib::qvWarpPerspective(Type(2), src.data(), {n, n}, n, {0, 0, n, 90}, dst.data(), n,
                                   {0, 0, n, n}, m.c, 1),
            StatusOk);
  for (int y = 0; y < n; ++y)
    for (int x = 0; x < n; ++x) {
      const double w = 1 + y / 100.0;  // the inverse: Y = y / w, X = x / w
      ASSERT_EQ(dst[std::size_t(y) * n + x], x / w <= n - 1 && y / w <= 89 ? 255 : 0);
    }
  // With the horizon inside the region the corners' images do not form a convex outline.
  EXPECT_EQ(Lib::qvWarpPerspective(Type(2), src.data(), {n, n}, n, {0, 0, n, n}, dst.data(), n,
                                   {0, 0, n, n}, m.c, 1),
            StatusCoeffErr);
}

TEST(Warp, LongAndTallImages) {
  const UseBudget one(1);
  for (const IppiSize size : {IppiSize{70000, 3}, {3, 70000}, {140000, 3}, {3, 140000}}) {
    const Bytes src = Noise(std::size_t(3) * size.width * size.height);
    const double dx = size.width > size.height ? 69000.5 - size.width : -.25;
    const double dy = size.width > size.height ? -.25 : 69000.5 - size.height;
    const Matrix m = {{{1, 0, dx}, {0, 1, dy}, {0, 0, 1}}};
    const IppiRect all = {0, 0, size.width, size.height};
    Bytes plain;
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      Bytes dst(src.size(), 7);
      ASSERT_EQ(Lib::qvWarpPerspective(Type(4), src.data(), size, 3 * size.width, all, dst.data(),
                                       3 * size.width, all, m.c, 2),
                StatusOk);
      if (plain.empty()) plain = dst;
      ASSERT_TRUE(dst == plain) << level.name;
    }
    const int x = size.width > size.height ? 60000 : 1, y = size.width > size.height ? 1 : 60000;
    const double px = x - dx, py = y - dy;
    const int ix = int(px), iy = int(py);
    const auto at = [&](int u, int v) {
      return double(src[(std::size_t(v) * size.width + u) * 3]);
    };
    const double fx = px - ix, fy = py - iy;
    const double exact = (at(ix, iy) * (1 - fx) + at(ix + 1, iy) * fx) * (1 - fy) +
                         (at(ix, iy + 1) * (1 - fx) + at(ix + 1, iy + 1) * fx) * fy;
    EXPECT_NEAR(plain[(std::size_t(y) * size.width + x) * 3], exact, .6);
  }
}

}  // namespace
}  // namespace qv::test
