#include "ReadAhead.h"

namespace qvtool {
namespace {

// Beside the one that is being read and the one that is worked on. More of them are slower, since
// they leave the caches.
constexpr std::size_t kFramesAhead = 1;

}  // namespace

ReadAhead::ReadAhead(FrameReader& reader)
    : reader_(reader), read_(kFramesAhead), thread_([this] { Work(); }) {}

ReadAhead::~ReadAhead() {
  read_.Close();
  Stop();
  thread_.join();
}

bool ReadAhead::Next(Frame& frame) {
  auto item = read_.Pop();
  if (!item) return false;
  if (item->error) std::rethrow_exception(item->error);
  std::swap(frame, item->frame);
  spare_.Give(std::move(item->frame));
  position_ = item->position;
  return true;
}

void ReadAhead::Work() {
  Item item;
  try {
    for (;;) {
      item.frame = spare_.Take();
      if (!reader_.Next(item.frame)) break;
      item.position = reader_.Source().Position();
      if (!read_.Push(std::move(item))) break;
    }
  } catch (...) {
    item.error = std::current_exception();
    read_.Push(std::move(item));
  }
  read_.End();
}

}  // namespace qvtool
