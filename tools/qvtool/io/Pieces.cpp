#include "io/Pieces.h"

#include <algorithm>
#include <climits>

namespace qvtool {
namespace {

// POSIX lets a call take at least 16; the systems that this tool runs on take 1024.
#ifdef IOV_MAX
constexpr std::size_t kMostPieces = IOV_MAX;
#else
constexpr std::size_t kMostPieces = 16;
#endif

}  // namespace

void Pieces::Add(const void* data, std::size_t bytes) {
  if (bytes == 0) return;
  bytes_ += bytes;
  if (pieces_.size() > first_) {
    iovec& last = pieces_.back();
    if (static_cast<char*>(last.iov_base) + last.iov_len == data) {
      last.iov_len += bytes;
      return;
    }
  }
  pieces_.push_back({const_cast<void*>(data), bytes});  // the system has one type for both ways
}

void Pieces::AddPlanes(const Frame& frame) {
  for (int i = 0; i < frame.Planes(); ++i) {
    const Plane& plane = frame.PlaneAt(i);
    const auto bytes = static_cast<std::size_t>(plane.RowBytes());
    for (int y = 0; y < plane.rows; ++y) Add(plane.Row(y), bytes);
  }
}

int Pieces::Count() const {
  return static_cast<int>(std::min(pieces_.size() - first_, kMostPieces));
}

void Pieces::Drop(std::size_t bytes) {
  bytes_ -= bytes;
  for (; bytes > 0; ++first_) {
    iovec& piece = pieces_[first_];
    if (piece.iov_len > bytes) {
      piece.iov_base = static_cast<char*>(piece.iov_base) + bytes;
      piece.iov_len -= bytes;
      return;
    }
    bytes -= piece.iov_len;
  }
}

}  // namespace qvtool
