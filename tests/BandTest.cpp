// The band frame: geometry for budgets that no test machine has, and how bands are run.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <utility>
#include <vector>

#include "qvAcceleratedLib/BandSplit.h"
#include "qvAcceleratedLib/Settings.h"
#include "support/Levels.h"
#include "tests/support/Operations.h"

namespace qv::test {
namespace {

void ExpectLengths(const Bands& bands, const std::vector<int>& lengths) {
  ASSERT_EQ(bands.count, static_cast<int>(lengths.size()));
  std::ptrdiff_t first = 0;
  for (int i = 0; i < bands.count; ++i) {
    EXPECT_EQ(bands.Of(i).first, first);
    EXPECT_EQ(bands.Of(i).length, lengths[static_cast<std::size_t>(i)]);
    first += lengths[static_cast<std::size_t>(i)];
  }
}

struct BandCase {
  int extent, budget;
  std::vector<int> lengths;
};

TEST(Bands, CutRowsByTheBudgetAndTheFloorOf64) {
  const BandCase cases[] = {
      {1000, 4, {250, 250, 250, 250}}, {1001, 4, {250, 250, 250, 251}}, {200, 4, {66, 66, 68}},
      {129, 4, {129}},                 {130, 2, {65, 65}},              {129, 2, {129}},
      {1000, 1, {1000}},               {0, 8, {0}},                     {-5, 8, {-5}},
      {-1000, 2, {-1000}},             {65, 64, {65}},                  {1000, 0, {}},
  };
  for (const BandCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.extent << " by " << c.budget);
    ExpectLengths(PlanBands(c.extent, c.budget), c.lengths);
  }
}

TEST(Bands, KeepEvenRowsForSubsampledChroma) {
  const BandCase cases[] = {
      {130, 2, {64, 66}}, {128, 2, {128}}, {201, 3, {66, 66, 69}}, {1001, 4, {250, 250, 250, 251}},
      {131, 1, {131}},
  };
  for (const BandCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.extent << " by " << c.budget);
    ExpectLengths(PlanEvenBands(c.extent, c.budget), c.lengths);
  }
}

TEST(Bands, CutASingleRowIntoPiecesOf4096AtLeast) {
  ExpectLengths(PlanPieces(10000, 2), {5000, 5000});
  ExpectLengths(PlanPieces(12290, 3), {4096, 4096, 4098});
  ExpectLengths(PlanPieces(12287, 3), {12287});  // no fewer pieces are tried
}

#if PTRDIFF_MAX > INT_MAX
TEST(Bands, LieWhereAnIntWouldOverflow) {
  const Bands bands = PlanBands(70000, 2);
  EXPECT_EQ(bands.Of(1).first * 100000, std::ptrdiff_t{3500000000});
}
#endif

TEST(RunBands, ReturnsTheStatusOfTheLastBand) {
  const auto status = [](Band band) {
    return band.first == 300 ? StatusOddSizeWarning : StatusSizeErr;
  };
  for (const Sharing sharing : {Sharing::Always, Sharing::OnOneThread}) {
    const UseBudget use(4, sharing);
    EXPECT_EQ(RunBands(Bands{4, 100, 400}, {400, 0}, status), StatusOddSizeWarning);
    EXPECT_EQ(RunBands(Bands{3, 100, 300}, {300, 0}, status), StatusSizeErr);
    EXPECT_EQ(RunBands(Bands{0, 100, 300}, {300, 0}, status), StatusOk);  // no band runs
  }
}

TEST(Bands, OfEveryOperationMoveEveryPlaneByItsOwnStep) {
  const IppiSize size = {70, 301};  // only the last band has an odd row
  Planes planes(1 << 20);
  for (const unsigned path : {0u, 1u})  // of the over merge
    for (const Operation& operation : Operations())
      for (const int sign : {1, -1}) {
        if (sign < 0 && !operation.backwards) continue;
        const auto run = [&](int budget) {
          const UseBudget use(budget);
          const unsigned old = std::exchange(HostProcessorInfo, path);
          int plane = 0;
          planes.Place(operation, size,
                       [&](int rowBytes) { return sign * (rowBytes + 7 * plane++); });
          planes.Fill();
          const Outcome outcome = planes.Call(operation);
          HostProcessorInfo = old;
          return outcome;
        };
        // qvResize places its pixels otherwise in bands, however many they are.
        const Outcome expected = run(operation.name.starts_with("qvResize ") ? 2 : 1);
        EXPECT_GE(expected.status, StatusOk) << operation.name;
        for (const int budget : {2, 3, 7})
          EXPECT_TRUE(run(budget) == expected)
              << operation.name << ", sign " << sign << ", budget " << budget;
      }
}

}  // namespace
}  // namespace qv::test
