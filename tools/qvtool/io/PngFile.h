// PNG pictures to and from memory.
#ifndef QV_TOOLS_QVTOOL_IO_PNGFILE_H
#define QV_TOOLS_QVTOOL_IO_PNGFILE_H

#include <span>
#include <string>

#include "io/Pictures.h"

namespace qvtool {

bool LooksLikePng(std::string_view firstBytes);

// Decodes any PNG to 8 bits a sample: a grey one to a Grey frame, one with alpha or a transparent
// colour to a Bgra frame, all others to a Bgr frame. Samples are taken as they are, whatever gamma
// the file states; 16-bit samples are rounded to the nearest 8-bit value. `name` is what errors
// call the picture.
Frame DecodePng(std::span<const unsigned char> bytes, const std::string& name,
                const DecodeOptions& options);

// Encodes a Grey, Bgr or Bgra frame and its metadata; any other layout throws an Error. `level` is
// the compression effort from 1 (fast) to 9 (small).
Bytes EncodePng(const Frame& frame, const std::string& name, int level = 6);

}  // namespace qvtool

#endif
