// Y4M: uncompressed video with a line of text before the stream and before every frame.
#ifndef QV_TOOLS_QVTOOL_IO_Y4MFILE_H
#define QV_TOOLS_QVTOOL_IO_Y4MFILE_H

#include "io/FrameStream.h"

namespace qvtool {

bool LooksLikeY4m(std::string_view firstBytes);

// Reads 4:2:0 in all its sitings, 4:1:1, 4:2:2, 4:4:4 with or without alpha, mono; and 4:2:0,
// 4:2:2, 4:4:4 and mono of 9 to 16 bits, which become 8.
class Y4mReader : public FrameReader {
 public:
  explicit Y4mReader(std::unique_ptr<ByteSource> source);
  Layout GetLayout() const { return layout_; }
  IppiSize Size() const { return size_; }
  StreamInfo Describe() override;

 private:
  bool ReadFrame(Frame& frame) override;
  void ReadDeepPlanes(const Frame& frame);
  // The line before a frame; false at the end.
  bool ReadFrameHeader(std::string& line);

  Layout layout_ = Layout::I420;
  int bits_ = 8;
  IppiSize size_ = {};
  long frames_ = 0;
  Pieces pieces_;
  std::vector<unsigned char> row_;  // of deep samples
};

// Writes the fields that it was given into the stream header, with those for the layout, the siting
// of chroma and the range adjusted to the frames.
class Y4mWriter : public FrameWriter {
 public:
  explicit Y4mWriter(const OutputSpec& spec) : FrameWriter(spec.coding), file_(spec.path) {}
  void Finish() override { file_.Commit(); }

 private:
  Layout Holds(const LayoutInfo& info) const override { return info.inY4m; }
  void WriteFrame(const Frame& frame) override;
  void WriteHeader(const Frame& frame);

  OutputFile file_;
  Pieces pieces_;
  Layout layout_ = Layout::Grey;
  IppiSize size_ = {};
};

}  // namespace qvtool

#endif
