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
  RawReader(std::unique_ptr<ByteSource> source, Layout layout, IppiSize size,
            const std::string& rate);
  bool Next(Frame& frame) override;

 private:
  Layout layout_;
  IppiSize size_;
  long frames_ = 0;
};

class RawWriter : public FrameWriter {
 public:
  explicit RawWriter(const std::string& path) : file_(path) {}
  void Write(const Frame& frame) override;
  void Finish() override { file_.Commit(); }

 private:
  OutputFile file_;
};

}  // namespace qvtool

#endif
