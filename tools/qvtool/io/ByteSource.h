// Bytes from a file or from standard input, with a look ahead so that their format can be told.
#ifndef QV_TOOLS_QVTOOL_IO_BYTESOURCE_H
#define QV_TOOLS_QVTOOL_IO_BYTESOURCE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "io/Descriptor.h"
#include "io/Pieces.h"

namespace qvtool {

class ByteSource {
 public:
  // `path` "-" is standard input. Throws an Error when the file cannot be opened.
  explicit ByteSource(const std::string& path);

  // What messages call this source.
  const std::string& Name() const { return name_; }

  // The first bytes of what is still to be read, at most kLookAhead; fewer than asked for only at
  // the end.
  std::string_view Peek(std::size_t bytes);

  // Reads `bytes` bytes; fewer only at the end. Throws an Error when reading fails.
  std::size_t Read(void* to, std::size_t bytes);
  // The same into all of the pieces, which are used up. The system fills them itself.
  std::size_t Read(Pieces& pieces);

  // Leaves out `bytes` bytes; fewer only at the end. Those of a file are not read.
  std::uint64_t Skip(std::uint64_t bytes);

  // Whether nothing is left to read.
  bool AtEnd() { return Peek(1).empty(); }

  // Reads up to the next line feed, which is not stored. False when the end comes first, or when
  // the line is longer than `limit`.
  bool ReadLine(std::string& line, std::size_t limit);

  std::vector<unsigned char> ReadAll();

  // Bytes in all, where that is known, and bytes read so far.
  std::optional<std::uint64_t> Size() const { return size_; }
  std::uint64_t Position() const { return position_; }

  // Has a read fail that waits for bytes in another thread, and all that come later.
  void Stop();

 private:
  // What is read beyond what was asked for: enough for the header of a frame, and so little that
  // copying it does not count.
  static constexpr std::size_t kLookAhead = 4096;

  // One call to the system; 0 at the end.
  std::size_t ReadSome(const iovec* pieces, int count);
  std::size_t TakeAhead(void* to, std::size_t bytes);

  std::string name_;
  Descriptor file_;
  Descriptor wakeUp_, wake_;  // ends of a pipe that ends a wait; none for files, which never do
  std::optional<std::uint64_t> size_;
  std::uint64_t position_ = 0;
  unsigned char ahead_[kLookAhead];
  std::size_t aheadFirst_ = 0, aheadEnd_ = 0;
  Pieces single_;
};

}  // namespace qvtool

#endif
