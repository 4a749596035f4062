// The definition of a warped pixel: positions and the three ways to sample, one pixel at a time.
#ifndef QV_KERNELS_GEOMETRY_WARPPLAIN_H
#define QV_KERNELS_GEOMETRY_WARPPLAIN_H

#include "kernels/KeysCubic.h"
#include "kernels/geometry/WarpSource.h"
#include "kernels/level/Common.h"
#include "kernels/level/PlainFloats.h"

namespace qv::QV_LEVEL {

QV_INLINE long long PositionAt(const WarpSegment& s, int axis, int column) {
  const float t = static_cast<float>(column - s.first - s.count / 2);
  float p = RoundToFloat(s.coeff[axis][3] * t);
  for (int i = 2; i >= 0; --i) {
    p = RoundToFloat(p + s.coeff[axis][i]);
    if (i > 0) p = RoundToFloat(p * t);
  }
  return s.base[axis] + static_cast<int>(p);
}

// `v` brought into 0 .. high.
QV_INLINE long long ClampPosition(long long v, long long high) {
  return v < 0 ? 0 : v > high ? high : v;
}

// Pixel (x, y) of the source, or the nearest one that it has.
template <int kChannels>
QV_INLINE const Byte* TapAt(const WarpSource& s, long long x, long long y) {
  return s.first + static_cast<ptrdiff_t>(ClampPosition(y, s.height - 1)) * s.step +
         static_cast<ptrdiff_t>(ClampPosition(x, s.width - 1)) * kChannels;
}

template <int kChannels>
QV_INLINE void SampleNearest(const WarpSource& s, long long px, long long py, Byte* out) {
  const Byte* tap = TapAt<kChannels>(s, px >> kWarpBits, py >> kWarpBits);
  for (int c = 0; c < kChannels; ++c) out[c] = tap[c];
}

// Sums along x are cut off below their 7th (linear) and 6th (cubic) fractional bit. What is lost,
// half a unit there on average, comes back with what makes the last shift round to nearest.
constexpr int kLinearRound = (1 << 20) + (1 << 13);
constexpr int kCubicRound = (1 << 19) + (1 << 13);

// Along x first, to 7 fractional bits (255 * 2^7 fits 16 bits), then along y. Both weights of a
// pair add up to 2^14, so the second sum stays below 2^30.
template <int kChannels>
QV_INLINE void SampleLinear(const WarpSource& s, long long px, long long py, Byte* out) {
  constexpr int kOne = 1 << kWarpBits;
  px = ClampPosition(px, static_cast<long long>(s.width - 1) << kWarpBits);
  py = ClampPosition(py, static_cast<long long>(s.height - 1) << kWarpBits);
  const long long x = px >> kWarpBits, y = py >> kWarpBits;
  const int right = static_cast<int>(px & (kOne - 1)), below = static_cast<int>(py & (kOne - 1));
  const Byte* tap[2][2] = {{TapAt<kChannels>(s, x, y), TapAt<kChannels>(s, x + 1, y)},
                           {TapAt<kChannels>(s, x, y + 1), TapAt<kChannels>(s, x + 1, y + 1)}};
  for (int c = 0; c < kChannels; ++c) {
    const int upper = (tap[0][0][c] * (kOne - right) + tap[0][1][c] * right) >> 7;
    const int lower = (tap[1][0][c] * (kOne - right) + tap[1][1][c] * right) >> 7;
    out[c] = static_cast<Byte>((upper * (kOne - below) + lower * below + kLinearRound) >> 21);
  }
}

// Along x first, to 6 fractional bits, which fit 16 bits; the second sum fits 32. Weights are
// rounded, which a unit of 2^-kWarpBits each makes up for.
constexpr double kCubicLeast = kKeysLeast - 0x1p-13, kCubicMost = kKeysMost + 0x1p-13;
static_assert(255 * 64 * kCubicLeast >= INT16_MIN && 255 * 64 * kCubicMost <= INT16_MAX);
static_assert(255 * 0x1p20 * (kCubicMost * kCubicMost + kCubicLeast * kCubicLeast) + kCubicRound <=
              INT32_MAX);

template <int kChannels>
QV_INLINE void SampleCubic(const WarpSource& s, long long px, long long py, Byte* out) {
  constexpr int kTaps[4] = {0, 2, 1, 3};  // where the table keeps taps -1, 0, 1, 2
  constexpr int kMask = kCubicPhases - 1, kDrop = kWarpBits - kCubicBits;
  px = ClampPosition(px, static_cast<long long>(s.width - 1) << kWarpBits);
  py = ClampPosition(py, static_cast<long long>(s.height - 1) << kWarpBits);
  const short* const across = kCubicTable.tap[(px >> kDrop) & kMask];
  const short* const down = kCubicTable.tap[(py >> kDrop) & kMask];
  const long long x = px >> kWarpBits, y = py >> kWarpBits;
  int sum[kChannels] = {};
  for (int i = 0; i < 4; ++i) {
    int row[kChannels] = {};
    for (int k = 0; k < 4; ++k) {
      const Byte* tap = TapAt<kChannels>(s, x - 1 + k, y - 1 + i);
      for (int c = 0; c < kChannels; ++c) row[c] += tap[c] * across[kTaps[k]];
    }
    for (int c = 0; c < kChannels; ++c) sum[c] += (row[c] >> 8) * down[kTaps[i]];
  }
  for (int c = 0; c < kChannels; ++c) out[c] = ToByte((sum[c] + kCubicRound) >> 20);
}

template <int kChannels>
QV_INLINE void SamplePixel(const WarpSource& s, long long px, long long py, Byte* out) {
  if (s.method == InterpolateNearest)
    SampleNearest<kChannels>(s, px, py, out);
  else if (s.method == InterpolateLinear)
    SampleLinear<kChannels>(s, px, py, out);
  else
    SampleCubic<kChannels>(s, px, py, out);
}

// Positions may have any size here, so images beyond what vector rows address end here as well.
template <int kChannels>
QV_INLINE void WarpRowPlain(const WarpSource& s, const WarpSegment* segments, int count, int first,
                            int last, Byte* dst) {
  for (const WarpSegment* g = segments; g != segments + count; ++g) {
    // Columns counted from the segment's first: the last one may be the largest int there is.
    const int end = last - g->first < g->count ? last - g->first : g->count - 1;
    for (int i = g->first < first ? first - g->first : 0; i <= end; ++i) {
      const int x = g->first + i;
      SamplePixel<kChannels>(s, PositionAt(*g, 0, x), PositionAt(*g, 1, x),
                             dst + static_cast<ptrdiff_t>(x) * kChannels);
    }
  }
}

}  // namespace qv::QV_LEVEL

#endif
