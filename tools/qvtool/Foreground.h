// A picture with alpha that is laid over frames of any layout.
#ifndef QV_TOOLS_QVTOOL_FOREGROUND_H
#define QV_TOOLS_QVTOOL_FOREGROUND_H

#include "Arguments.h"
#include "io/Conversion.h"
#include "io/Frame.h"
#include "io/Samples.h"

namespace qvtool {

// Works on the bytes of a frame where they lie: the picture is kept as the bytes that frames of
// the layout and coding have in its place, with an alpha for every byte of samples or for every
// pixel. A chroma sample has the mean alpha of its pixels, those outside the picture being
// transparent, and their mean colour weighted by alpha. So bytes of opaque pixels arrive as they
// are, and transparent ones leave the frame's.
class Foreground {
 public:
  // Its upper left pixel comes to lie on `at`, which may be anywhere.
  Foreground(const Frame& picture, Position at);

  // Lays the picture over the frame, all of its alphas scaled by `opacity` / 255. False if it lies
  // outside, and nothing is done.
  bool LayOver(const Frame& frame, int opacity);

 private:
  IppiRect Visible(const Frame& frame) const;
  bool IsReadyFor(const Frame& frame) const;
  void MakeReadyFor(const Frame& frame, const IppiRect& visible);
  void AverageChannel(int channel, const Channel& picture);

  Conversion conversion_;
  Frame picture_;  // in BGRA
  Position at_;

  IppiSize frameSize_ = {};
  IppiRect place_ = {};  // of the two in their frame
  Frame colours_;        // in the frame's layout
  Frame alphas_;         // in the same, or of pixels a plane
};

}  // namespace qvtool

#endif
