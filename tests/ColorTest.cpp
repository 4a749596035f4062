// qvYCbCr422ToBGR and qvYCbCr420ToBGR: the formulas for every input at every level. Odd sizes are
// kernelcheck's, statuses the corpus', and the digests of the self-test hold what is split.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "support/Bytes.h"
#include "support/Levels.h"

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

// Black and white.
static_assert(FromPacked(16, 128, 128) == Pixel{0, 0, 0});
static_assert(FromPacked(235, 128, 128) == Pixel{254, 254, 254});
static_assert(FromPlanes(16, 128, 128) == Pixel{0, 0, 0});
static_assert(FromPlanes(235, 128, 128) == Pixel{255, 255, 255});

// One image per Cr, a row per Cb, a column per Y: all 2^24 inputs, each at an even and at an odd
// pixel.
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

}  // namespace
}  // namespace qv::test
