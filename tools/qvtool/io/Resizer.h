// Resampling of whole frames, by one rule for all their planes: the edges of the region and of the
// result fall on each other, and every sample counts at the place where it lies in its frame.
#ifndef QV_TOOLS_QVTOOL_IO_RESIZER_H
#define QV_TOOLS_QVTOOL_IO_RESIZER_H

#include <vector>

#include "io/Frame.h"

namespace qvtool {

// One image of samples, or of pixels, in a frame: its grid and where they lie in a unit of it.
struct SampleGrid {
  unsigned char* data;
  int step;
  IppiSize size;  // in units
  int shiftX, shiftY;
  Phase phase;
};

// A region whose edges may lie within pixels.
struct Area {
  Area(const IppiRect& region)
      : Area(region.x, region.y, region.width, region.height) {}
  Area(double x, double y, double width, double height)
      : x(x), y(y), width(width), height(height) {}

  double x, y, width, height;
};

// Resamples the part of `from` that lies in a region of its frame, in pixels, to all of `to`, whose
// frame is `size` pixels large. `pixels` is an enum qv_pixels, `filter` what qv_resample takes.
void Resample(int pixels, const SampleGrid& from, const Area& region, const SampleGrid& to,
              IppiSize size, int filter);

class Resizer {
 public:
  // A region of `in`, in pixels of its full size, to all of `out`, which gets this size and the
  // layout and coding of `in`. Colours count by their alpha.
  void operator()(const Frame& in, const IppiRect& region, IppiSize size, int filter, Frame& out);

 private:
  void ResizeUnits(const Frame& in, const Area& region, const Frame& out, int filter);
  void ResizeWithAlpha(const Frame& in, const Area& region, const Frame& out, int filter);

  Frame source_, result_;  // of packed frames, their planes
  std::vector<unsigned char> pixels_, resized_;
};

}  // namespace qvtool

#endif
