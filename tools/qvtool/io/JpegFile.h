// JPEG pictures to and from memory.
#ifndef QV_TOOLS_QVTOOL_IO_JPEGFILE_H
#define QV_TOOLS_QVTOOL_IO_JPEGFILE_H

#include <span>
#include <string>

#include "io/Pictures.h"

namespace qvtool {

bool LooksLikeJpeg(std::string_view firstBytes);

// Decodes a grey JPEG to a Grey frame, any other to a Bgr frame, CMYK and YCCK by what the inks let
// through. Damage that the decoder would paper over (missing or inconsistent data) is an error.
//
// A picture that is to be reduced at least four times is decoded at a half, a quarter or an eighth
// of its size, as long as it still is to be reduced at least twice: the frame says so.
Frame DecodeJpeg(std::span<const unsigned char> bytes, const std::string& name,
                 const DecodeOptions& options);

// Encodes a Grey or Bgr frame and its metadata, colour without subsampling; any other layout throws
// an Error. `quality` goes from 1 to 100.
Bytes EncodeJpeg(const Frame& frame, const std::string& name, int quality);

}  // namespace qvtool

#endif
