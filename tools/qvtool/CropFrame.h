// Parts of frames.
#ifndef QV_TOOLS_QVTOOL_CROPFRAME_H
#define QV_TOOLS_QVTOOL_CROPFRAME_H

#include <string>

#include "io/Frame.h"

namespace qvtool {

// Copies the pixels of a region. Throws a UsageError that names the argument when the region is not
// inside the frame, or begins between two chroma samples.
void CropFrame(const std::string& argument, const IppiRect& region, const Frame& in, Frame& out);

}  // namespace qvtool

#endif
