// A foreground with alpha laid over a frame, for a whole call.
#ifndef QV_QVACCELERATEDLIB_OVERLAY_H
#define QV_QVACCELERATEDLIB_OVERLAY_H

#include "dispatch/Hidden.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

struct OverlayFrame {
  unsigned char* data;
  int step;
  IppiSize size;
  int channels;
};

// Its top-left pixel belongs on pixel (x, y) of the frame, wherever that is.
struct OverlayLayer {
  const unsigned char* data;
  int step;
  IppiSize size;
  int channels;
  const unsigned char* alpha;
  int alphaStep;
  int x, y;
  int opacity;
  int alphaType;
};

// qv_over (qv.h).
QV_HIDDEN IppStatus Over(const OverlayFrame& frame, const OverlayLayer& layer);

}  // namespace qv

#endif
