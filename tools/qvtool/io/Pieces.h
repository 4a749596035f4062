// Bytes of a frame as they lie in memory, in the order that they have in a file.
#ifndef QV_TOOLS_QVTOOL_IO_PIECES_H
#define QV_TOOLS_QVTOOL_IO_PIECES_H

#include <sys/uio.h>

#include <cstddef>
#include <vector>

#include "io/Frame.h"

namespace qvtool {

// Neighbours become one piece.
class Pieces {
 public:
  void Add(const void* data, std::size_t bytes);
  // The planes of a frame one after the other, rows without what lies between them.
  void AddPlanes(const Frame& frame);
  void Clear() { pieces_.clear(), bytes_ = 0, first_ = 0; }

  std::size_t Bytes() const { return bytes_; }  // of all that is left

  // The first pieces of what is left, as many as the system takes in one call.
  const iovec* First() const { return pieces_.data() + first_; }
  int Count() const;
  // Leaves out so many bytes at the beginning.
  void Drop(std::size_t bytes);

 private:
  std::vector<iovec> pieces_;
  std::size_t first_ = 0;
  std::size_t bytes_ = 0;
};

}  // namespace qvtool

#endif
