// qvGetPerspectiveTransform and qvGetRotateBound, and the pieces that warping and rotation share;
// qv_invert_transform and qv_rotation_canvas.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "qvAcceleratedLib/qv.h"
#include "support/Bytes.h"
#include "tests/support/RandomMatrix.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Quadrangle, TellsTurnAndDefects) {
  const struct {
    double quad[4][2];
    int expected;
  } cases[] = {
      {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}, 1},
      {{{0, 0}, {0, 1}, {1, 1}, {1, 0}}, 0},
      {{{0, 0}, {2, 0}, {1, 0}, {0, 1}}, StatusBadArgErr},    // three on one line
      {{{0, 0}, {0, 0}, {1, 1}, {0, 1}}, StatusBadArgErr},    // two corners in one place
      {{{0, 0}, {4, 0}, {1, 1}, {0, 4}}, StatusQuadSignErr},  // dented
      {{{0, 0}, {1, 1}, {1, 0}, {0, 1}}, StatusQuadSignErr},  // crossed
      {{{0, 0}, {1, 0}, {kNaN, 1}, {0, 1}}, StatusBadArgErr},
  };
  for (const auto& c : cases) EXPECT_EQ(CheckQuadrangle(c.quad), c.expected) << &c - cases;
}

TEST(PerspectiveTransform, ChecksInOrderAndWritesNothing) {
  const double good[4][2] = {{0, 0}, {9, 1}, {8, 7}, {1, 6}};
  const double bent[4][2] = {{0, 0}, {4, 0}, {1, 1}, {0, 4}};
  const struct {
    IppiRect roi;
    const double (&quad)[4][2];
    int expected;
  } cases[] = {
      {{-1, 0, 5, 5}, good, StatusSizeErr}, {{0, -1, 5, 5}, good, StatusSizeErr},
      {{0, 0, 0, 5}, bent, StatusSizeErr},  {{0, 0, 5, 0}, good, StatusSizeErr},
      {{0, 0, 1, 5}, bent, StatusQuadErr},  {{0, 0, 1, 5}, good, StatusRectErr},
      {{0, 0, 5, 1}, good, StatusRectErr},
  };
  for (const auto& c : cases) {
    double m[3][3] = {{7, 7, 7}, {7, 7, 7}, {7, 7, 7}};
    EXPECT_EQ(Lib::qvGetPerspectiveTransform(kAnyType, c.roi, c.quad, m), c.expected);
    for (const auto& row : m)
      for (const double v : row) EXPECT_EQ(v, 7);
  }
}

TEST(PerspectiveTransform, CarriesCornersAndBack) {
  Random random(20);
  for (int n = 0; n < 500; ++n) {
    const IppiRect roi = {random.Between(0, 500), random.Between(0, 500), random.Between(2, 4000),
                          random.Between(2, 4000)};
    double quad[4][2], m[3][3], back[3][3], image[4][2];
    const double size = random.Between(2.0, 3000.0);
    for (int i = 0; i < 4; ++i) {  // the corners of a square, each moved by less than a quarter
      const int k = n % 2 ? (4 - i) % 4 : i;
      quad[i][0] = (k == 1 || k == 2 ? size : 0) + random.Between(-.24, .24) * size;
      quad[i][1] = (k < 2 ? 0 : size) + random.Between(-.24, .24) * size;
    }
    ASSERT_EQ(Lib::qvGetPerspectiveTransform(kAnyType, roi, quad, m), StatusOk);
    const Corners rect = CornersOf(roi);
    ProjectRectCorners(m, rect, image);
    int orientation = -1;
    PerspectiveRectToQuad(rect, quad, back, &orientation, false);
    EXPECT_EQ(orientation, n % 2 == 0);
    for (int i = 0; i < 4; ++i) {
      const double* q = quad[i];
      const double w = back[2][0] * q[0] + back[2][1] * q[1] + back[2][2];
      const double corner[2] = {i == 1 || i == 2 ? rect.x1 : rect.x0, i < 2 ? rect.y0 : rect.y1};
      for (int axis = 0; axis < 2; ++axis) {
        EXPECT_NEAR(image[i][axis], q[axis], 1e-6);
        EXPECT_NEAR((back[axis][0] * q[0] + back[axis][1] * q[1] + back[axis][2]) / w,
                    corner[axis], 1e-6);
      }
    }
  }
}

TEST(RotateBound, QuarterTurnsAreExact) {
  const IppiRect roi = {0, 0, 4, 2};
  const struct {
    double angle, x0, y0, x1, y1;
  } cases[] = {
      {0, 0, 0, 3, 1},      {90, 0, -3, 1, 0},     {180, -3, -1, 0, 0},   {270, -1, 0, 0, 3},
      {-90, -1, 0, 0, 3},   {450, 0, -3, 1, 0},    {-270, 0, -3, 1, 0},   {3600, 0, 0, 3, 1},
      {-720, 0, 0, 3, 1},   {360e12, 0, 0, 3, 1},
  };
  for (const auto& c : cases) {
    double bound[2][2];
    ASSERT_EQ(Lib::qvGetRotateBound(kAnyType, roi, bound, c.angle, 10, -20), StatusOk);
    EXPECT_TRUE(bound[0][0] == c.x0 + 10 && bound[0][1] == c.y0 - 20 &&
                bound[1][0] == c.x1 + 10 && bound[1][1] == c.y1 - 20)
        << c.angle;
  }
}

TEST(InvertTransform, GivesTheIdentityOfAnyScaleAndExactQuarterTurns) {
  Random random(5);
  for (int i = 0; i < 2000; ++i) {
    double m[9], inverse[9];
    for (int k = 0; k < 9; ++k)
      m[k] = (k % 4 == 0) + random.Between(-0.3, 0.3);
    m[2] *= 1000, m[5] *= 1000, m[6] /= 1000, m[7] /= 1000;  // shifts in pixels, and the horizon
    const double scale = std::ldexp(1, random.Between(-900, 900));
    for (double& x : m) x *= scale;
    ASSERT_EQ(qv_invert_transform(m, inverse), QV_STATUS_OK);
    for (int k = 0; k < 9; ++k) {
      double sum = 0, size = 0;
      for (int n = 0; n < 3; ++n) {
        const double product = m[k / 3 * 3 + n] * inverse[3 * n + k % 3];
        sum += product, size += std::fabs(product);
      }
      ASSERT_NEAR(sum, k % 4 == 0, 1e-13 * size);
    }
  }
  double turn[9] = {0, 1, -7, -1, 0, 1919, 0, 0, 1};
  const double back[9] = {0, -1, 1919, 1, 0, 7, 0, 0, 1};
  ASSERT_EQ(qv_invert_transform(turn, turn), QV_STATUS_OK);
  for (int k = 0; k < 9; ++k) {
    EXPECT_EQ(turn[k], back[k]) << k;
    EXPECT_FALSE(turn[k] == 0 && std::signbit(turn[k])) << k;
  }
}

TEST(InvertTransform, RefusesWhatHasNoInverse) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double cases[][9] = {{},
                             {1, 2, 3, 2, 4, 6, 0, 0, 1},
                             {0.1, 0.3, 5, 0.3, 0.9, 7, 0, 0, 1},  // singular but for rounding
                             {1, 0, kNaN, 0, 1, 0, 0, 0, 1},
                             {1, 0, 0, 0, infinity, 0, 0, 0, 1},
                             {1e-300, 0, 0, 0, 1e-300, 0, 0, 0, 1e-310}};  // inverse too large
  for (const auto& m : cases) {
    double inverse[9] = {7};
    EXPECT_EQ(qv_invert_transform(m, inverse), QV_STATUS_COEFF_ERR) << &m - cases;
    EXPECT_EQ(inverse[0], 7);
  }
  double m[9];
  EXPECT_EQ(qv_invert_transform(nullptr, m), QV_STATUS_NULL_PTR_ERR);
  EXPECT_EQ(qv_invert_transform(m, nullptr), QV_STATUS_NULL_PTR_ERR);
}

TEST(RotationCanvas, HoldsTheImageInItsMiddle) {
  for (const double angle : {0., 90., 180., 270., -90., 720., 1., 45., 101.5, 263., 359.999})
    for (const auto& [w, h] : {std::pair(1, 1), {640, 480}, {3, 2000}}) {
      qv_size canvas;
      double shift[2], bound[4];
      ASSERT_EQ(qv_rotation_canvas({w, h}, angle, &canvas, shift), QV_STATUS_OK);
      ASSERT_EQ(qv_get_rotate_bound(0, {0, 0, w, h}, bound, angle, shift[0], shift[1]),
                QV_STATUS_OK);
      const int lengths[2] = {canvas.width, canvas.height};
      for (int k = 0; k < 2; ++k) {
        EXPECT_NEAR(bound[k] + bound[2 + k], lengths[k] - 1, 1e-9) << angle;
        EXPECT_GE(bound[k], -1e-6) << angle;
        EXPECT_LT(bound[k], 0.5) << angle;
      }
      if (std::fmod(angle, 90) != 0) continue;
      const bool swapped = std::fmod(angle, 180) != 0;
      EXPECT_TRUE(canvas.width == (swapped ? h : w) && canvas.height == (swapped ? w : h)) << angle;
      EXPECT_TRUE(bound[0] == 0 && bound[1] == 0) << angle;
    }
  qv_size canvas = {7, 7};
  double shift[2] = {7, 7};
  const int most = std::numeric_limits<int>::max();
  EXPECT_EQ(qv_rotation_canvas({0, 1}, kNaN, nullptr, shift), QV_STATUS_NULL_PTR_ERR);
  EXPECT_EQ(qv_rotation_canvas({0, 1}, kNaN, &canvas, nullptr), QV_STATUS_NULL_PTR_ERR);
  EXPECT_EQ(qv_rotation_canvas({0, 1}, kNaN, &canvas, shift), QV_STATUS_SIZE_ERR);
  EXPECT_EQ(qv_rotation_canvas({1, 0}, kNaN, &canvas, shift), QV_STATUS_SIZE_ERR);
  EXPECT_EQ(qv_rotation_canvas({1, 1}, kNaN, &canvas, shift), QV_STATUS_COEFF_ERR);
  EXPECT_EQ(qv_rotation_canvas({most, most}, 45, &canvas, shift), QV_STATUS_OUT_OF_RANGE_ERR);
  EXPECT_TRUE(canvas.width == 7 && shift[0] == 7);
}

}  // namespace
}  // namespace qv::test
