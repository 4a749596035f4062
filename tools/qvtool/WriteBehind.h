// Writes frames in a thread of its own.
#ifndef QV_TOOLS_QVTOOL_WRITEBEHIND_H
#define QV_TOOLS_QVTOOL_WRITEBEHIND_H

#include <exception>
#include <functional>
#include <thread>

#include "Channel.h"
#include "FramePool.h"
#include "io/FrameStream.h"

namespace qvtool {

class WriteBehind {
 public:
  // The writer belongs to the thread until Drain. `onFailure` is called there when a frame cannot
  // be written, for those who wait for something else then.
  WriteBehind(FrameWriter& writer, std::function<void()> onFailure);
  ~WriteBehind();

  // Takes the frame, and puts one in its place whose memory may be used again. Throws what went
  // wrong with one of the frames before.
  void Write(Frame& frame);

  // Waits until all frames are written. Throws what went wrong with one of them.
  void Drain();

 private:
  void Work();
  void Join();

  FrameWriter& writer_;
  std::function<void()> onFailure_;
  std::exception_ptr error_;
  Channel<Frame> waiting_;
  FramePool spare_;
  std::thread thread_;
};

}  // namespace qvtool

#endif
