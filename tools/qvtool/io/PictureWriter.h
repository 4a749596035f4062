// Frames as picture files.
#ifndef QV_TOOLS_QVTOOL_IO_PICTUREWRITER_H
#define QV_TOOLS_QVTOOL_IO_PICTUREWRITER_H

#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>

#include "io/FrameStream.h"
#include "io/Numbering.h"

namespace qvtool {

// Writes one picture; to standard output, one after the other; or, under a path with a number, one
// of every frame. Those are compressed side by side, on as many threads as the library uses; each
// file appears once the one before is there, and none after one that could not be written.
class PictureWriter : public FrameWriter {
 public:
  PictureWriter(const OutputSpec& spec, FileFormat format);
  void Write(Frame& frame) override;
  void Finish() override;

 private:
  // What it takes to compress a frame beside others.
  struct Place {
    Frame frame;
    Conversion conversion;
    std::future<void> done;
  };

  Layout Holds(const LayoutInfo& info) const override { return info.inPictures; }
  void WriteFrame(const Frame& frame) override;

  void CompressAside(Frame& frame);
  void Compress(Place& place, long number);
  void WriteInTurn(long number, const std::function<void()>& write);
  std::vector<unsigned char> Encode(const Frame& frame, const std::string& path) const;

  std::string path_;
  const PictureFormat& format_;
  int quality_;
  std::optional<Numbering> numbering_;
  long frames_ = 0;
  std::vector<unsigned char> only_;

  std::mutex mutex_;
  std::condition_variable turnIsOver_;
  long turn_ = 1;  // the number of the frame whose file is to be written next
  bool hasFailed_ = false;
  std::vector<Place> places_;  // the last member: its end waits for those who use the others
};

}  // namespace qvtool

#endif
