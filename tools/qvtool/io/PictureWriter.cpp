#include "io/PictureWriter.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <exception>
#include <utility>

#include "Error.h"
#include "io/JpegFile.h"
#include "io/PngFile.h"
#include "qvAcceleratedLib/qv.h"

namespace qvtool {
namespace {

std::optional<Numbering> FindNumbering(const std::string& path) {
  const std::size_t at = path.find('%');
  if (at == std::string::npos) return {};
  std::size_t end = at + 1;
  int digits = 0;
  while (end < path.size() && std::isdigit(static_cast<unsigned char>(path[end])) && digits < 100)
    digits = digits * 10 + (path[end++] - '0');
  if (end >= path.size() || !std::isalpha(static_cast<unsigned char>(path[end]))) return {};
  if (path[end] != 'd')
    throw UsageError(path + ": '" + path.substr(at, end + 1 - at) +
                     "' given; wanted is the number of the frame, such as %04d");
  return Numbering{at, end + 1 - at, std::min(digits, 12)};
}

}  // namespace

PictureWriter::PictureWriter(const OutputSpec& spec, FileFormat format)
    : FrameWriter(spec.coding),
      path_(spec.path),
      format_(format),
      quality_(spec.quality),
      numbering_(FindNumbering(path_)),
      places_(numbering_ ? static_cast<std::size_t>(qv_threads()) : 0) {}

void PictureWriter::Write(Frame& frame) {
  ++frames_;
  if (numbering_) {
    CompressAside(frame);
    return;
  }
  if (frames_ == 2)
    throw Error(path_ +
                ": the input has more than one frame; a name such as frame-%04d.png makes "
                "a picture of each");
  FrameWriter::Write(frame);
}

void PictureWriter::Finish() {
  if (!numbering_ && frames_ == 1) WriteFile(path_, only_);
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
  const std::string path = Numbered(number);
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
  if (format_ == FileFormat::Png) return EncodePng(frame, path);
  if (frame.GetLayout() != Layout::Bgra) return EncodeJpeg(frame, path, quality_);
  Frame opaque;
  Flatten(frame, opaque);
  return EncodeJpeg(opaque, path, quality_);
}

std::string PictureWriter::Numbered(long frame) const {
  char number[32];
  std::snprintf(number, sizeof number, "%0*ld", numbering_->digits, frame);
  std::string path = path_;
  return path.replace(numbering_->at, numbering_->length, number);
}

}  // namespace qvtool
