// Frames whose memory waits to be used again, between two threads.
#ifndef QV_TOOLS_QVTOOL_FRAMEPOOL_H
#define QV_TOOLS_QVTOOL_FRAMEPOOL_H

#include <mutex>
#include <utility>
#include <vector>

#include "io/Frame.h"

namespace qvtool {

class FramePool {
 public:
  void Give(Frame frame) {
    const std::lock_guard lock(mutex_);
    if (!frame.Empty()) frames_.push_back(std::move(frame));
  }

  // The one that was given last, which the caches may still know; an empty one when there is none.
  Frame Take() {
    const std::lock_guard lock(mutex_);
    if (frames_.empty()) return {};
    Frame frame = std::move(frames_.back());
    frames_.pop_back();
    return frame;
  }

 private:
  std::mutex mutex_;
  std::vector<Frame> frames_;
};

}  // namespace qvtool

#endif
