// TIFF pictures from memory, in builds that have libtiff.
#ifndef QV_TOOLS_QVTOOL_IO_TIFFFILE_H
#define QV_TOOLS_QVTOOL_IO_TIFFFILE_H

#include <span>
#include <string>

#include "io/Pictures.h"

namespace qvtool {

bool LooksLikeTiff(std::string_view firstBytes);

// Decodes the first page of a file, of any kind that libtiff makes pixels of: one channel of grey
// to a Grey frame, one with alpha to a Bgra frame, any other to a Bgr frame.
Frame DecodeTiff(std::span<const unsigned char> bytes, const std::string& name,
                 const DecodeOptions& options);

}  // namespace qvtool

#endif
