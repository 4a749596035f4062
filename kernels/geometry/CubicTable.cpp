#include "kernels/KeysCubic.h"
#include "kernels/geometry/WarpSource.h"

namespace qv {

namespace {

// n / d rounded to nearest, d above 0.
constexpr long long Round(long long n, long long d) {
  return n >= 0 ? (2 * n + d) / (2 * d) : -((-2 * n + d) / (2 * d));
}

constexpr CubicTable MakeTable() {
  CubicTable table{};
  constexpr long long n = kCubicPhases, one = 1 << kWarpBits;
  constexpr auto twoA = static_cast<long long>(2 * kKeysA);
  static_assert(twoA == 2 * kKeysA, "quotients of integers over 2 n^3");
  for (long long i = 0; i < n; ++i) {
    // With f = i / n the tap on the right is -a f + (2 a + 3) f^2 - (a + 2) f^3; the left one takes
    // what is left of 1. n^3 is 2^33, so the products stay below 2^52.
    const long long rest = n - i, cube = n * n * n;
    const long long before = Round(twoA * i * rest * rest * one, 2 * cube);
    const long long after = Round(twoA * i * i * rest * one, 2 * cube);
    const long long right = Round(
        (-twoA * n * n + (2 * twoA + 6) * n * i - (twoA + 4) * i * i) * i * one, 2 * cube);
    table.tap[i][0] = static_cast<short>(before);
    table.tap[i][1] = static_cast<short>(right);
    table.tap[i][2] = static_cast<short>(one - before - right - after);
    table.tap[i][3] = static_cast<short>(after);
  }
  return table;
}

}  // namespace

constinit const CubicTable kCubicTable = MakeTable();

}  // namespace qv
