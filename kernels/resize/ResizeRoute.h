// The way that a call of qvResize takes: by which method, by the whole-image kernel or by the band
// kernel, and with how many bands.
#ifndef QV_KERNELS_RESIZE_RESIZEROUTE_H
#define QV_KERNELS_RESIZE_RESIZEROUTE_H

#include <stdint.h>

#include "kernels/Layout.h"
#include "kernels/resize/Resize.h"

namespace qv {

// Decides when it is made, checks nothing, and wants a FloatEnvironment for all that it does.
//
// A whole image that changes by at most a pixel each way is not worth a filter: nearest neighbour.
// Area averaging that enlarges is Lanczos, area averaging that does not is never cut; nor is what
// ResizeBandBufferSize refuses.
class ResizeRoute {
 public:
  // `layout` kGrey or kTriples; `mostBands` as the heights allow.
  ResizeRoute(const ResizeCall& call, Layout layout, int mostBands);

  // 1: RunWhole. More: RunRows for each band of so many rows, the last of which takes the
  // remainder, or for all rows at once, with the same bytes and the status of the last band. Below
  // 1 there is nothing to do.
  int bands() const { return bands_; }
  int rowsPerBand() const { return bands_ > 1 ? call_.dstRoiSize.height / bands_ : 0; }

  // Tells calls apart whose pixels take different times.
  uintptr_t kind() const {
    return static_cast<uintptr_t>(PixelBytes(layout_) + call_.interpolation * 4ll);
  }

  IppStatus RunWhole() const;
  IppStatus RunRows(int first, int length) const;

  // See WholeSourcePosition.
  IppStatus SourcePosition(int x, int y, double position[2]) const {
    return bands_ > 1 ? BandSourcePosition(call_, x, y, position)
                      : WholeSourcePosition(call_, x, y, position);
  }

 private:
  ResizeCall call_;
  Layout layout_;
  int bands_;
};

}  // namespace qv

#endif
