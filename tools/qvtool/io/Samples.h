// The colours of a part of a frame as three bytes a pixel, whatever the layout, and back.
#ifndef QV_TOOLS_QVTOOL_IO_SAMPLES_H
#define QV_TOOLS_QVTOOL_IO_SAMPLES_H

#include "io/Frame.h"

namespace qvtool {

// Into `colours`, a plane of three bytes a pixel and of the size of `region`: B, G, R; Y, Cb, Cr;
// or a grey sample three times. A chroma sample goes to every pixel that it belongs to.
void LoadColours(const Frame& frame, const IppiRect& region, const Plane& colours);

// The way back: a chroma sample becomes the rounded mean of its pixels, where those outside of the
// region count with its old value. Of grey the first byte is taken. What was loaded and is stored
// unchanged leaves the frame as it was.
void StoreColours(const Plane& colours, const Frame& frame, const IppiRect& region);

}  // namespace qvtool

#endif
