// The operations of CqvAccLib themselves, for those who want their bytes: what --exact-api runs.
#ifndef QV_TOOLS_QVTOOL_EXACTAPI_H
#define QV_TOOLS_QVTOOL_EXACTAPI_H

#include "io/Frame.h"

namespace qvtool {

// qvResize on every plane, each from the grid that it has in the one frame to the one in the other;
// qvResizeYUV422 on yuyv frames. `out` has its shape already.
void ExactResize(const Frame& in, const IppiRect& region, const Frame& out, int method);

// qvYCbCr422ToBGR, qvYCbCr420ToBGR, qvYCbCr422ToYCrCb420 and qvYCbCr420.
class ExactConverter {
 public:
  // Bgr, I420 or Yv12; any other throws a UsageError.
  explicit ExactConverter(Layout target);

  // Frames that the operations do not take throw an Error.
  Frame& operator()(const Frame& in, Frame& out);

 private:
  Layout target_;
  Frame planes_;
};

}  // namespace qvtool

#endif
