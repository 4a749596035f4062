#include "WriteBehind.h"

#include <utility>

namespace qvtool {
namespace {

// Beside the one that is being written and the one that is worked on (see ReadAhead.cpp).
constexpr std::size_t kFramesBehind = 1;

}  // namespace

WriteBehind::WriteBehind(FrameWriter& writer, std::function<void()> onFailure)
    : writer_(writer),
      onFailure_(std::move(onFailure)),
      waiting_(kFramesBehind),
      thread_([this] { Work(); }) {}

WriteBehind::~WriteBehind() { Join(); }

void WriteBehind::Join() {
  if (!thread_.joinable()) return;
  waiting_.End();
  thread_.join();
}

void WriteBehind::Write(Frame& frame) {
  Frame spare = spare_.Take();
  std::swap(frame, spare);
  if (!waiting_.Push(std::move(spare))) Drain();
}

void WriteBehind::Drain() {
  Join();
  if (error_) std::rethrow_exception(error_);
}

void WriteBehind::Work() {
  try {
    while (auto frame = waiting_.Pop()) {
      writer_.Write(*frame);
      spare_.Give(std::move(*frame));
    }
  } catch (...) {
    error_ = std::current_exception();
    waiting_.Close();
    onFailure_();
  }
}

}  // namespace qvtool
