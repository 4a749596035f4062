// Any layout and coding to any other.
#ifndef QV_TOOLS_QVTOOL_IO_CONVERSION_H
#define QV_TOOLS_QVTOOL_IO_CONVERSION_H

#include "io/Frame.h"

namespace qvtool {

// Converts frames, and keeps the memory that it needs for that from one to the next.
//
// Luma and chroma become pixels by the coding of the frame, pixels become luma and chroma by the
// one asked for, and one coding becomes another by way of pixels. Between layouts of one coding
// samples are moved as they are, and chroma of another grid or siting is interpolated linearly.
// Grey goes from black to white as colours do. Alpha is kept, dropped, or made opaque.
class Conversion {
 public:
  // The frame in this layout and, if it has luma and chroma, this coding: the frame itself where it
  // has both, or one that is valid until the next call.
  const Frame& operator()(const Frame& frame, Layout layout, const Coding& coding) {
    return Convert(frame, layout, coding, result_) ? result_ : frame;
  }
  // The frame itself, or `result`.
  Frame& operator()(Frame& frame, Layout layout, const Coding& coding, Frame& result) {
    return Convert(frame, layout, coding, result) ? result : frame;
  }

 private:
  // False, and nothing is done, when the frame has both already.
  bool Convert(const Frame& frame, Layout layout, const Coding& coding, Frame& result);
  void ToPixels(const Frame& in, const Frame& out);
  void ToSamples(const Frame& in, const Frame& out);
  void Rearrange(const Frame& in, const Frame& out);
  void MoveChroma(const Frame& in, const Frame& out, int channel);
  void ChangePixels(const Frame& in, const Frame& out);

  Frame result_, pixels_, samples_;
  Frame source_, moved_;  // a channel each
};

// The colours over black, where they are not opaque.
void Flatten(const Frame& bgra, Frame& bgr);

}  // namespace qvtool

#endif
