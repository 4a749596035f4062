// qvResize through the public interface: shortcuts, extents, bands and conventions. Statuses are
// the corpus'; what the kernels write byte for byte is ResizeAccuracyTest's.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "kernels/resize/Resize.h"
#include "support/Bytes.h"
#include "support/Levels.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Call {
  IppiSize srcSize;
  IppiRect roi;
  IppiSize dstSize;
  double xFactor, yFactor;
  int code;
  int type = 2;

  IppStatus Run(const Bytes& src, Bytes* dst, int budget) const {
    const UseBudget use(budget);
    const int pixel = type == 4 ? 3 : 1;
    dst->assign(std::size_t(dstSize.width) * dstSize.height * pixel, 77);
    return Lib::qvResize(Type(type), src.data(), srcSize, srcSize.width * pixel, roi, dst->data(),
                         dstSize.width * pixel, dstSize, xFactor, yFactor, code);
  }
};

TEST(Resize, TakesTheShortcutsOfTheFront) {
  const Bytes src = Noise(640 * 480 * 3);
  const IppiRect all = {0, 0, 640, 480};
  Bytes nearest, dst;
  // At most one pixel of difference: nearest neighbour, whatever code and factors.
  const Call close = {{640, 480}, all, {641, 479}, 641 / 640.0, 479 / 480.0, 1};
  for (const int budget : {1, 4}) {
    ASSERT_EQ(close.Run(src, &nearest, budget), StatusOk);
    for (const int code : {2, 4, 8, 16, 99}) {
      Call other = close;
      other.code = code;
      ASSERT_EQ(other.Run(src, &dst, budget), StatusOk);
      EXPECT_TRUE(dst == nearest) << code;
    }
  }
  // Area averaging that enlarges is Lanczos; that reduces runs in one call whatever the budget.
  for (const int budget : {1, 3}) {
    Bytes lanczos;
    const Call stretched = {{640, 480}, all, {1280, 240}, 2, 0.5, 16};
    Call area = stretched;
    area.code = 8;
    ASSERT_EQ(stretched.Run(src, &lanczos, budget), StatusOk);
    ASSERT_EQ(area.Run(src, &dst, budget), StatusOk);
    EXPECT_TRUE(dst == lanczos);
  }
  const Call half = {{640, 480}, all, {320, 240}, 0.5, 0.5, 8};
  Bytes whole;
  ASSERT_EQ(half.Run(src, &whole, 1), StatusOk);
  ASSERT_EQ(half.Run(src, &dst, 4), StatusOk);
  EXPECT_TRUE(dst == whole);
  // In bands of half the size linear pixels are means of four, too.
  Call linear = half;
  linear.code = 2;
  ASSERT_EQ(linear.Run(src, &dst, 4), StatusOk);
  EXPECT_TRUE(dst == whole);
  // A budget without threads has no band.
  EXPECT_EQ(half.Run(src, &dst, 0), StatusOk);
  EXPECT_TRUE(std::all_of(dst.begin(), dst.end(), [](int b) { return b == 77; }));
}

// A region that starts elsewhere is no whole image, even if it is as large as one.
TEST(Resize, FiltersARegionThatIsAsLargeAsItsImage) {
  const Bytes src = Noise(90 * 80);
  const IppiRect rois[] = {{3, 0, 90, 80}, {0, 5, 90, 80}, {0, 0, 89, 80}, {0, 0, 90, 79}};
  for (const IppiRect roi : rois) {
    Call call = {{90, 80}, roi, {90, 80}, 1.03, 1.04, 1};
    Bytes nearest, linear;
    ASSERT_EQ(call.Run(src, &nearest, 1), StatusOk);
    call.code = 2;
    ASSERT_EQ(call.Run(src, &linear, 1), StatusOk);
    EXPECT_NE(nearest, linear) << roi.x << ' ' << roi.y;
  }
}

// A quotient of whole numbers times its divisor may be a little less than the dividend: the last
// column must be written all the same and, in bands, a pixel's centre lie where whole numbers say.
TEST(Resize, RoundsQuotientsToWhatTheyStandFor) {
  Bytes src(2 * 120), buffer(1 << 14);
  for (int length = 2; length <= 120; ++length)
    for (int width = 1; width <= 120; ++width) {
      for (int k = 0; k < 2 * length; ++k) src[k] = static_cast<unsigned char>(k % length);
      const double factor = double(width) / length;
      const IppiRect all = {0, 0, length, 2};
      Bytes whole(2 * width, 200), band = whole;
      ASSERT_EQ(Resize_8u_C1(src.data(), {length, 2}, length, all, whole.data(), width, {width, 2},
                             factor, 1, 1),
                StatusOk);
      ASSERT_EQ(ResizeBand_8u_C1(src.data(), {length, 2}, length, all, band.data(), width,
                                 {0, 0, width, 2}, factor, 1, 0, 0, 1, buffer.data()),
                StatusOk);
      ASSERT_NE(whole.back(), 200) << length << ' ' << width;
      for (int i = 0; i < width; ++i)
        ASSERT_EQ(band[i], (2 * i + 1) * length / (2 * width)) << length << ' ' << width;
    }
}

// Positions so near the next pixel that its weight is rounded to a whole one.
TEST(Resize, TakesAPixelThatIsNextToAPositionAsItIs) {
  constexpr int kWidth = 90;
  const Bytes src = Noise(2 * kWidth * 3 * 2);
  Bytes dst(kWidth * 3, 200), buffer(1 << 14);
  ASSERT_EQ(ResizeBand_8u_C3(src.data(), {2 * kWidth, 2}, 2 * kWidth * 3, {0, 0, 2 * kWidth, 2},
                             dst.data(), kWidth * 3, {0, 0, kWidth, 1}, 0.5, 0.5, -0.25 + 1e-12, 0,
                             2, buffer.data()),
            StatusOk);
  for (int k = 0; k < (kWidth - 1) * 3; ++k) {
    const int at = k / 3 * 6 + 3 + k % 3, below = at + 2 * kWidth * 3;
    ASSERT_EQ(dst[k], (src[at] + src[below] + 1) >> 1) << k;
  }
}

// Bands place their pixels differently, so it shows when an image is cut.
TEST(Resize, IsCutOnlyIfSourceAndDestinationHaveTheRows) {
  const Bytes src = Noise(40 * 300);
  const struct {
    int srcRows, dstRows;
    bool cut;
  } cases[] = {{129, 300, false}, {300, 129, false}, {300, 130, true}, {130, 300, true}};
  for (const auto& c : cases) {
    const Call call = {{40, c.srcRows}, {0, 0, 40, c.srcRows}, {40, c.dstRows},
                       1,               1.0 * c.dstRows / c.srcRows, 2};
    Bytes whole, bands;
    ASSERT_EQ(call.Run(src, &whole, 1), StatusOk);
    ASSERT_EQ(call.Run(src, &bands, 2), StatusOk);
    EXPECT_EQ(whole != bands, c.cut) << c.srcRows << ' ' << c.dstRows;
  }
}

TEST(Resize, SaysHowLargeABandBufferIs) {
  const int big = std::numeric_limits<int>::max();
  struct {
    IppiSize size;
    int channels, code, expected, status;
  } const cases[] = {
      {{1920, 1080}, 1, 1, 188 * 64 + 15, 0},
      {{1920, 1080}, 3, 1, 188 * 64 + 15, 0},
      {{100, 10}, 3, 2, 8 * 128 + 224 * 3 * 4 + 15, 0},
      {{100, 10}, 1, 4, 8 * 128 + 448 * 4 + 15, 0},
      {{100, 10}, 4, 16, (8 * 32 + 4 * 688 + 688 + 144) * 4 + 15, 0},
      {{100, 10}, 3, 8, 0, StatusInterpolationErr},
      {{100, 10}, 2, 8, 0, StatusChannelErr},
      {{0, 10}, 2, 8, 0, StatusSizeErr},
      {{10, 0}, 2, 8, 0, StatusSizeErr},
      {{big, 1}, 3, 1, 0, StatusSizeErr},
      {{1, big}, 1, 16, 0, StatusSizeErr},
      {{1 << 20, 1}, 3, 2, 65537 * 128 + ((2 << 20) + 16) * 12 + 15, 0},
  };
  for (const auto& c : cases) {
    int bytes = 0;
    EXPECT_EQ(ResizeBandBufferSize(c.size, c.channels, c.code, &bytes), c.status);
    EXPECT_EQ(bytes, c.expected);
  }
  EXPECT_EQ(ResizeBandBufferSize({0, 0}, 2, 8, nullptr), StatusNullPtrErr);
}

// What the public operations never pass on, or only in some bands.
TEST(Resize, KernelsRefuseInOrder) {
  const IppiSize size = {20, 20};
  const IppiRect all = {0, 0, 9, 9}, outside = {30, 0, 9, 9};
  const struct {
    IppStatus expected;
    IppiSize srcSize;
    IppiRect roi, rect;
    double factor, shift;
    int code;
  } cases[] = {
      {StatusSizeErr, {0, 9}, outside, all, 0, 0, 3},
      {StatusSizeErr, size, outside, {-1, 0, 9, 9}, 0, 0, 3},
      {StatusSizeErr, size, outside, {0, 0, 9, 0}, 0, 0, 3},
      {StatusResizeFactorErr, size, outside, all, kNan, 0, 3},
      {StatusInterpolationErr, size, outside, all, 1, 0, 3},
      {StatusNoOverlapWarning, size, outside, all, 2, 0, 8},
      {StatusNothingToDoWarning, size, {9, 0, 9, 9}, all, 2, 0, 8},
      {StatusNothingToDoWarning, size, all, all, 2, -1e300, 1},
      {StatusNothingToDoWarning, size, all, all, 2, kInfinity, 1},
      {StatusResizeFactorErr, size, all, all, 2, 0, 8},
      {StatusOk, size, {9, 9, 9, 9}, all, 1, 0, 2},  // ends where it starts
  };
  Bytes image(4000, 5);
  const Bytes kept = image;
  unsigned char* const p = image.data();
  for (const auto& c : cases)
    EXPECT_EQ(ResizeBand_8u_C1(p, c.srcSize, 20, c.roi, p + 1000, 20, c.rect, c.factor, c.factor,
                               c.shift, c.shift, c.code, p + 2000),
              c.expected)
        << &c - cases;
  EXPECT_EQ(ResizeBand_8u_C1(p, {0, 9}, 20, {}, p, 20, {}, 1, 1, 0, 0, 2, nullptr),
            StatusNullPtrErr);
  // Before tables that no memory has are asked for.
  EXPECT_EQ(Resize_8u_C1(p, size, 20, all, p, 1, {std::numeric_limits<int>::max(), 1}, 1e300, 1, 8),
            StatusInterpolationErr);
  EXPECT_EQ(ResizeYUV422_8u_C2(p, {20, 9}, 60, {0, 0, 10, 9}, p, 60, {8, 8}, 2, 1, 8),
            StatusResizeFactorErr);
  EXPECT_EQ(ResizeYUV422_8u_C2(p, {20, 9}, 60, {0, 0, 9, 9}, p, 60, {8, 8}, 0, 1, 1),
            StatusSizeErr);  // half a pair
  EXPECT_EQ(image, kept);
}

TEST(Resize, AveragesMoreRowsThanSumsOf32BitsHold) {
  const int rows = 3 << 23;
  Bytes column(rows);
  std::fill(column.begin(), column.begin() + rows / 3, 255);
  for (const Level& level : AvailableLevels()) {
    const UseLevel use(level);
    unsigned char mean[2] = {1, 2};
    ASSERT_EQ(Lib::qvResize(Type(2), column.data(), {1, rows}, 1, {0, 0, 1, rows}, mean, 1, {1, 1},
                            1, 1.0 / rows, 8),
              StatusOk);
    EXPECT_EQ(mean[0], 85) << level.name;
    EXPECT_EQ(mean[1], 2);
  }
}

}  // namespace
}  // namespace qv::test
