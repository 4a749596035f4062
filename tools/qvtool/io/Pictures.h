// The picture formats: how each is recognised, read and written.
#ifndef QV_TOOLS_QVTOOL_IO_PICTURES_H
#define QV_TOOLS_QVTOOL_IO_PICTURES_H

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "io/Frame.h"

namespace qvtool {

enum class FileFormat { Png, Jpeg, Netpbm, Webp, Tiff, Y4m, Raw };

const char* NameOf(FileFormat format);

// How pictures are read.
struct DecodeOptions {
  // Reads headers alone: the frame has its layout, its size and the metadata that stands before the
  // samples, and nothing was written to its planes.
  bool headersOnly = false;
  // Leaves pixels as they lie in the file, and its orientation with them. Otherwise they are turned
  // upright.
  bool keepOrientation = false;
  // Frames of this size are made so many times smaller, both ways, by what is done first to them.
  std::function<double(IppiSize)> reduction;

  // For a picture of this size in its file.
  double ReductionOf(IppiSize size, const Metadata& metadata) const;
  // What that size becomes when the picture is turned, if it is.
  IppiSize Turned(IppiSize size, const Metadata& metadata) const;
};

// Frame::Reset for a picture that is to be decoded; errors name it.
void ResetFor(Frame& frame, Layout layout, int width, int height, const std::string& name);

// Turns the pixels of a grey or colour frame as its metadata says, which says then that they are
// upright.
void TurnUpright(Frame& frame);

struct PictureFormat {
  FileFormat format;
  bool (*looksLike)(std::string_view firstBytes);  // twelve of them
  Frame (*decode)(std::span<const unsigned char>, const std::string& name, const DecodeOptions&);
  // Null for a format that is only read. The quality is that of a JPEG.
  Bytes (*encode)(const Frame&, const std::string& name, int quality);
  bool holdsAlpha;  // when it is written
};

// The format of a picture that begins so, or null.
const PictureFormat* PictureFormatOf(std::string_view firstBytes);
// Null for Y4M and headerless frames, and for formats that the program was built without.
const PictureFormat* PictureFormatOf(FileFormat format);

// The names of formats that pictures are read from, for messages: "PNG, JPEG, ...".
std::string PictureFormatNames();

}  // namespace qvtool

#endif
