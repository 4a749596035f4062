// qvWarpPerspective, qvWarpPerspectiveEx and qvRotate: statuses and their order, exact copies,
// second images, horizons.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "support/Bytes.h"
#include "support/Levels.h"
#include "tests/support/RandomMatrix.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

// Past pointers, sizes and steps, whose statuses are the corpus'. Warps and rotations check alike,
// but a quarter turn, which interpolates nothing, looks at less, and no rotation at the outline: a
// region without a pixel inside its image is an error of a warp and a warning of a rotation.
TEST(Warp, ChecksInOrderAndSoDoesRotate) {
  Bytes image(20 * 20), out(20 * 20);
  const IppiSize size = {20, 20};
  const IppiRect all = {0, 0, 20, 20}, far = {90, 0, 20, 20};
  const auto warp = [&](const Matrix& m, IppiRect from, IppiRect to, int method) {
    return Lib::qvWarpPerspective(Type(2), image.data(), size, 20, from, out.data(), 20, to, m.c,
                                  method);
  };
  const auto rotate = [&](double angle, double dx, double dy, IppiRect from, IppiRect to,
                          int method) {
    return Lib::qvRotate(Type(2), image.data(), size, 20, from, out.data(), 20, to, angle, dx, dy,
                         method);
  };
  constexpr auto kMethod = StatusInterpolationErr;
  constexpr auto kMiss = StatusNoOverlapWarning;
  const struct {
    IppiRect from, to;
    int method;
    IppStatus warp, rotate, quarter;
  } cases[] = {
      {{20, 0, 1, 20}, far, 3, kMethod, kMethod, kMiss},
      {{0, 20, 20, 1}, far, 8, kMethod, kMethod, kMiss},
      {all, all, 0, kMethod, kMethod, StatusOk},
      {{20, 0, 1, 20}, far, 2, StatusCoeffErr, kMiss, kMiss},
      {{0, 20, 20, 1}, far, 2, StatusCoeffErr, kMiss, kMiss},
      {{0, 0, 1, 20}, all, 2, StatusCoeffErr, StatusOk, StatusOk},
      {{0, 0, 20, 1}, all, 2, StatusCoeffErr, StatusOk, StatusOk},
      {{20, 0, 20, 20}, far, 2, StatusRectErr, kMiss, kMiss},
      {{0, 20, 20, 20}, all, 2, StatusRectErr, kMiss, kMiss},
      {all, far, 2, kMiss, kMiss, kMiss},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(warp(kIdentity, c.from, c.to, c.method), c.warp);
    EXPECT_EQ(rotate(89, 0, 19, c.from, c.to, c.method), c.rotate);
    EXPECT_EQ(rotate(90, 0, 19, c.from, c.to, c.method), c.quarter);
  }
  const auto shifted = [&](double dx, double dy) {
    return warp({{{1, 0, dx}, {0, 1, dy}, {0, 0, 1}}}, all, all, 2);
  };
  EXPECT_EQ(shifted(19.5, 0), kMiss);
  EXPECT_EQ(shifted(0, -19.5), kMiss);
  EXPECT_EQ(shifted(19, 0), StatusOk);  // reaching up to the edge is no miss
  EXPECT_EQ(warp({{{1, 1, 0}, {1, 1, 0}, {0, 0, 1}}}, all, all, 2), StatusCoeffErr);
  // It makes a sound quadrilateral, but its upper left four have no inverse.
  EXPECT_EQ(warp({{{1, 0, 0}, {0, 0, 5}, {0, 0.1, 1}}}, all, all, 2), StatusCoeffErr);
  EXPECT_EQ(rotate(std::nan(""), 0, 19, all, all, 2), StatusCoeffErr);
  EXPECT_EQ(rotate(HUGE_VAL, 0, 19, all, all, 2), StatusCoeffErr);
  EXPECT_EQ(rotate(0, std::nan(""), 0, all, all, 1), StatusCoeffErr);
  EXPECT_EQ(rotate(180, 1e300, -HUGE_VAL, all, all, 1), kMiss);
  EXPECT_EQ(out, Bytes(out.size()));
  for (const unsigned method : {1u, 2u, 4u, 0x80000001u, 0x80000004u})
    EXPECT_EQ(warp(kIdentity, all, all, static_cast<int>(method)), StatusOk) << method;
}

// Planes are checked by the cores, after the interpolation and before the matrix.
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
                             Layout::kGrey, c, 4),
              StatusOk);
  ASSERT_EQ(WarpAffineCore(src, {w, h}, w, all, dst, w, all, Layout::kFourPlanes, c, 4), StatusOk);
  EXPECT_EQ(out, expected);
  src[3] = nullptr;
  EXPECT_EQ(WarpAffineCore(src, {w, h}, w, all, dst, w, all, Layout::kThreePlanes, c, 4), StatusOk);
  EXPECT_EQ(WarpAffineCore(src, {w, h}, w, all, dst, w, all, Layout::kFourPlanes, c, 4),
            StatusNullPtrErr);
  EXPECT_EQ(RotateCore(src, {w, h}, w, all, dst, w, all, Layout::kFourPlanes, 90, 0, 5, 4),
            StatusNullPtrErr);
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

// A matrix whose horizon crosses the destination: pixels beyond it would repeat the image upside
// down.
TEST(Warp, WritesNothingBeyondTheHorizon) {
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

}  // namespace
}  // namespace qv::test
