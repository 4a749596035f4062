// Frames, or parts of them, of one colour.
#ifndef QV_TOOLS_QVTOOL_FILLFRAME_H
#define QV_TOOLS_QVTOOL_FILLFRAME_H

#include "Arguments.h"
#include "io/Frame.h"

namespace qvtool {

// Fills the pixels of a region, and its part of an alpha plane, if there is one, with `alpha`.
// A chroma sample takes the colour when any of its pixels does.
void FillFrame(const Frame& frame, const IppiRect& region, const Colour& colour,
               unsigned char alpha = 255);

}  // namespace qvtool

#endif
