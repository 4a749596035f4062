// How luma and chroma stand for colours, and where chroma lies.
#ifndef QV_TOOLS_QVTOOL_IO_CODING_H
#define QV_TOOLS_QVTOOL_IO_CODING_H

#include <optional>
#include <string>

#include "qvAcceleratedLib/qv.h"

namespace qvtool {

// Where chroma of 4:2:0 lies. That of 4:2:2 and 4:1:1 lies on the left one of its pixels.
enum class Siting {
  Centre,   // amid its four pixels (MPEG-1, JPEG)
  Left,     // between the left two (MPEG-2 and later)
  TopLeft,  // on the upper left one (DV of 625 lines)
};

struct Coding {
  int matrix = QV_BT601;
  int range = QV_STUDIO_RANGE;
  Siting siting = Siting::Left;

  bool HasColoursOf(const Coding& other) const {
    return matrix == other.matrix && range == other.range;
  }
};

// "BT.709, studio range".
std::string NameOf(const Coding& coding);

// What is known of a coding, from the fields of a stream or from arguments.
struct CodingHints {
  std::optional<int> matrix;
  std::optional<int> range;
  std::optional<Siting> siting;

  // The coding with what is known put in its place.
  Coding Over(Coding coding) const;
  // What is not known is as usual for frames of so many rows: BT.601 below 720 and BT.709 from
  // there on, studio range, chroma on the left.
  Coding ForRows(int rows) const;
};

// Where samples that there is one of for 2^shiftX columns and 2^shiftY rows of pixels lie among
// these, from their middle on and as parts of all of them.
struct Phase {
  double x, y;
};
Phase PhaseOf(int shiftX, int shiftY, Siting siting);

}  // namespace qvtool

#endif
