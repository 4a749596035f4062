// qvDeinterlace: the filter for all sums and weights at all levels, the rows of each mode, strips.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/Bytes.h"
#include "support/Levels.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

unsigned char Filtered(unsigned above, unsigned centre, unsigned below, unsigned centreWeight) {
  const unsigned w = std::min(centreWeight, 256u), s = (256 - w) / 2;
  return static_cast<unsigned char>(((above + below) * s + centre * w) / 256);
}

// The rows above, at and below filtered row 1; three more rows, so that rows are filtered together
// where a level does so.
TEST(Deinterlace, IsTheFormulaForAllSumsAndWeightsAtAllLevels) {
  const int width = 511 * 256, height = 6;
  Bytes src(height * width), dst(height * width), expected(dst);
  Random(6).Fill(src.data(), src.size());
  for (int i = 0; i < width; ++i) {
    const int sum = i / 256;
    const int above = i % 3 ? std::min(sum, 255) : sum - std::min(sum, 255);
    src[i] = static_cast<unsigned char>(above);
    src[width + i] = static_cast<unsigned char>(i % 256);
    src[2 * width + i] = static_cast<unsigned char>(sum - above);
  }
  for (unsigned w = 0; w <= 258; ++w) {
    const unsigned weight = w == 258 ? 0xFFFFFFFFu : w;
    for (int i = width; i < (height - 1) * width; ++i)
      expected[i] = Filtered(src[i - width], src[i], src[i + width], weight);
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      ASSERT_EQ(Lib::qvDeinterlace(Type(2), src.data(), width, dst.data(), width, {width, height},
                                   weight, 1),
                StatusOk);
      ASSERT_TRUE(std::equal(expected.begin() + width, expected.end() - width, dst.begin() + width))
          << weight << ' ' << level.name;
    }
  }
}

// Rows around the image must keep their bytes unless a mode names them; strips must not change
// anything; the last bytes of a three-channel row are filtered up to the step, and overwritten by
// the next row if that begins earlier.
TEST(Deinterlace, WritesTheRowsOfItsMode) {
  const int height = 9, lead = 3, srcStep = 500, rows = height + lead + 2;
  Bytes src(std::size_t{srcStep} * rows);
  Random(5).Fill(src.data(), src.size());
  struct {
    unsigned mode;
    int firstFiltered;
    bool copiesFirst, copiesLast;
  } const cases[] = {{1, 1, true, false},  {4, -1, false, false}, {16, -1, false, true},
                     {0, 1, true, true},   {2, 1, true, true},    {17, 1, true, true},
                     {0xFFFFFFFFu, 1, true, true}};
  for (const auto& c : cases)
    for (const auto& [type, dstStep] :
         {std::pair(2, 510), {4, 510}, {2, 512}, {4, 512}, {2, 128}, {4, 448}})
      for (const int height_ : {3, height})
        for (const int budget : {1, 2, 3, 8})
          for (const Level& level : AvailableLevels()) {
            const UseBudget useBudget(budget);
            const UseLevel use(level);
            const int width = type == 2 ? 333 : 111;
            const int rowBytes = type == 2 ? width : srcStep;
            Bytes dst(static_cast<std::size_t>(dstStep) * rows + srcStep, 7), expected = dst;
            for (int y = -1; y < height_; ++y)
              for (int x = 0; x < rowBytes; ++x) {
                const auto at = [&](int row) { return src[(row + lead) * srcStep + x]; };
                unsigned char& out = expected[(y + lead) * dstStep + x];
                if (y >= c.firstFiltered && y <= height_ - 2)
                  out = Filtered(at(y - 1), at(y), at(y + 1), 100);
                else if ((y == 0 && c.copiesFirst) || (y == height_ - 1 && c.copiesLast))
                  out = at(y);
              }
            ASSERT_EQ(Lib::qvDeinterlace(Type(type), src.data() + lead * srcStep, srcStep,
                                         dst.data() + lead * dstStep, dstStep, {width, height_},
                                         100, c.mode),
                      StatusOk);
            ASSERT_TRUE(dst == expected)
                << "mode " << c.mode << ", type " << type << ", height " << height_ << ", budget "
                << budget << ", " << level.name;
          }
}

}  // namespace
}  // namespace qv::test
