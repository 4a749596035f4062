// WebP pictures from memory, in builds that have libwebp.
#ifndef QV_TOOLS_QVTOOL_IO_WEBPFILE_H
#define QV_TOOLS_QVTOOL_IO_WEBPFILE_H

#include <span>
#include <string>

#include "io/Pictures.h"

namespace qvtool {

bool LooksLikeWebp(std::string_view firstBytes);

// Decodes a still picture to a Bgr frame, or one with alpha to a Bgra frame.
Frame DecodeWebp(std::span<const unsigned char> bytes, const std::string& name,
                 const DecodeOptions& options);

}  // namespace qvtool

#endif
