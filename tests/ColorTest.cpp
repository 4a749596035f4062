// qvYCbCr422ToBGR, qvYCbCr420ToBGR, qvYCbCr420 and qvYCbCr422ToYCrCb420 through the public
// interface: the formulas for every input at every level, odd sizes, bands, statuses and their order.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Bytes.h"
#include "tests/support/Guarded.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;

constexpr Lib::qvDataType kAnyType = static_cast<Lib::qvDataType>(12345);

int Floor16(int x) { return x >= 0 ? x / 65536 : -((65535 - x) / 65536); }
int Clamp(int x) { return std::clamp(x, 0, 255); }

struct Pixel {
  int b, g, r;
};

Pixel FromPacked(int y, int cb, int cr) {
  return {Clamp(Floor16(76284 * y + 132186 * cb - 18140365)),
          Clamp(Floor16(76284 * y - 53281 * cr - 25690 * cb + 8887730)),
          Clamp(Floor16(76284 * y + 104595 * cr - 14608761))};
}

Pixel FromPlanes(int y, int cb, int cr) {
  const int u = cb - 128, v = cr - 128;
  return {Clamp(Floor16(76284 * y + 132186 * u - 1187776)),
          Clamp(Floor16(76284 * y - 1220544 - 25690 * u - 53281 * v + 32768)),
          Clamp(Floor16(76284 * y + 104595 * v - 1187776))};
}

::testing::AssertionResult Holds(const unsigned char* at, const Pixel& p) {
  if (at[0] == p.b && at[1] == p.g && at[2] == p.r) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << int{at[0]} << ' ' << int{at[1]} << ' ' << int{at[2]}
                                       << " instead of " << p.b << ' ' << p.g << ' ' << p.r;
}

// Runs a test body with one band and with several.
void AtBudgets(const std::function<void()>& body) {
  for (const int budget : {1, 2, 3, 7}) {
    const UseBudget use(budget);
    SCOPED_TRACE(testing::Message() << "budget " << budget);
    body();
  }
}

// One image per Cr, a row per Cb, a column per Y: all 2^24 inputs, each at an even and at an odd
// pixel. 512 columns are whole vectors; the odd sizes are kernelcheck's.
template <class Convert, class Formula>
void ExpectFormulaForAllInputs(Convert convert, Formula formula) {
  const std::size_t pixels = 512 * 256;
  Bytes expected(3 * pixels);
  std::vector<Bytes> actual(AvailableLevels().size(), Bytes(3 * pixels));
  for (int cr = 0; cr < 256; ++cr) {
    unsigned char* to = expected.data();
    for (int cb = 0; cb < 256; ++cb) {
      for (int x = 0; x < 512; ++x) {
        const Pixel p = formula((x & 255) ^ (x >> 8), cb, cr);  // the second half swaps neighbours
        for (const int value : {p.b, p.g, p.r}) *to++ = static_cast<unsigned char>(value);
      }
    }
    for (std::size_t i = 0; i < actual.size(); ++i) {
      const UseLevel use(AvailableLevels()[i]);
      ASSERT_EQ(convert(cr, actual[i].data()), StatusOk);
      if (actual[i] == expected) continue;
      const auto at = std::mismatch(expected.begin(), expected.end(), actual[i].begin()).first -
                      expected.begin();
      const int x = static_cast<int>(at / 3 % 512);
      FAIL() << AvailableLevels()[i].name << ": Y " << ((x & 255) ^ (x >> 8)) << " Cb "
             << at / 3 / 512 << " Cr " << cr << " channel " << at % 3 << ": "
             << int{actual[i][static_cast<std::size_t>(at)]} << " instead of "
             << int{expected[static_cast<std::size_t>(at)]};
    }
  }
}

TEST(YCbCr422ToBGR, IsTheFormulaForAllInputsAtAllLevels) {
  Bytes packed(1024 * 256);
  ExpectFormulaForAllInputs(
      [&](int cr, unsigned char* dst) {
        for (std::size_t x = 0; x < packed.size() / 2; ++x) {
          packed[2 * x] = static_cast<unsigned char>((x & 255) ^ ((x >> 8) & 1));
          packed[2 * x + 1] = static_cast<unsigned char>(x & 1 ? cr : static_cast<int>(x / 512));
        }
        return Lib::qvYCbCr422ToBGR(kAnyType, packed.data(), 1024, dst, 1536, {512, 256});
      },
      FromPacked);
}

TEST(YCbCr420ToBGR, IsTheFormulaForAllInputsAtAllLevels) {
  Bytes luma(512), cb(256), cr(256), pair(2 * 1536);
  for (std::size_t x = 0; x < 512; ++x) luma[x] = static_cast<unsigned char>((x & 255) ^ (x >> 8));
  unsigned char* planes[3] = {luma.data(), cb.data(), cr.data()};
  int steps[3] = {0, 256, 256};  // both rows of a pair read the same luma
  ExpectFormulaForAllInputs(
      [&](int crValue, unsigned char* dst) {
        std::fill(cr.begin(), cr.end(), static_cast<unsigned char>(crValue));
        for (int row = 0; row < 256; ++row, dst += 1536) {
          std::fill(cb.begin(), cb.end(), static_cast<unsigned char>(row));
          const IppStatus status =
              Lib::qvYCbCr420ToBGR(kAnyType, planes, steps, pair.data(), 1536, {512, 2});
          if (status != StatusOk) return status;
          if (!std::equal(pair.begin(), pair.begin() + 1536, pair.begin() + 1536))
            return StatusBadArgErr;
          std::copy(pair.begin(), pair.begin() + 1536, dst);
        }
        return StatusOk;
      },
      FromPlanes);
}

TEST(YCbCr422ToBGR, BorrowsCrForAnOddLastPixelAndReadsNothingBehindItsCb) {
  const GuardedMemory memory;
  for (const Level& level : AvailableLevels()) {
    SCOPED_TRACE(level.name);
    const UseLevel use(level);
    for (const int width : {3, 5, 17, 65, 129, 131}) {
      unsigned char* const src = memory.end() - 2 * width;
      Random(7).Fill(src, static_cast<std::size_t>(2 * width));
      Bytes dst(static_cast<std::size_t>(3 * width) + 1, 9);
      ASSERT_EQ(Lib::qvYCbCr422ToBGR(kAnyType, src, 2 * width, dst.data(), 3 * width, {width, 1}),
                StatusOk);
      const unsigned char* const last = memory.end() - 2;
      EXPECT_TRUE(Holds(&dst[static_cast<std::size_t>(3 * width - 3)],
                        FromPacked(last[0], last[1], last[-1])));
      EXPECT_EQ(dst.back(), 9);
    }
  }
}

TEST(YCbCrToBGR, BlackGreyAndWhite) {
  struct {
    int y;
    Pixel packed, planar;
  } const cases[] = {{0, {0, 0, 0}, {0, 0, 0}},
                     {16, {0, 0, 0}, {0, 0, 0}},
                     {235, {254, 254, 254}, {255, 255, 255}},
                     {255, {255, 255, 255}, {255, 255, 255}}};
  for (const auto& c : cases) {
    const auto y = static_cast<unsigned char>(c.y);
    const Bytes packed = {y, 128, y, 128};
    Bytes luma(4, y), grey(1, 128), dst(12);
    EXPECT_EQ(Lib::qvYCbCr422ToBGR(kAnyType, packed.data(), 4, dst.data(), 6, {2, 1}), StatusOk);
    EXPECT_TRUE(Holds(dst.data(), c.packed));
    unsigned char* planes[3] = {luma.data(), grey.data(), grey.data()};
    int steps[3] = {2, 1, 1};
    EXPECT_EQ(Lib::qvYCbCr420ToBGR(kAnyType, planes, steps, dst.data(), 6, {2, 2}), StatusOk);
    EXPECT_TRUE(Holds(dst.data() + 9, c.planar));
  }
}

TEST(YCbCr420ToBGR, LeavesAnOddLastColumnAndRowUnwrittenAndSaysSo) {
  Bytes luma = Noise(6 * 6), cb = Noise(9), cr = Noise(9);
  unsigned char* planes[3] = {luma.data(), cb.data(), cr.data()};
  int steps[3] = {6, 3, 3};
  struct {
    int width, height, status;
  } const cases[] = {{5, 4, 35}, {4, 5, 35}, {5, 5, 35}, {1, 4, 35}, {4, 1, 35}, {6, 6, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.width << " x " << c.height);
    Bytes dst(18 * 6, 9);
    EXPECT_EQ(Lib::qvYCbCr420ToBGR(kAnyType, planes, steps, dst.data(), 18, {c.width, c.height}),
              c.status);
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 6; ++x) {
        const bool written = x < (c.width & ~1) && y < (c.height & ~1);
        const int block = y / 2 * 3 + x / 2;
        ASSERT_TRUE(Holds(&dst[18 * y + 3 * x],
                          written ? FromPlanes(luma[6 * y + x], cb[block], cr[block])
                                  : Pixel{9, 9, 9}))
            << x << ' ' << y;
      }
  }
}

TEST(YCbCr422ToYCrCb420, KeepsTheChromaOfUpperRowsAndLeavesOddEndsAlone) {
  const Bytes src = {1, 2, 3, 4, 90, 91, 5, 6, 7, 8, 92, 93, 94, 95, 96, 97, 98, 99};
  for (const int extent : {2, 3}) {
    Bytes y(9, 0), cr(2, 0), cb(2, 0);
    unsigned char* planes[3] = {y.data(), cr.data(), cb.data()};
    int steps[3] = {3, 2, 2};
    EXPECT_EQ(
        Lib::qvYCbCr422ToYCrCb420(kAnyType, src.data(), 6, planes, steps, {extent, extent}),
        StatusOk);
    EXPECT_EQ(y, (Bytes{1, 3, 0, 5, 7, 0, 0, 0, 0}));
    EXPECT_EQ(cr, (Bytes{4, 0}));
    EXPECT_EQ(cb, (Bytes{2, 0}));
  }
}

TEST(YCbCr420, SplitsTheChromaPairsAndLeavesOddEndsAlone) {
  const Bytes luma = {1, 2, 3, 4, 5, 6, 7, 8, 9}, chroma = {10, 20, 30, 40};
  for (const int extent : {2, 3}) {
    Bytes y(9, 0), cb(2, 0), cr(2, 0);
    unsigned char* planes[3] = {y.data(), cb.data(), cr.data()};
    int steps[3] = {3, 2, 2};
    EXPECT_EQ(Lib::qvYCbCr420(kAnyType, luma.data(), 3, chroma.data(), 4, planes, steps,
                              {extent, extent}),
              StatusOk);
    EXPECT_EQ(y, (Bytes{1, 2, 0, 4, 5, 0, 0, 0, 0}));
    EXPECT_EQ(cb, (Bytes{10, 0}));
    EXPECT_EQ(cr, (Bytes{20, 0}));
  }
}

// Every operation in bands must do what it does whole: odd heights, steps that are padded, odd and
// negative.
TEST(Color, BandsWriteWhatOneCallWrites) {
  const int width = 71;
  // src and dst each stand for three planes one after another.
  using Call = std::function<IppStatus(unsigned char** src, int* srcStep, unsigned char** dst,
                                       int* dstStep, IppiSize size)>;
  const Call calls[] = {
      [](auto src, auto ss, auto dst, auto ds, IppiSize size) {
        return Lib::qvYCbCr422ToBGR(kAnyType, src[0], ss[0], dst[0], ds[0], size);
      },
      [](auto src, auto ss, auto dst, auto ds, IppiSize size) {
        return Lib::qvYCbCr420ToBGR(kAnyType, src, ss, dst[0], ds[0], size);
      },
      [](auto src, auto ss, auto dst, auto ds, IppiSize size) {
        return Lib::qvYCbCr422ToYCrCb420(kAnyType, src[0], ss[0], dst, ds, size);
      },
      [](auto src, auto ss, auto dst, auto ds, IppiSize size) {
        return Lib::qvYCbCr420(kAnyType, src[0], ss[0], src[1], ss[1], dst, ds, size);
      },
  };
  for (const int height : {130, 131, 201, 460, 461})
    for (const int direction : {1, -1})
      for (std::size_t i = 0; i < std::size(calls); ++i) {
        SCOPED_TRACE(testing::Message() << "call " << i << ", height " << height << ", direction "
                                        << direction);
        const int step = 3 * width + 4;  // odd
        const std::size_t plane = static_cast<std::size_t>(step) * static_cast<std::size_t>(height);
        Bytes src = Noise(3 * plane);
        const Bytes before = Noise(3 * plane + 1);
        const auto run = [&](Bytes& dst) {
          unsigned char *from[3], *to[3];
          int steps[3];
          for (int c = 0; c < 3; ++c) {
            const std::ptrdiff_t first =
                static_cast<std::ptrdiff_t>(plane) * c +
                (direction < 0 ? std::ptrdiff_t{step} * (height - 1) : 0);
            from[c] = src.data() + first;
            to[c] = dst.data() + first;
            steps[c] = direction * step;
          }
          return calls[i](from, steps, to, steps, {width, height});
        };
        Bytes whole = before;
        IppStatus expected;
        {
          const UseBudget one(1);
          expected = run(whole);
        }
        EXPECT_EQ(expected, i == 1 ? StatusOddSizeWarning : StatusOk);
        AtBudgets([&] {
          Bytes banded = before;
          ASSERT_EQ(run(banded), expected);
          ASSERT_TRUE(banded == whole);
        });
      }
}

// With an even width, only the last band meets an odd height, and its warning is what counts.
TEST(YCbCr420ToBGR, ReturnsTheLastBandsWarning) {
  Bytes planes(64 * 461, 128), dst(12 * 461);
  unsigned char* src[3] = {planes.data(), planes.data(), planes.data()};
  int steps[3] = {4, 2, 2};
  AtBudgets([&] {
    EXPECT_EQ(Lib::qvYCbCr420ToBGR(kAnyType, src, steps, dst.data(), 12, {4, 461}),
              StatusOddSizeWarning);
    EXPECT_EQ(Lib::qvYCbCr420ToBGR(kAnyType, src, steps, dst.data(), 12, {4, 460}), StatusOk);
  });
}

// The first fault in the documented order decides, whatever else is wrong, and nothing is written.
TEST(Color, ChecksInTheDocumentedOrder) {
  Bytes image(20000, 5);
  const Bytes before = image;
  unsigned char* const p = image.data();
  int steps[3] = {9, 9, 9};
  unsigned char* whole[3] = {p, p, p};
  const int big = 140;  // rows enough for two bands
  struct {
    const char* what;
    IppStatus expected;
    std::function<IppStatus()> call;
  } const cases[] = {
      {"packed null src", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr422ToBGR(kAnyType, nullptr, 9, p, 9, {0, big}); }},
      {"packed null dst", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr422ToBGR(kAnyType, p, 9, nullptr, 9, {1, 0}); }},
      {"packed width 1", StatusSizeErr,
       [&] { return Lib::qvYCbCr422ToBGR(kAnyType, p, 9, p, 9, {1, big}); }},
      {"packed height 0", StatusSizeErr,
       [&] { return Lib::qvYCbCr422ToBGR(kAnyType, p, 9, p, 9, {9, 0}); }},
      {"planar null array", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr420ToBGR(kAnyType, nullptr, steps, p, 9, {0, big}); }},
      {"planar null steps", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr420ToBGR(kAnyType, whole, nullptr, p, 9, {0, big}); }},
      {"planar null dst", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr420ToBGR(kAnyType, whole, steps, nullptr, 9, {0, 0}); }},
      {"to planes null src", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr422ToYCrCb420(kAnyType, nullptr, 9, whole, steps, {0, big}); }},
      {"to planes null array", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr422ToYCrCb420(kAnyType, p, 9, nullptr, steps, {1, 1}); }},
      {"to planes null steps", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr422ToYCrCb420(kAnyType, p, 9, whole, nullptr, {1, 1}); }},
      {"to planes width 1", StatusSizeErr,
       [&] { return Lib::qvYCbCr422ToYCrCb420(kAnyType, p, 9, whole, steps, {1, big}); }},
      {"to planes height 1", StatusSizeErr,
       [&] { return Lib::qvYCbCr422ToYCrCb420(kAnyType, p, 9, whole, steps, {big, 1}); }},
      {"split null luma", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr420(kAnyType, nullptr, 9, p, 9, whole, steps, {1, big}); }},
      {"split null chroma", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr420(kAnyType, p, 9, nullptr, 9, whole, steps, {1, 1}); }},
      {"split null array", StatusNullPtrErr,
       [&] { return Lib::qvYCbCr420(kAnyType, p, 9, p, 9, nullptr, steps, {1, big}); }},
      {"split width 1", StatusSizeErr,
       [&] { return Lib::qvYCbCr420(kAnyType, p, 9, p, 9, whole, steps, {1, big}); }},
      {"split height 1", StatusSizeErr,
       [&] { return Lib::qvYCbCr420(kAnyType, p, 9, p, 9, whole, steps, {big, 1}); }},
  };
  for (const Level& level : AvailableLevels()) {
    const UseLevel use(level);
    AtBudgets([&] {
      for (const auto& c : cases) EXPECT_EQ(c.call(), c.expected) << c.what << ' ' << level.name;
      for (int missing = 0; missing < 3; ++missing) {
        unsigned char* planes[3] = {p, p, p};
        planes[missing] = nullptr;
        for (const int height : {2, big}) {
          // The planes of a source are looked at after the size, those of a destination before.
          EXPECT_EQ(Lib::qvYCbCr420ToBGR(kAnyType, planes, steps, p, 9, {9, height}),
                    StatusNullPtrErr);
          EXPECT_EQ(Lib::qvYCbCr420ToBGR(kAnyType, planes, steps, p, 9, {0, height}),
                    StatusSizeErr);
          EXPECT_EQ(Lib::qvYCbCr420(kAnyType, p, 9, p, 9, planes, steps, {0, height}),
                    StatusNullPtrErr);
          EXPECT_EQ(Lib::qvYCbCr422ToYCrCb420(kAnyType, p, 9, planes, steps, {0, height}),
                    StatusNullPtrErr);
        }
      }
    });
  }
  EXPECT_TRUE(image == before);
}

}  // namespace
}  // namespace qv::test
