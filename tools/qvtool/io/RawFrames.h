// Headerless frames: the planes of one frame after the other, rows without padding.
#ifndef QV_TOOLS_QVTOOL_IO_RAWFRAMES_H
#define QV_TOOLS_QVTOOL_IO_RAWFRAMES_H

#include "io/FrameStream.h"

namespace qvtool {

// Reads all planes of a frame, rows without padding; alpha as a plane of its own. `pieces` is
// memory that is used again, `number` is what an error calls the frame.
void ReadPlanes(ByteSource& source, const Frame& frame, Pieces& pieces, long number);
// Passes over the planes of one.
void SkipPlanes(ByteSource& source, Layout layout, IppiSize size, long number);

class RawReader : public FrameReader {
 public:
  // Throws an Error when the size of the source is known and not one of whole frames.
  RawReader(std::unique_ptr<ByteSource> source, Layout layout, IppiSize size,
            const std::string& rate);
  StreamInfo Describe() override;

 private:
  bool ReadFrame(Frame& frame) override;

  Layout layout_;
  IppiSize size_;
  long frames_ = 0;
  Pieces pieces_;
  std::vector<unsigned char> packed_;
};

class RawWriter : public FrameWriter {
 public:
  explicit RawWriter(const OutputSpec& spec) : FrameWriter(spec.coding), file_(spec.path) {}
  void Finish() override { file_.Commit(); }

 private:
  Layout Holds(const LayoutInfo& info) const override { return info.layout; }
  void WriteFrame(const Frame& frame) override;

  OutputFile file_;
  Pieces pieces_;
  std::vector<unsigned char> packed_;
};

}  // namespace qvtool

#endif
