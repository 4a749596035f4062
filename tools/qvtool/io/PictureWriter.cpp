#include "io/PictureWriter.h"

#include <exception>
#include <utility>

#include "Error.h"
#include "qvAcceleratedLib/qv.h"

namespace qvtool {

PictureWriter::PictureWriter(const OutputSpec& spec, FileFormat format)
    : FrameWriter(spec.coding),
      path_(spec.path),
      format_(*PictureFormatOf(format)),
      quality_(spec.quality),
      numbering_(Numbering::Find(path_)),
      places_(numbering_ ? static_cast<std::size_t>(qv_threads()) : 0) {}

void PictureWriter::Write(Frame& frame) {
  ++frames_;
  if (numbering_) {
    CompressAside(frame);
    return;
  }
  if (frames_ == 2 && path_ != "-")
    throw Error(path_ +
                ": the input has more than one frame; a name such as frame-%04d.png makes "
                "a picture of each");
  FrameWriter::Write(frame);
}

void PictureWriter::WriteFrame(const Frame& frame) {
  only_ = Encode(frame, path_);
  if (path_ == "-") WriteFile(path_, std::exchange(only_, {}));
}

void PictureWriter::Finish() {
  if (!only_.empty()) WriteFile(path_, only_);
  for (std::size_t i = 1; i <= places_.size(); ++i) {  // from the oldest on
    Place& place = places_[(static_cast<std::size_t>(frames_) + i) % places_.size()];
    if (place.done.valid()) place.done.get();
  }
}

void PictureWriter::CompressAside(Frame& frame) {
  Place& place = places_[static_cast<std::size_t>(frames_) % places_.size()];
  if (place.done.valid()) place.done.get();
  std::swap(place.frame, frame);
  place.done = std::async(std::launch::async,
                          [this, &place, number = frames_] { Compress(place, number); });
}

void PictureWriter::Compress(Place& place, long number) {
  qv_set_thread_limit(1);  // the others are busy with frames of their own
  const std::string path = numbering_->Path(number);
  std::vector<unsigned char> bytes;
  std::exception_ptr error;
  try {
    bytes = Encode(Converted(place.frame, place.conversion), path);
  } catch (...) {
    error = std::current_exception();
  }
  WriteInTurn(number, [&] {
    if (error) std::rethrow_exception(error);
    WriteFile(path, bytes);
  });
}

void PictureWriter::WriteInTurn(long number, const std::function<void()>& write) {
  std::unique_lock lock(mutex_);
  turnIsOver_.wait(lock, [&] { return turn_ == number || hasFailed_; });
  if (hasFailed_) return;
  try {
    write();
    ++turn_;
  } catch (...) {
    hasFailed_ = true;
    turnIsOver_.notify_all();
    throw;
  }
  turnIsOver_.notify_all();
}

std::vector<unsigned char> PictureWriter::Encode(const Frame& frame,
                                                 const std::string& path) const {
  if (format_.holdsAlpha || frame.GetLayout() != Layout::Bgra)
    return format_.encode(frame, path, quality_);
  Frame opaque;
  Flatten(frame, opaque);
  return format_.encode(opaque, path, quality_);
}

}  // namespace qvtool
