#include "io/ByteSource.h"

#include <poll.h>
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

ByteSource::ByteSource(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      file_(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (!file_) throw Error(name_ + ": cannot open: " + std::strerror(errno));
  struct stat about;
  if (fstat(file_.Get(), &about) != 0) return;
  if (S_ISDIR(about.st_mode)) throw Error(name_ + ": is a directory; wanted is a file");
  if (S_ISREG(about.st_mode)) {
    // Standard input may have been read in part by others.
    const off_t at = lseek(file_.Get(), 0, SEEK_CUR);
    if (at >= 0) size_ = static_cast<std::uint64_t>(std::max<off_t>(about.st_size - at, 0));
    return;
  }
  file_.WidenPipe();
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw Error(name_ + ": cannot open: " + std::strerror(errno));
  wake_ = Descriptor(ends[0]);
  wakeUp_ = Descriptor(ends[1]);
}

void ByteSource::Stop() { wakeUp_.Close(); }

std::size_t ByteSource::ReadSome(const iovec* pieces, int count) {
  for (;;) {
    if (wake_) {
      pollfd waits[] = {{file_.Get(), POLLIN, 0}, {wake_.Get(), POLLIN, 0}};
      if (poll(waits, 2, -1) < 0 && errno == EINTR) continue;
      if (waits[1].revents != 0) throw Error(name_ + ": reading was stopped");
    }
    const ssize_t got = readv(file_.Get(), pieces, count);
    if (got >= 0) return static_cast<std::size_t>(got);
    if (errno != EINTR && errno != EAGAIN)
      throw Error(name_ + ": cannot read: " + std::strerror(errno));
  }
}

std::string_view ByteSource::Peek(std::size_t bytes) {
  bytes = std::min(bytes, kLookAhead);
  if (aheadEnd_ - aheadFirst_ < bytes) {
    std::memmove(ahead_, ahead_ + aheadFirst_, aheadEnd_ - aheadFirst_);
    aheadEnd_ -= std::exchange(aheadFirst_, 0);
  }
  while (aheadEnd_ - aheadFirst_ < bytes) {
    const iovec rest = {ahead_ + aheadEnd_, kLookAhead - aheadEnd_};
    const std::size_t got = ReadSome(&rest, 1);
    if (got == 0) break;
    aheadEnd_ += got;
  }
  return {reinterpret_cast<const char*>(ahead_ + aheadFirst_),
          std::min(bytes, aheadEnd_ - aheadFirst_)};
}

std::size_t ByteSource::TakeAhead(void* to, std::size_t bytes) {
  bytes = std::min(bytes, aheadEnd_ - aheadFirst_);
  std::memcpy(to, ahead_ + aheadFirst_, bytes);
  aheadFirst_ += bytes;
  return bytes;
}

std::size_t ByteSource::Read(Pieces& pieces) {
  const std::size_t wanted = pieces.Bytes();
  std::size_t done = 0;
  while (done < wanted && aheadFirst_ < aheadEnd_) {
    const std::size_t taken = TakeAhead(pieces.First()->iov_base, pieces.First()->iov_len);
    pieces.Drop(taken);
    done += taken;
  }
  if (done < wanted) {
    aheadFirst_ = aheadEnd_ = 0;
    pieces.Add(ahead_, kLookAhead);
    while (done < wanted) {
      const std::size_t got = ReadSome(pieces.First(), pieces.Count());
      if (got == 0) break;
      pieces.Drop(got);
      done += got;
    }
    aheadEnd_ = done - std::min(done, wanted);
  }
  done = std::min(done, wanted);
  position_ += done;
  return done;
}

std::size_t ByteSource::Read(void* to, std::size_t bytes) {
  single_.Clear();
  single_.Add(to, bytes);
  return Read(single_);
}

std::uint64_t ByteSource::Skip(std::uint64_t bytes) {
  if (size_) {
    bytes = std::min(bytes, *size_ - std::min(position_, *size_));
    const std::uint64_t ahead = std::min<std::uint64_t>(bytes, aheadEnd_ - aheadFirst_);
    if (lseek(file_.Get(), static_cast<off_t>(bytes - ahead), SEEK_CUR) < 0)
      throw Error(name_ + ": cannot read: " + std::strerror(errno));
    aheadFirst_ += static_cast<std::size_t>(ahead);
    position_ += bytes;
    return bytes;
  }
  std::vector<unsigned char> piece(1 << 16);
  std::uint64_t done = 0;
  while (done < bytes) {
    const auto next = static_cast<std::size_t>(std::min<std::uint64_t>(bytes - done, piece.size()));
    const std::size_t got = Read(piece.data(), next);
    done += got;
    if (got < next) break;
  }
  return done;
}

bool ByteSource::ReadLine(std::string& line, std::size_t limit) {
  line.clear();
  while (line.size() <= limit && !Peek(1).empty()) {
    const char* const first = reinterpret_cast<const char*>(ahead_ + aheadFirst_);
    const std::size_t count = std::min(aheadEnd_ - aheadFirst_, limit + 1 - line.size());
    const void* const feed = std::memchr(first, '\n', count);
    const std::size_t taken =
        feed ? static_cast<std::size_t>(static_cast<const char*>(feed) - first) : count;
    line.append(first, taken);
    aheadFirst_ += taken + (feed != nullptr);
    position_ += taken + (feed != nullptr);
    if (feed) return true;
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
