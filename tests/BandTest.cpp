// The band frame: geometry for budgets that no test machine has, and how bands are run.
#include <gtest/gtest.h>
#include <omp.h>

#include <atomic>
#include <climits>
#include <cstdint>
#include <functional>
#include <vector>

#include "qvAcceleratedLib/BandSplit.h"
#include "qvAcceleratedLib/Settings.h"
#include "tests/support/Bytes.h"
#include "tests/support/Statuses.h"

namespace qv::test {
namespace {

void ExpectHeights(const Bands& bands, const std::vector<int>& heights) {
  ASSERT_EQ(bands.count, static_cast<int>(heights.size()));
  std::ptrdiff_t first = 0;
  for (int i = 0; i < bands.count; ++i) {
    EXPECT_EQ(bands.First(i), first);
    EXPECT_EQ(bands.Height(i), heights[static_cast<std::size_t>(i)]);
    first += heights[static_cast<std::size_t>(i)];
  }
}

struct BandCase {
  int extent, budget;
  std::vector<int> heights;
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
    ExpectHeights(PlanBands(c.extent, c.budget), c.heights);
  }
}

TEST(Bands, KeepEvenRowsForSubsampledChroma) {
  const BandCase cases[] = {
      {130, 2, {64, 66}}, {128, 2, {128}}, {201, 3, {66, 66, 69}}, {1001, 4, {250, 250, 250, 251}},
      {131, 1, {131}},
  };
  for (const BandCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.extent << " by " << c.budget);
    ExpectHeights(PlanEvenBands(c.extent, c.budget), c.heights);
  }
}

TEST(Bands, CutASingleRowIntoPiecesOf4096AtLeast) {
  ExpectHeights(PlanPieces(10000, 2), {5000, 5000});
  ExpectHeights(PlanPieces(12290, 3), {4096, 4096, 4098});
  ExpectHeights(PlanPieces(12287, 3), {12287});  // no fewer pieces are tried
}

#if PTRDIFF_MAX > INT_MAX
TEST(Bands, LieWhereAnIntWouldOverflow) {
  const Bands bands = PlanBands(70000, 2);
  EXPECT_EQ(bands.First(1) * 100000, std::ptrdiff_t{3500000000});
}
#endif

TEST(RunBands, ReturnsTheStatusOfTheLastBand) {
  const auto status = [](int i) { return i == 3 ? StatusOddSizeWarning : StatusSizeErr; };
  EXPECT_EQ(RunBands(Bands{4, 100, 400}, status), StatusOddSizeWarning);
  EXPECT_EQ(RunBands(Bands{3, 100, 300}, status), StatusSizeErr);
  EXPECT_EQ(RunBands(Bands{0, 100, 300}, status), StatusOk);  // no band runs
}

TEST(RunBands, StaysOnTheCallingThreadInsideAParallelRegion) {
  const int levels = omp_get_max_active_levels();
  omp_set_max_active_levels(4);  // nested teams are allowed, and still not wanted
  std::atomic<int> strangers{0}, runs{0};
#pragma omp parallel num_threads(2)
  {
    static thread_local char here;
    const char* const caller = &here;
    RunBands(Bands{4, 65, 260}, [&](int) {
      ++runs;
      if (&here != caller) ++strangers;
      return StatusOk;
    });
  }
  omp_set_max_active_levels(levels);
  EXPECT_EQ(runs, 8);
  EXPECT_EQ(strangers, 0);
}

// Images of noise, each with a step of its own, rows from the top down or from the bottom up.
struct Images {
  static constexpr int kWidth = 70, kHeight = 301;  // only the last band has an odd row
  Bytes memory[5];
  unsigned char* data[5];
  int step[5];

  explicit Images(bool upwards) {
    for (int i = 0; i < 5; ++i) {
      const int rowBytes = 4 * kWidth + 7 * i;
      memory[i] = Noise(std::size_t(rowBytes) * kHeight);
      data[i] = memory[i].data() + (upwards ? rowBytes * (kHeight - 1) : 0);
      step[i] = upwards ? -rowBytes : rowBytes;
    }
  }
};

using Lib = CqvAccLib;
constexpr int W = Images::kWidth, H = Images::kHeight;
constexpr IppiSize kSize = {W, H};
constexpr IppiRect kWhole = {0, 0, W, H};

const std::function<IppStatus(Images&)> kBandedCalls[] = {
    [](Images& i) { return Lib::qvDup(kAnyType, i.data[0], i.step[0], i.data[1], i.step[1], kSize); },
    [](Images& i) {
      return Lib::qvCopy(Type(14), i.data[0], i.step[0], i.data[1], i.step[1], kSize);
    },
    [](Images& i) { return Lib::qvSet(Type(4), i.data[0], i.data[1], i.step[1], kSize); },
    [](Images& i) {
      return Lib::qvMirror(Type(4), i.data[0], i.step[0], i.data[1], i.step[1], kSize,
                           AxisHorizontal);
    },
    [](Images& i) {
      return Lib::qvMirror(Type(4), i.data[0], i.step[0], i.data[1], i.step[1], kSize, AxisVertical);
    },
    [](Images& i) {
      return Lib::qvMirror(Type(4), i.data[0], i.step[0], i.data[1], i.step[1], kSize, AxisBoth);
    },
    [](Images& i) {
      return Lib::qvLUTPalette(kAnyType, i.data[0], i.step[0], i.data[1], i.step[1], kSize,
                               i.memory[2].data(), 8);
    },
    [](Images& i) { return Lib::qvMulCScale(Type(16), 99, i.data[1], i.step[1], kSize); },
    [](Images& i) {
      return Lib::qvYCbCr422ToBGR(kAnyType, i.data[0], i.step[0], i.data[1], i.step[1], kSize);
    },
    [](Images& i) {
      return Lib::qvYCbCr420ToBGR(kAnyType, i.data, i.step, i.data[3], i.step[3], kSize);
    },
    [](Images& i) {
      return Lib::qvYCbCr422ToYCrCb420(kAnyType, i.data[0], i.step[0], i.data + 1, i.step + 1,
                                       kSize);
    },
    [](Images& i) {
      return Lib::qvYCbCr420(kAnyType, i.data[0], i.step[0], i.data[1], i.step[1], i.data + 2,
                             i.step + 2, kSize);
    },
    [](Images& i) {
      return Lib::qvAlphaCompC(Type(4), i.data[0], i.step[0], 200, i.data[1], i.step[1], 90,
                               i.data[2], i.step[2], kSize, AlphaPlus);
    },
    [](Images& i) {
      return Lib::qvMergeAlphaPlus(Type(4), i.data[0], i.step[0], i.data[1], i.step[1], i.data[2],
                                   i.step[2], W, H);
    },
    [](Images& i) {  // the merged alpha goes by the step of the foreground's, beside it
      return Lib::qvMergeAlphaOver(kAnyType, i.data[0], i.step[0], i.data[1], i.step[1], i.data[2],
                                   i.step[2], i.data[3], i.step[3], i.data[1] + W, 3 * W, W, H);
    },
    [](Images& i) {
      return Lib::qvDeinterlace(Type(2), i.data[0], i.step[0], i.data[1], i.step[1], kSize, 100, 0);
    },
    [](Images& i) {
      const double tilt[3][3] = {{.9, .2, 3}, {-.15, .8, 40}, {2e-4, -3e-4, 1}};
      return Lib::qvWarpPerspective(Type(4), i.data[0], kSize, i.step[0], kWhole, i.data[1],
                                    i.step[1], {2, 1, W - 2, H - 1}, tilt, 4);
    },
};

TEST(Bands, OfEveryOperationMoveEveryImageByItsOwnStep) {
  for (const unsigned path : {0u, 1u})  // of the over merge
    for (const bool upwards : {false, true})
      for (const auto& call : kBandedCalls) {
        SCOPED_TRACE(testing::Message() << "call " << &call - kBandedCalls << ", upwards "
                                        << upwards << ", path " << path);
        const auto run = [&](int budget, Images& images) {
          const UseBudget use(budget);
          const unsigned old = std::exchange(HostProcessorInfo, path);
          const IppStatus status = call(images);
          HostProcessorInfo = old;
          return status;
        };
        Images whole(upwards);
        const IppStatus status = run(1, whole);
        if (!upwards) {  // some refuse steps below 1
          ASSERT_TRUE(status == StatusOk || status == StatusOddSizeWarning) << status;
        }
        for (const int budget : {2, 3, 7}) {
          Images banded(upwards);
          ASSERT_EQ(run(budget, banded), status);
          for (int i = 0; i < 5; ++i) ASSERT_TRUE(banded.memory[i] == whole.memory[i]) << budget;
        }
      }
}

}  // namespace
}  // namespace qv::test
