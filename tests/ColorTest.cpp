// qvYCbCr422ToBGR, qvYCbCr420ToBGR, qvYCbCr420 and qvYCbCr422ToYCrCb420 through the public
// interface: the formulas for every input at every level, odd sizes.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "tests/support/Bytes.h"
#include "tests/support/Guarded.h"
#include "tests/support/Levels.h"

namespace qv::test {
namespace {

using Lib = CqvAccLib;
using Pixel = std::array<unsigned char, 3>;

constexpr unsigned char FromSum(int sum) {
  const int floored = sum >= 0 ? sum / 65536 : -((65535 - sum) / 65536);
  return static_cast<unsigned char>(std::clamp(floored, 0, 255));
}

constexpr Pixel FromPacked(int y, int cb, int cr) {
  return {FromSum(76284 * y + 132186 * cb - 18140365),
          FromSum(76284 * y - 53281 * cr - 25690 * cb + 8887730),
          FromSum(76284 * y + 104595 * cr - 14608761)};
}

constexpr Pixel FromPlanes(int y, int cb, int cr) {
  const int u = cb - 128, v = cr - 128;
  return {FromSum(76284 * y + 132186 * u - 1187776),
          FromSum(76284 * y - 1220544 - 25690 * u - 53281 * v + 32768),
          FromSum(76284 * y + 104595 * v - 1187776)};
}

Pixel At(const Bytes& image, std::size_t at) { return {image[at], image[at + 1], image[at + 2]}; }

// Black and white.
static_assert(FromPacked(16, 128, 128) == Pixel{0, 0, 0});
static_assert(FromPacked(235, 128, 128) == Pixel{254, 254, 254});
static_assert(FromPlanes(16, 128, 128) == Pixel{0, 0, 0});
static_assert(FromPlanes(235, 128, 128) == Pixel{255, 255, 255});

// One image per Cr, a row per Cb, a column per Y: all 2^24 inputs, each at an even and at an odd
// pixel. 512 columns are whole vectors; the odd sizes are kernelcheck's.
template <class Convert, class Formula>
void ExpectFormulaForAllInputs(Convert convert, Formula formula) {
  Bytes expected, actual(3 * 512 * 256);
  for (int cr = 0; cr < 256; ++cr) {
    expected.clear();
    for (int cb = 0; cb < 256; ++cb)
      for (int x = 0; x < 512; ++x) {
        const Pixel p = formula((x & 255) ^ (x >> 8), cb, cr);  // the second half swaps neighbours
        expected.insert(expected.end(), p.begin(), p.end());
      }
    for (const Level& level : AvailableLevels()) {
      const UseLevel use(level);
      ASSERT_EQ(convert(cr, actual.data()), StatusOk);
      const auto at = std::mismatch(expected.begin(), expected.end(), actual.begin()).first -
                      expected.begin();
      ASSERT_TRUE(actual == expected) << level.name << ": Cr " << cr << ", Cb " << at / 3 / 512
                                      << ", column " << at / 3 % 512 << ", channel " << at % 3;
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
  Bytes luma(512), cb(256), cr(256);
  for (std::size_t x = 0; x < 512; ++x) luma[x] = static_cast<unsigned char>((x & 255) ^ (x >> 8));
  unsigned char* planes[3] = {luma.data(), cb.data(), cr.data()};
  int steps[3] = {0, 256, 256};  // both rows of a pair read the same luma
  ExpectFormulaForAllInputs(
      [&](int crValue, unsigned char* dst) {
        Bytes pair(2 * 1536);
        std::fill(cr.begin(), cr.end(), static_cast<unsigned char>(crValue));
        for (int row = 0; row < 256; ++row) {
          std::fill(cb.begin(), cb.end(), static_cast<unsigned char>(row));
          const IppStatus status =
              Lib::qvYCbCr420ToBGR(kAnyType, planes, steps, pair.data(), 1536, {512, 2});
          if (status != StatusOk) return status;
          if (!std::equal(pair.begin(), pair.begin() + 1536, pair.begin() + 1536))
            return StatusBadArgErr;
          dst = std::copy(pair.begin(), pair.begin() + 1536, dst);
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
      EXPECT_EQ(At(dst, dst.size() - 4), FromPacked(last[0], last[1], last[-1]));
      EXPECT_EQ(dst.back(), 9);
    }
  }
}

TEST(YCbCr420ToBGR, LeavesAnOddLastColumnAndRowUnwrittenAndSaysSo) {
  Bytes luma = Noise(6 * 6), cb = Noise(9), cr = Noise(10);
  unsigned char* planes[3] = {luma.data(), cb.data(), cr.data()};
  int steps[3] = {6, 3, 3};
  const struct {
    int width, height, status;
  } cases[] = {{5, 4, 35}, {4, 5, 35}, {5, 5, 35}, {1, 4, 35}, {4, 1, 35}, {6, 6, 0}};
  for (const auto& c : cases) {
    Bytes dst(18 * 6, 9);
    EXPECT_EQ(Lib::qvYCbCr420ToBGR(kAnyType, planes, steps, dst.data(), 18, {c.width, c.height}),
              c.status);
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 6; ++x) {
        const bool written = x < (c.width & ~1) && y < (c.height & ~1);
        const int block = y / 2 * 3 + x / 2;
        const Pixel expected =
            written ? FromPlanes(luma[6 * y + x], cb[block], cr[block]) : Pixel{9, 9, 9};
        ASSERT_EQ(At(dst, 18 * y + 3 * x), expected)
            << x << ' ' << y << " of " << c.width << " x " << c.height;
      }
  }
}

// Chroma of the upper row, or of the pairs; odd ends are left alone.
TEST(YCbCrToPlanes, SplitsWhatItIsGiven) {
  const Bytes packed = {1, 2, 3, 4, 90, 91, 5, 6, 7, 8, 92, 93, 94, 95, 96, 97, 98, 99};
  const Bytes luma = {1, 3, 90, 5, 7, 92, 94, 96, 98}, chroma = {2, 4, 90, 90};
  for (const bool fromPacked : {true, false})
    for (const int extent : {2, 3}) {
      Bytes y(9, 0), cb(2, 0), cr(2, 0);
      unsigned char* planes[3] = {y.data(), cb.data(), cr.data()};
      if (fromPacked) std::swap(planes[1], planes[2]);
      int steps[3] = {3, 2, 2};
      const IppiSize size = {extent, extent};
      EXPECT_EQ(fromPacked ? Lib::qvYCbCr422ToYCrCb420(kAnyType, packed.data(), 6, planes, steps,
                                                       size)
                           : Lib::qvYCbCr420(kAnyType, luma.data(), 3, chroma.data(), 4, planes,
                                             steps, size),
                StatusOk);
      EXPECT_EQ(y, (Bytes{1, 3, 0, 5, 7, 0, 0, 0, 0}));
      EXPECT_EQ(cb, (Bytes{2, 0}));
      EXPECT_EQ(cr, (Bytes{4, 0}));
    }
}

}  // namespace
}  // namespace qv::test
