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
  for (long long i = 0; i < n; ++i) {
    // With t = i / n: -t (1 - t)^2 / 2 before, -t^2 (1 - t) / 2 after, and (t + 4 t^2 - 3 t^3) / 2
    // on the right; the left one takes what is missing to 1. n^3 is 2^33, so the products stay
    // below 2^50.
    const long long rest = n - i, cube = n * n * n;
    const long long before = Round(-i * rest * rest * one, 2 * cube);
    const long long after = Round(-i * i * rest * one, 2 * cube);
    const long long right = Round((n * i * n + 4 * n * i * i - 3 * i * i * i) * one, 2 * cube);
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
