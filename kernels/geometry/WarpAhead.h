// Asking for the source pixels of a tile before it is sampled.
#ifndef QV_KERNELS_GEOMETRY_WARPAHEAD_H
#define QV_KERNELS_GEOMETRY_WARPAHEAD_H

#include <stddef.h>

#include "dispatch/VariantIndex.h"
#include "kernels/geometry/GeometryChecks.h"
#include "kernels/geometry/WarpPlan.h"

namespace qv {

// A turned row crosses the source's rows at places that no processor foresees.
class WarpAhead {
 public:
  // Whether that pays for a source of this many bytes: it costs up to a tenth of the time where
  // nothing is gained. Measured with a last cache of 32 MiB that others use, too.
  static bool Pays(long long bytes) {
    constexpr ptrdiff_t kMost = ptrdiff_t{5} << 20;
    const ptrdiff_t share = LastCacheBytes / 6;
    return bytes >= (share < kMost ? share : kMost);
  }

  // `steps` calls of Fetch ask for everything: a few source rows for each row of the tile before,
  // so that no queue of requests is full for long.
  WarpAhead(const Footprint& f, const Corners& part, int steps)
      : first_(part.x0), last_(part.x1) {
    const double low = f.y - f.rows, high = f.y + f.rows;
    y_ = static_cast<ptrdiff_t>(low > part.y0 ? low : part.y0);
    end_ = static_cast<ptrdiff_t>(high < part.y1 ? high : part.y1) + 1;
    const ptrdiff_t rows = end_ > y_ ? end_ - y_ : 0;
    perStep_ = (rows + steps - 1) / steps;
    for (int i = 0; i < 2; ++i) {
      slope_[i] = ToFixed(f.slope[i]);
      low_[i] = ToFixed(f.x - f.half[i] + f.slope[i] * (static_cast<double>(y_) - f.y));
      extent_[i] = ToFixed(2 * f.half[i]);
    }
  }

  void Fetch(const GeometryImages& images, int step) {
    const int pixelBytes = PixelBytes(images.layout);
    const ptrdiff_t end = end_ - y_ < perStep_ ? end_ : y_ + perStep_;
    for (; y_ < end; ++y_) {
      const long long high0 = low_[0] + extent_[0], high1 = low_[1] + extent_[1];
      const long long low = (low_[0] > low_[1] ? low_[0] : low_[1]) >> kBits;
      const long long high = (high0 < high1 ? high0 : high1) >> kBits;
      for (int i = 0; i < 2; ++i) low_[i] += slope_[i];
      const long long from = (low > first_ ? low : first_) * pixelBytes;
      const long long to = (high < last_ ? high : last_) * pixelBytes;
      if (from > to) continue;
      for (int k = 0; k < images.count; ++k) {
        const unsigned char* const row = images.src[k] + y_ * step;
        for (long long at = from; at < to; at += kLine) __builtin_prefetch(row + at);
        __builtin_prefetch(row + to);
      }
    }
  }

 private:
  static constexpr int kBits = 16, kLine = 64;
  static long long ToFixed(double v) { return static_cast<long long>(v * (1 << kBits)); }

  ptrdiff_t y_, end_, perStep_;
  long long low_[2], slope_[2], extent_[2];
  long long first_, last_;
};

}  // namespace qv

#endif
