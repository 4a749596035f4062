// What picture files say besides their pixels, and what of it travels from file to file.
#ifndef QV_TOOLS_QVTOOL_IO_METADATA_H
#define QV_TOOLS_QVTOOL_IO_METADATA_H

#include <string>
#include <string_view>
#include <vector>

namespace qvtool {

using Bytes = std::vector<unsigned char>;

// Samples to a unit of length, or (Aspect) their numbers across and down against each other.
struct Density {
  enum Unit { None, Aspect, PerInch, PerCentimetre, PerMetre };
  Unit unit = None;
  double x = 0, y = 0;

  // The same in another unit of length; aspects, and what is unknown, stay as they are.
  Density In(Unit wanted) const;
};

struct Metadata {
  Bytes exif;  // from its byte order mark on, "II" or "MM"
  Bytes icc;
  std::vector<std::string> comments;
  Density density;

  // Which sides of the scene the first row and column of pixels are: 1 to 8 as in EXIF's tag, 1 if
  // it is missing or damaged. 1 is top and left.
  int Orientation() const;
  // After the pixels were turned: the tag says 1, a density has changed sides with them. The
  // thumbnail in the EXIF data, a picture of what once was, goes.
  void SetUpright();

  // The profile, if it describes grey (a channel) or red, green and blue (three), or none.
  const Bytes& ProfileFor(int channels) const;
};

// EXIF data that give an orientation and nothing else.
Bytes ExifOf(int orientation);

// What follows the bytes that mark EXIF data in a JPEG segment, or nothing.
std::string_view ExifIn(std::string_view segment);

}  // namespace qvtool

#endif
