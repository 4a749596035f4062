// PGM and PPM pictures to and from memory.
#ifndef QV_TOOLS_QVTOOL_IO_NETPBMFILE_H
#define QV_TOOLS_QVTOOL_IO_NETPBMFILE_H

#include <span>
#include <string>

#include "io/Pictures.h"

namespace qvtool {

bool LooksLikeNetpbm(std::string_view firstBytes);

// The bytes of the picture that begins there, or 0 if its header is damaged or cut short.
std::size_t NetpbmBytes(std::span<const unsigned char> bytes);

// Decodes P5 to a Grey frame and P6 to a Bgr frame. Samples of up to 16 bits are scaled to 255 and
// rounded.
Frame DecodeNetpbm(std::span<const unsigned char> bytes, const std::string& name,
                   const DecodeOptions& options);

// Writes a Grey frame as P5 and a Bgr frame as P6; any other layout throws an Error.
Bytes EncodeNetpbm(const Frame& frame, const std::string& name);

}  // namespace qvtool

#endif
