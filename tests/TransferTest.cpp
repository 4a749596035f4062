// qvCopy, qvDup, qvSet, qvMirror, qvLUTPalette and qvMulCScale through the public interface. What
// the rows write at each level is kernelcheck's, statuses are the corpus'; here are the formulas on
// small images, and what long rows make different.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <vector>

#include "tests/support/Bytes.h"
#include "tests/support/Levels.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

// Runs a test body at every level on one band, and on several.
void AtLevelsAndBudgets(const std::function<void()>& body) {
  for (const Level& level : AvailableLevels())
    for (const int budget : {1, 2, 7}) {
      const UseLevel useLevel(level);
      const UseBudget useBudget(budget);
      SCOPED_TRACE(testing::Message() << level.name << ", budget " << budget);
      body();
    }
}

// Whatever the type: only some are cut into pieces, and not with steps that differ.
TEST(Copy, OfALongRowIsThatOfItsPixels) {
  const int width = 30000;
  const Bytes src = Noise(4 * width);
  const struct {
    int type, from, to;
  } layouts[] = {{2, 1, 1}, {4, 3, 3}, {9, 1, 3}, {13, 4, 3}};
  for (const auto& l : layouts)
    for (const int step : {5, 6})
      for (const int pixels : {1, 4096, 8191, width}) {
        Bytes expected(4 * width, 7);
        for (int k = 0; k < pixels; ++k)
          for (int c = 0; c < std::min(l.from, l.to); ++c)
            expected[l.to * k + c] = src[l.from * k + c];
        AtLevelsAndBudgets([&] {
          Bytes dst(4 * width, 7);
          EXPECT_EQ(Lib::qvCopy(Type(l.type), src.data(), 5, dst.data(), step, {pixels, 1}),
                    StatusOk);
          EXPECT_TRUE(dst == expected) << l.type << ' ' << pixels;
        });
      }
  AtLevelsAndBudgets([&] {
    Bytes dst(width);
    EXPECT_EQ(Lib::qvCopy(Type(2), nullptr, 5, dst.data(), 5, {width, 1}), StatusNullPtrErr);
  });
}

TEST(Copy, ChangesLayoutsAsTheTypeSays) {
  const Bytes src = {10, 11, 12, 13, 20, 21, 22, 23};
  const struct {
    int type, width, srcStep;
    Bytes expected;  // 0 where the destination must keep its 0
  } cases[] = {
      {2, 8, 8, {10, 11, 12, 13, 20, 21, 22, 23, 0}},
      {4, 2, 6, {10, 11, 12, 13, 20, 21, 0, 0, 0}},
      {9, 3, 3, {10, 0, 0, 11, 0, 0, 12, 0, 0}},
      {13, 2, 8, {10, 11, 12, 20, 21, 22, 0, 0, 0}},
      {14, 2, 6, {10, 11, 12, 0, 13, 20, 21, 0, 0}},
  };
  for (const auto& c : cases) {
    Bytes dst(9, 0);
    EXPECT_EQ(Lib::qvCopy(Type(c.type), src.data(), c.srcStep, dst.data(), 9, {c.width, 1}),
              StatusOk);
    EXPECT_EQ(dst, c.expected) << c.type;
  }
  Bytes dst(6, 0);
  EXPECT_EQ(Lib::qvDup(kAnyType, src.data(), 2, dst.data(), 6, {2, 1}), StatusOk);
  EXPECT_EQ(dst, (Bytes{10, 10, 10, 11, 11, 11}));
}

TEST(Set, WritesThePixelAndNothingBetweenRows) {
  const Bytes value = {1, 2, 3};
  Bytes dst(16, 9);
  EXPECT_EQ(Lib::qvSet(Type(4), value.data(), dst.data(), 8, {2, 2}), StatusOk);
  EXPECT_EQ(dst, (Bytes{1, 2, 3, 1, 2, 3, 9, 9, 1, 2, 3, 1, 2, 3, 9, 9}));
  EXPECT_EQ(Lib::qvSet(Type(2), value.data(), dst.data() + 6, 8, {1, 2}), StatusOk);
  EXPECT_EQ(dst, (Bytes{1, 2, 3, 1, 2, 3, 1, 9, 1, 2, 3, 1, 2, 3, 1, 9}));
}

TEST(Mirror, FlipsAboutEachAxis) {
  const Bytes src = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  const struct {
    int type, axis, width;
    Bytes expected;
  } cases[] = {
      {2, 0, 6, {7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}},
      {2, 1, 6, {6, 5, 4, 3, 2, 1, 12, 11, 10, 9, 8, 7}},
      {2, 2, 6, {12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1}},
      {4, 0, 2, {7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}},
      {4, 1, 2, {4, 5, 6, 1, 2, 3, 10, 11, 12, 7, 8, 9}},
      {4, 2, 2, {10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3}},
      {2, 3, 6, Bytes(12, 0)},
  };
  for (const auto& c : cases) {
    Bytes dst(12, 0);
    EXPECT_EQ(Lib::qvMirror(Type(c.type), src.data(), 6, dst.data(), 6, {c.width, 2},
                            static_cast<IppiAxis>(c.axis)),
              StatusOk);
    EXPECT_EQ(dst, c.expected) << c.type << ' ' << c.axis;
  }
}

TEST(LUTPalette, UsesTheLowBitsOfAnIndex) {
  Bytes palette(48);
  std::iota(palette.begin(), palette.end(), static_cast<unsigned char>(100));
  const unsigned char src = 0x37;
  Bytes dst(3, 0);
  EXPECT_EQ(Lib::qvLUTPalette(Type(2), &src, 1, dst.data(), 3, {1, 1}, palette.data(), 4),
            StatusOk);
  EXPECT_EQ(dst, (Bytes{121, 122, 123}));
}

TEST(MulCScale, IsTheFlooredQuotientForAllBytesAtAllLevels) {
  for (const Level& level : AvailableLevels()) {
    const UseLevel use(level);
    for (int value = 0; value < 256; ++value) {
      Bytes image(256);
      std::iota(image.begin(), image.end(), static_cast<unsigned char>(0));
      ASSERT_EQ(Lib::qvMulCScale(Type(16), static_cast<unsigned char>(value), image.data(), 256,
                                 {256, 1}),
                StatusOk);
      for (int x = 0; x < 256; ++x)
        ASSERT_EQ(image[x], x * value / 255) << x << ' ' << value << ' ' << level.name;
    }
  }
}

}  // namespace
}  // namespace qv::test
