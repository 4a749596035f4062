// Headerless frames: the planes of one frame after the other, rows without padding.
#ifndef QV_TOOLS_QVTOOL_IO_RAWFRAMES_H
#define QV_TOOLS_QVTOOL_IO_RAWFRAMES_H

#include "io/FrameStream.h"

namespace qvtool {

// All planes of a frame, rows without padding; alpha as a plane of its own. `number` is what an
// error calls the frame.
void ReadPlanes(ByteSource& source, const Frame& frame, long number);
void WritePlanes(OutputFile& file, const Frame& frame);

class RawReader : public FrameReader {
 public:
  // Throws an Error when the size of the source is known and not one of whole frames.
  RawReader(std::unique_ptr<ByteSource> source, Layout layout, IppiSize size,
            const std::string& rate);

 private:
  bool ReadFrame(Frame& frame) override;

  Layout layout_;
  IppiSize size_;
  long frames_ = 0;
};

class RawWriter : public FrameWriter {
 public:
  explicit RawWriter(const OutputSpec& spec) : FrameWriter(spec.coding), file_(spec.path) {}
  void Finish() override { file_.Commit(); }

 private:
  Layout Holds(const LayoutInfo& info) const override { return info.layout; }
  void WriteFrame(const Frame& frame) override;

  OutputFile file_;
};

}  // namespace qvtool

#endif
