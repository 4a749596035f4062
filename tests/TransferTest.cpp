// qvCopy and qvMulCScale: what long rows make different, and quotients of all bytes. What the rows
// write at each level is kernelcheck's, statuses are the corpus', and formulas the tool tests'.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <vector>

#include "support/Bytes.h"
#include "support/Levels.h"

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
