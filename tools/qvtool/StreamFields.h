// What operations make of the fields of a stream that tell of its rows and of the shape of its
// pixels, as they stand in a Y4M header.
#ifndef QV_TOOLS_QVTOOL_STREAMFIELDS_H
#define QV_TOOLS_QVTOOL_STREAMFIELDS_H

#include "io/FrameStream.h"

namespace qvtool {

// All rows belong to one picture: "It", "Ib", "Im" and "I?" become "Ip".
VideoFields Progressive(const VideoFields& fields);

// Of the parameters of a frame those that do not tell of its fields.
std::string WithoutFieldOrder(const std::string& parameters);

// The rows change their fields: "It" becomes "Ib", and the other way.
VideoFields SwapRowParity(const VideoFields& fields);

// What were rows of fields are rows no more: "It", "Ib" and "Im" become "I?".
VideoFields WithoutRows(const VideoFields& fields);

// As many pixels as `after` take the place of `before`: the ratio of "A", the width of a pixel to
// its height, changes so that the picture keeps its shape. What is unknown stays so.
VideoFields ScaleAspect(const VideoFields& fields, IppiSize before, IppiSize after);

// Pixels lie on their side: "A" the other way round.
VideoFields TurnAspect(const VideoFields& fields);

}  // namespace qvtool

#endif
