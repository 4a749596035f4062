// Random resizes, and what the documentation says they write.
#ifndef QV_TESTS_SUPPORT_RESIZECASES_H
#define QV_TESTS_SUPPORT_RESIZECASES_H

#include <algorithm>
#include <cmath>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "support/Random.h"

namespace qv::test {

struct ResizeCase {
  IppiSize srcSize;
  IppiRect roi;
  double xFactor, yFactor;
  IppiSize dstSize;

  // What of the region lies inside the source.
  IppiSize Clipped() const {
    return {std::min(roi.width, srcSize.width - roi.x),
            std::min(roi.height, srcSize.height - roi.y)};
  }
};

// From 1/20 to 20, often a ratio of small numbers.
inline double RandomFactor(Random& random) {
  if (random.OneIn(3)) return random.Between(1, 6) / double(random.Between(1, 6));
  return std::exp(random.Between(-3.0, 3.0));
}

inline double RandomReduction(Random& random) {
  const double factor = RandomFactor(random);
  return std::min(factor, 1 / factor);
}

// From a region, all of its image or not, of about the size that gives the destination.
inline ResizeCase RandomResize(Random& random, IppiSize dst, double xFactor, double yFactor) {
  const auto source = [&](int size, double factor) {
    return std::clamp(int(size / factor + random.Between(-1.0, 1.0)), 1, 40000);
  };
  ResizeCase r = {};
  r.dstSize = dst;
  r.xFactor = xFactor;
  r.yFactor = yFactor;
  r.roi = {0, 0, source(dst.width, xFactor), source(dst.height, yFactor)};
  if (double(r.roi.width) * r.roi.height > 4e6) r.roi.height = 1 + int(4e6 / r.roi.width);
  r.srcSize = {r.roi.width, r.roi.height};
  if (random.OneIn(3)) {
    r.roi.x = random.Between(0, 40);
    r.roi.y = random.Between(0, 5);
    r.srcSize.width = std::max(r.srcSize.width + random.Between(-3, 40), 1) + r.roi.x;
    r.srcSize.height = std::max(r.srcSize.height + random.Between(-1, 5), 1) + r.roi.y;
  }
  return r;
}

// Columns or rows of a whole image: 0 if there is nothing to write.
inline int Extent(int length, double factor, int available) {
  const double extent = length * factor + 1e-07;
  return extent >= available ? available : extent >= 1 ? static_cast<int>(extent) : extent >= .5;
}

// The columns or rows written, [first, end), or first beyond end.
struct Written {
  long long first, end;
};

// In bands, of those from `from` up to `to`.
inline Written WrittenInBands(int origin, int length, double factor, double shift, int from,
                              int to) {
  double low = origin * factor + shift;
  double high = (static_cast<double>(origin) + length) * factor + shift;
  low = low > from ? low : from;
  high = high < to ? high : to;
  return {static_cast<long long>(std::min(low, 0x1p62) + 0.4999999999),
          static_cast<long long>(std::max(high, -0x1p62) + 0.4999999999)};
}

}  // namespace qv::test

#endif
