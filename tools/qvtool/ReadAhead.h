// Reads frames in a thread of its own, a few of them ahead.
#ifndef QV_TOOLS_QVTOOL_READAHEAD_H
#define QV_TOOLS_QVTOOL_READAHEAD_H

#include <cstdint>
#include <exception>
#include <thread>

#include "Channel.h"
#include "FramePool.h"
#include "io/FrameStream.h"

namespace qvtool {

class ReadAhead {
 public:
  // The reader belongs to the thread until this object is gone.
  explicit ReadAhead(FrameReader& reader);
  // Does not wait for frames that are still to come.
  ~ReadAhead();

  // As the reader's. The memory that `frame` has is used again for one of the next frames.
  bool Next(Frame& frame);
  // Where the source stood when it had given that frame.
  std::uint64_t Position() const { return position_; }

  // Has Next fail that waits in another thread.
  void Stop() { reader_.Source().Stop(); }

 private:
  struct Item {
    Frame frame;
    std::uint64_t position = 0;
    std::exception_ptr error;  // instead of a frame: what went wrong with it
  };
  void Work();

  FrameReader& reader_;
  std::uint64_t position_ = 0;
  Channel<Item> read_;
  FramePool spare_;
  std::thread thread_;
};

}  // namespace qvtool

#endif
