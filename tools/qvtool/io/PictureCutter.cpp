#include "io/PictureCutter.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "io/NetpbmFile.h"

namespace qvtool {

bool PictureCutter::Has(std::size_t bytes) {
  if (ahead_.size() >= bytes) return true;
  constexpr std::size_t kAtOnce = 1 << 16;
  const std::size_t had = ahead_.size(), wanted = std::max(bytes - had, kAtOnce);
  // What a damaged header promises may be more than there is.
  for (std::size_t done = 0; done < wanted;) {
    const std::size_t part = std::min(wanted - done, std::max(ahead_.size(), kAtOnce));
    const std::size_t at = ahead_.size();
    ahead_.resize(at + part);
    const std::size_t got = source_.Read(ahead_.data() + at, part);
    ahead_.resize(at + got);
    done += got;
    if (got < part) break;
  }
  return ahead_.size() >= bytes;
}

std::size_t PictureCutter::All() {
  while (Has(ahead_.size() + 1)) {
  }
  return ahead_.size();
}

std::string_view PictureCutter::Peek() {
  do {
    const auto first = std::find_if(ahead_.begin(), ahead_.end(), [](auto byte) { return byte; });
    ahead_.erase(ahead_.begin(), first);
  } while (ahead_.empty() && Has(1));
  Has(12);
  return {reinterpret_cast<const char*>(ahead_.data()), std::min<std::size_t>(ahead_.size(), 12)};
}

Bytes PictureCutter::Cut(FileFormat format) {
  std::size_t end = 0;
  switch (format) {
    case FileFormat::Png: end = EndOfPng(); break;
    case FileFormat::Jpeg: end = EndOfJpeg(); break;
    case FileFormat::Webp: end = EndOfWebp(); break;
    case FileFormat::Netpbm: end = EndOfNetpbm(); break;
    default: end = All();
  }
  if (end == ahead_.size()) return std::exchange(ahead_, {});
  const auto rest = ahead_.begin() + static_cast<std::ptrdiff_t>(end);
  Bytes picture(ahead_.begin(), rest);
  ahead_.erase(ahead_.begin(), rest);
  return picture;
}

std::size_t PictureCutter::Number(std::size_t at, int bytes) const {
  std::size_t value = 0;
  for (int i = 0; i < bytes; ++i) value = value << 8 | ahead_[at++];
  return value;
}

// Chunks of a length, a name, that many bytes and a sum, the last one named IEND.
std::size_t PictureCutter::EndOfPng() {
  for (std::size_t at = 8; Has(at + 12);) {
    const bool last = std::memcmp(ahead_.data() + at + 4, "IEND", 4) == 0;
    at += 12 + Number(at, 4);
    if (last && Has(at)) return at;
  }
  return All();
}

// Segments with a length, and after those that begin a scan its data, in which 0xff is followed by
// 0 or the number of a restart. A file of several pictures, the first of which tells where the
// others are (CIPA DC-007), is one: the others are variants of the first.
std::size_t PictureCutter::EndOfJpeg() {
  constexpr std::size_t kEnd = 0xd9, kApp2 = 0xe2;
  for (std::size_t at = 2; Has(at + 4);) {
    const auto* const mark = static_cast<const unsigned char*>(
        std::memchr(ahead_.data() + at, 0xff, ahead_.size() - 1 - at));
    if (!mark) {
      at = ahead_.size() - 1;
      continue;
    }
    at = static_cast<std::size_t>(mark - ahead_.data());
    const std::size_t marker = ahead_[at + 1];
    if (marker == kEnd) return at + 2;
    const bool stuffed = marker == 0 || marker == 1 || (marker >= 0xd0 && marker <= 0xd8);
    at += marker == 0xff ? 1 : 2;
    if (stuffed || marker == 0xff) continue;
    if (!Has(at + 6)) break;
    if (marker == kApp2 && std::memcmp(ahead_.data() + at + 2, "MPF", 4) == 0) break;
    at += Number(at, 2);
  }
  return All();
}

// RIFF: the length of what follows the first eight bytes, rounded up to even.
std::size_t PictureCutter::EndOfWebp() {
  if (!Has(8)) return All();
  std::size_t length = 0;
  for (std::size_t i = 8; i-- > 4;) length = length << 8 | ahead_[i];
  length += 8 + (length & 1);
  return Has(length) ? length : All();
}

std::size_t PictureCutter::EndOfNetpbm() {
  Has(1 << 12);  // a header and its comments
  const std::size_t length = NetpbmBytes(ahead_);
  return length > 0 && Has(length) ? length : All();
}

}  // namespace qvtool
