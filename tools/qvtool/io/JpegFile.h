// JPEG pictures to and from memory.
#ifndef QV_TOOLS_QVTOOL_IO_JPEGFILE_H
#define QV_TOOLS_QVTOOL_IO_JPEGFILE_H

#include <span>
#include <string>
#include <vector>

#include "io/Frame.h"

namespace qvtool {

bool LooksLikeJpeg(std::string_view firstBytes);

// Decodes a grey JPEG to a Grey frame, any other three-channel one to a Bgr frame. Damage that the
// decoder would paper over (missing or inconsistent data) is an error.
Frame DecodeJpeg(std::span<const unsigned char> bytes, const std::string& name);

// Encodes a Grey or Bgr frame, colour without subsampling; any other layout throws an Error.
// `quality` goes from 1 to 100.
std::vector<unsigned char> EncodeJpeg(const Frame& frame, const std::string& name, int quality);

}  // namespace qvtool

#endif
