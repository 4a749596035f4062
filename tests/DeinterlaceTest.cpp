// qvDeinterlace: the filter for all sums and weights at all levels, the rows of each mode, strips.
// qv_deinterlace_bob and qv_weave: every pair of bytes, all rows, the way there and back.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "qvAcceleratedLib/qv.h"
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

// The three taps of qvDeinterlace on the doubled field; a row outside the frame counts as the one
// beside it.
unsigned char BobByte(const Bytes& src, int width, int height, int parity, int y, int x,
                      int centreWeight) {
  if (y % 2 == parity) return src[y * width + x];
  const auto doubled = [&](int row) {
    int line = (row & ~1) + parity;  // that both rows of a pair are
    if (line < 0) line += 2;
    if (line >= height) line -= 2;
    return int{src[line * width + x]};
  };
  const int side = (256 - centreWeight) / 2;
  // Of an odd height's last row of the bottom field, the line of the pair is missing.
  return static_cast<unsigned char>(
      ((doubled(y - 1) + doubled(y + 1)) * side + doubled(y) * (256 - 2 * side) + 128) >> 8);
}

TEST(Bob, IsTheFilterOnTheDoubledFieldAndWeaveTakesItBack) {
  for (const auto& [width, height] : {std::pair(65536, 4), {5, 2}, {70, 3}, {333, 301}}) {
    const auto all = static_cast<std::size_t>(width) * height;
    Bytes src = Noise(all);
    if (width == 65536)  // every pair of bytes
      for (int i = 0; i < width * height; ++i)
        src[i] = static_cast<unsigned char>(i >> (i / width / 2 * 8));
    Bytes expected[2] = {Bytes(all), Bytes(all)};
    for (const int weight : {0, 1, 77, 128, 254, 255, 256})
      for (const int order : {QV_TOP_FIELD_FIRST, QV_BOTTOM_FIELD_FIRST}) {
        for (int parity = 0; parity < 2; ++parity)
          for (int i = 0; i < width * height; ++i)
            expected[parity ^ order][i] =
                BobByte(src, width, height, parity, i / width, i % width, weight);
        for (const int budget : {1, 3})
          for (const Level& level : AvailableLevels()) {
            const UseBudget useBudget(budget);
            const UseLevel use(level);
            Bytes first(all), second(all), back(all);
            ASSERT_EQ(qv_deinterlace_bob(src.data(), width, first.data(), width, second.data(),
                                         width, {width, height}, order, weight),
                      QV_STATUS_OK);
            ASSERT_TRUE(first == expected[0] && second == expected[1])
                << width << ' ' << weight << ' ' << order << ' ' << budget << ' ' << level.name;
            const int at = order * width, other = width - at;
            ASSERT_EQ(qv_weave(first.data() + at, 2 * width, second.data() + other, 2 * width,
                               back.data(), width, {width, height}, order),
                      QV_STATUS_OK);
            ASSERT_TRUE(back == src) << width << ' ' << order << ' ' << budget << ' ' << level.name;
          }
      }
  }
}

TEST(Bob, RefusesInTheOrderOfItsDocumentation) {
  unsigned char a[64] = {1}, b[64] = {2}, c[64] = {2};
  const struct {
    const unsigned char* src;
    unsigned char* first;
    qv_size size;
    int order, weight, expected;
  } cases[] = {{nullptr, b, {0, 1}, 2, 300, QV_STATUS_NULL_PTR_ERR},
               {a, nullptr, {0, 1}, 2, 300, QV_STATUS_NULL_PTR_ERR},
               {a, b, {0, 8}, 2, 300, QV_STATUS_SIZE_ERR},
               {a, b, {8, 1}, 2, 300, QV_STATUS_SIZE_ERR},
               {a, b, {8, 8}, 2, 0, QV_STATUS_OUT_OF_RANGE_ERR},
               {a, b, {8, 8}, -1, 0, QV_STATUS_OUT_OF_RANGE_ERR},
               {a, b, {8, 8}, 0, 257, QV_STATUS_OUT_OF_RANGE_ERR},
               {a, b, {8, 8}, 0, -1, QV_STATUS_OUT_OF_RANGE_ERR}};
  for (const auto& t : cases) {
    EXPECT_EQ(qv_deinterlace_bob(t.src, 8, t.first, 8, c, 8, t.size, t.order, t.weight),
              t.expected);
    if (t.order == 0) continue;
    EXPECT_EQ(qv_weave(t.src, 8, a, 8, t.first, 8, t.size, t.order), t.expected);
    EXPECT_EQ(qv_weave(a, 8, t.src, 8, t.first, 8, t.size, t.order), t.expected);
  }
  EXPECT_TRUE(std::equal(b, b + 64, c));
}

}  // namespace
}  // namespace qv::test
