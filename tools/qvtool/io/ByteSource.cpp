#include "io/ByteSource.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "Error.h"

namespace qvtool {
namespace {

// No picture file that this tool can hold is larger; what is, is not a picture.
constexpr std::size_t kLargestFile = std::size_t{4} << 30;

}  // namespace

ByteSource::ByteSource(const std::string& path) {
  if (path == "-") {
    name_ = "standard input";
    file_.reset(stdin);
  } else {
    name_ = path;
    file_.reset(std::fopen(path.c_str(), "rb"));
    if (!file_) throw Error(name_ + ": cannot open: " + std::strerror(errno));
  }
  struct stat about;
  if (fstat(fileno(file_.get()), &about) == 0) {
    if (S_ISDIR(about.st_mode)) throw Error(name_ + ": is a directory; wanted is a file");
    // Standard input may have been read in part by others.
    const off_t at = S_ISREG(about.st_mode) ? lseek(fileno(file_.get()), 0, SEEK_CUR) : -1;
    if (at >= 0) size_ = static_cast<std::uint64_t>(std::max<off_t>(about.st_size - at, 0));
  }
}

std::string_view ByteSource::Peek(std::size_t bytes) {
  bytes = std::min(bytes, kLookAhead);
  if (position_ == 0 && aheadBytes_ < bytes) {
    aheadBytes_ += std::fread(ahead_ + aheadBytes_, 1, bytes - aheadBytes_, file_.get());
    if (std::ferror(file_.get())) throw Error(name_ + ": cannot read: " + std::strerror(errno));
  }
  const std::size_t left = std::min(bytes, aheadBytes_ - aheadUsed_);
  return {reinterpret_cast<const char*>(ahead_ + aheadUsed_), left};
}

std::size_t ByteSource::Read(void* to, std::size_t bytes) {
  auto* out = static_cast<unsigned char*>(to);
  std::size_t done = std::min(bytes, aheadBytes_ - aheadUsed_);
  std::memcpy(out, ahead_ + aheadUsed_, done);
  aheadUsed_ += done;
  if (done < bytes) {
    done += std::fread(out + done, 1, bytes - done, file_.get());
    if (done < bytes && std::ferror(file_.get()))
      throw Error(name_ + ": cannot read: " + std::strerror(errno));
  }
  position_ += done;
  return done;
}

bool ByteSource::AtEnd() {
  if (aheadUsed_ < aheadBytes_) return false;
  const int next = std::fgetc(file_.get());
  if (next == EOF) {
    if (std::ferror(file_.get())) throw Error(name_ + ": cannot read: " + std::strerror(errno));
    return true;
  }
  std::ungetc(next, file_.get());
  return false;
}

bool ByteSource::ReadLine(std::string& line, std::size_t limit) {
  line.clear();
  char c;
  while (line.size() <= limit && Read(&c, 1) == 1) {
    if (c == '\n') return true;
    line += c;
  }
  return false;
}

std::vector<unsigned char> ByteSource::ReadAll() {
  std::vector<unsigned char> bytes;
  std::size_t used = 0;
  for (;;) {
    const std::size_t room = size_ && *size_ > position_ && used == 0
                                 ? static_cast<std::size_t>(*size_ - position_) + 1
                                 : std::max<std::size_t>(used, 1 << 16);
    if (used + room > kLargestFile) throw Error(name_ + ": is larger than 4 GiB");
    bytes.resize(used + room);
    const std::size_t got = Read(bytes.data() + used, room);
    used += got;
    if (got < room) break;
  }
  bytes.resize(used);
  return bytes;
}

}  // namespace qvtool
