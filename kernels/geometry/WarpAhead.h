// Asking for the pixels of a tile before it is sampled, those to be written included.
#ifndef QV_KERNELS_GEOMETRY_WARPAHEAD_H
#define QV_KERNELS_GEOMETRY_WARPAHEAD_H

#include <stddef.h>

#include "dispatch/VariantIndex.h"
#include "kernels/geometry/GeometryChecks.h"
#include "kernels/geometry/WarpPlan.h"

namespace qv {

// GCC takes a function that does nothing but prefetch for one without effects, and leaves its calls
// out.
#define QV_PREFETCHES __attribute__((always_inline)) inline

// A turned row crosses the source's rows at places that no processor foresees.
class WarpAhead {
 public:
  // Whether it pays to ask for a footprint of so many rows to either side in a source of this many
  // bytes, or for a destination. Asking costs by the row: up to a sixth of the time where a tile
  // crosses many of them, which is lost on a source that stays in the last cache, and hardly
  // anything where they are few, while others may take the cache away. The lines of a destination
  // cost least. Measured with a last cache of 32 MiB, alone and beside others that use it, too.
  static bool FetchPays(double bytes, double rows) {
    return IsShare(bytes, rows < 48 ? 5 : 14);
  }
  static bool ClaimPays(double bytes) { return IsShare(bytes, 5); }

  // Asks for lines that are going to be written.
  static QV_PREFETCHES void Claim(const unsigned char* p, ptrdiff_t bytes) {
    for (ptrdiff_t at = 0; at < bytes; at += kLine) __builtin_prefetch(p + at, 1);
  }

  // `steps` calls of Fetch ask for everything: a few source rows for each row of the tile before,
  // so that no queue of requests is full for long.
  WarpAhead(const Footprint& f, const Corners& part, int pixelBytes, int steps)
      : first_(static_cast<long long>(part.x0) * pixelBytes),
        last_(static_cast<long long>(part.x1) * pixelBytes) {
    const double low = f.y - f.rows, high = f.y + f.rows;
    y_ = static_cast<ptrdiff_t>(low > part.y0 ? low : part.y0);
    end_ = static_cast<ptrdiff_t>(high < part.y1 ? high : part.y1) + 1;
    const ptrdiff_t rows = end_ > y_ ? end_ - y_ : 0;
    perStep_ = (rows + steps - 1) / steps;
    for (int i = 0; i < 2; ++i) {
      slope_[i] = ToFixed(f.slope[i] * pixelBytes);
      low_[i] = ToFixed((f.x - f.half[i] + f.slope[i] * (static_cast<double>(y_) - f.y)) *
                        pixelBytes);
      high_[i] = low_[i] + ToFixed(2 * f.half[i] * pixelBytes);
    }
  }

  void Fetch(const GeometryImages& images, int step) {
    const ptrdiff_t rows = end_ - y_ < perStep_ ? end_ - y_ : perStep_;
    if (rows <= 0) return;
    for (int k = 0; k < images.count; ++k) FetchRows(images.src[k] + y_ * step, step, rows);
    y_ += rows;
    for (int i = 0; i < 2; ++i) low_[i] += rows * slope_[i], high_[i] += rows * slope_[i];
  }

 private:
  static constexpr int kBits = 16, kLine = 64;
  static long long ToFixed(double v) { return static_cast<long long>(v * (1 << kBits)); }

  // At least `mib` of 32 MiB, or as large a share of a smaller last cache.
  static bool IsShare(double bytes, int mib) {
    constexpr ptrdiff_t kMost = ptrdiff_t{32} << 20;
    const ptrdiff_t cache = LastCacheBytes < kMost ? LastCacheBytes : kMost;
    return bytes >= static_cast<double>(cache / 32 * mib);
  }

  QV_PREFETCHES void FetchRows(const unsigned char* row, ptrdiff_t step, ptrdiff_t rows) const {
    long long low0 = low_[0], low1 = low_[1], high0 = high_[0], high1 = high_[1];
    for (; rows > 0; --rows, row += step) {
      const long long low = (low0 > low1 ? low0 : low1) >> kBits;
      const long long high = (high0 < high1 ? high0 : high1) >> kBits;
      low0 += slope_[0], high0 += slope_[0], low1 += slope_[1], high1 += slope_[1];
      const long long from = low > first_ ? low : first_, to = high < last_ ? high : last_;
      if (from > to) continue;
      for (long long at = from; at < to; at += kLine) __builtin_prefetch(row + at);
      __builtin_prefetch(row + to);
    }
  }

  ptrdiff_t y_, end_, perStep_;
  long long low_[2], high_[2], slope_[2];  // in bytes of a row
  long long first_, last_;
};

#undef QV_PREFETCHES

}  // namespace qv

#endif
