// Frames, or parts of them, of one colour.
#ifndef QV_TOOLS_QVTOOL_FILLFRAME_H
#define QV_TOOLS_QVTOOL_FILLFRAME_H

#include "Arguments.h"
#include "io/Frame.h"

namespace qvtool {

// Fills the pixels of a region, and its part of an alpha plane, if there is one, with `alpha`.
// Throws an Error for layouts whose units have no fill: packed 4:2:2 and pairs of chroma samples.
void FillFrame(const Frame& frame, const IppiRect& region, const Colour& colour,
               unsigned char alpha = 255);

}  // namespace qvtool

#endif
