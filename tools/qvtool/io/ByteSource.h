// Bytes from a file or from standard input, with a look ahead so that their format can be told.
#ifndef QV_TOOLS_QVTOOL_IO_BYTESOURCE_H
#define QV_TOOLS_QVTOOL_IO_BYTESOURCE_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvtool {

class ByteSource {
 public:
  // `path` "-" is standard input. Throws an Error when the file cannot be opened.
  explicit ByteSource(const std::string& path);

  // What messages call this source.
  const std::string& Name() const { return name_; }

  // The first bytes of what is still to be read, fewer than asked for only at the end. At most
  // kLookAhead bytes, and only before anything has been read.
  std::string_view Peek(std::size_t bytes);

  // Reads `bytes` bytes; fewer only at the end. Throws an Error when reading fails.
  std::size_t Read(void* to, std::size_t bytes);

  // Whether nothing is left to read.
  bool AtEnd();

  // Reads up to the next line feed, which is not stored. False when the end comes first, or when
  // the line is longer than `limit`.
  bool ReadLine(std::string& line, std::size_t limit);

  std::vector<unsigned char> ReadAll();

  // Bytes in all, where that is known, and bytes read so far.
  std::optional<std::uint64_t> Size() const { return size_; }
  std::uint64_t Position() const { return position_; }

 private:
  static constexpr std::size_t kLookAhead = 16;

  struct Closer {
    void operator()(std::FILE* file) const {
      if (file != stdin) std::fclose(file);
    }
  };

  std::string name_;
  std::unique_ptr<std::FILE, Closer> file_;
  std::optional<std::uint64_t> size_;
  std::uint64_t position_ = 0;
  unsigned char ahead_[kLookAhead];
  std::size_t aheadBytes_ = 0;
  std::size_t aheadUsed_ = 0;
};

}  // namespace qvtool

#endif
