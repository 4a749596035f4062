// A picture in memory: one to four planes of 8-bit samples.
#ifndef QV_TOOLS_QVTOOL_IO_FRAME_H
#define QV_TOOLS_QVTOOL_IO_FRAME_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "io/Coding.h"
#include "io/Layout.h"
#include "io/Metadata.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qvtool {

// One plane of a frame: `rows` rows of `columns` units of `bytes` bytes, `step` bytes apart.
struct Plane {
  unsigned char* data = nullptr;
  int step = 0;
  int columns = 0;
  int rows = 0;
  int bytes = 0;

  IppiSize Size() const { return {columns, rows}; }
  // The same plane seen as rows of single bytes, for operations that treat all bytes alike.
  IppiSize SizeInBytes() const { return {columns * bytes, rows}; }
  int RowBytes() const { return columns * bytes; }
  unsigned char* Row(int y) const { return data + static_cast<std::ptrdiff_t>(y) * step; }

  // The type that the operations know these units by: one or three bytes. Throws an Error that
  // names `operation` for any other unit.
  CqvAccLib::qvDataType Type(const char* operation) const;

  // The units that cover the pixels of `region`, given in pixels of the frame, rounded outwards.
  Plane Cut(const IppiRect& region, const PlaneShape& shape) const;
};

// A picture that was decoded at a reduced size: what it measures in its file, in pixels, and the
// part of the frame that it fills, whose edges may lie within pixels.
struct Reduction {
  IppiSize size;
  double x, y, width, height;
};

class Frame {
 public:
  Frame() = default;
  Frame(Layout layout, int width, int height) { Reset(layout, width, height); }

  // Gives the frame this shape. The memory is kept when the shape is the same as before; otherwise
  // the samples are undefined afterwards. Throws an Error when such a frame cannot be held.
  void Reset(Layout layout, int width, int height);
  void ResetLike(const Frame& other) {
    Reset(other.layout_, other.width_, other.height_);
    Inherit(other);
  }
  // Takes over what the other one has besides its samples.
  void Inherit(const Frame& other);

  bool Empty() const { return planes_ == 0; }
  Layout GetLayout() const { return layout_; }
  const LayoutInfo& Info() const { return Describe(layout_); }
  int Width() const { return width_; }
  int Height() const { return height_; }
  IppiSize Size() const { return {width_, height_}; }
  IppiRect Bounds() const { return {0, 0, width_, height_}; }
  // Of the picture in its file, which the frame may hold at a reduced size.
  IppiSize FullSize() const { return reduction ? reduction->size : Size(); }

  int Planes() const { return planes_; }
  const Plane& PlaneAt(int index) const { return plane_[index]; }

  // Of the packed form, four bytes a pixel.
  std::size_t PackedBytes() const {
    return static_cast<std::size_t>(width_) * 4 * static_cast<std::size_t>(height_);
  }

  Frame Clone() const;

  // What the samples of frames with luma and chroma mean.
  Coding coding;
  // The parameters of a Y4M frame header, carried along unread.
  std::string parameters;
  // What the picture file said, if the frame is from one.
  std::shared_ptr<const Metadata> metadata;
  std::optional<Reduction> reduction;

 private:
  Layout layout_ = Layout::Grey;
  int width_ = 0;
  int height_ = 0;
  int planes_ = 0;
  Plane plane_[4];
  struct Release {
    void operator()(unsigned char* memory) const { std::free(memory); }
  };
  std::unique_ptr<unsigned char, Release> memory_;  // from the start of a page on
};

// Between the packed form of files (four bytes a pixel, `width * 4` bytes a row) and the two planes
// of a Bgra frame.
void UnpackAlpha(const unsigned char* packed, const Frame& frame);
void PackAlpha(const Frame& frame, unsigned char* packed);

}  // namespace qvtool

#endif
