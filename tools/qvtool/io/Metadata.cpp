#include "io/Metadata.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace qvtool {
namespace {

// ---- EXIF (CIPA DC-008): directories of twelve-byte entries, as in TIFF 6.0 --------------------

constexpr unsigned kOrientation = 0x0112, kThumbnail = 0x0201, kThumbnailBytes = 0x0202;
constexpr unsigned kShort = 3, kLong = 4;

// Numbers in EXIF data. What lies outside of it reads as 0 and is not written.
class ExifData {
 public:
  ExifData(const unsigned char* data, std::size_t size) : data_(data), size_(size) {
    bigEndian_ = size > 1 && data[0] == 'M';
    const bool marked = size > 1 && data[0] == data[1] && (bigEndian_ || data[0] == 'I');
    if (!marked || Number(2, 2) != 42) size_ = 0;
  }

  std::uint32_t Number(std::size_t at, int bytes) const {
    if (at > size_ || size_ - at < static_cast<std::size_t>(bytes)) return 0;
    std::uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
      value |= static_cast<std::uint32_t>(data_[at + static_cast<std::size_t>(i)])
               << 8 * (bigEndian_ ? bytes - 1 - i : i);
    return value;
  }

  std::size_t Directory() const { return Number(4, 4); }
  std::size_t EndOf(std::size_t directory) const {
    return directory + 2 + std::size_t{12} * Number(directory, 2);
  }

  // Where the value of a tag stands, which is one number of this type, or 0.
  std::size_t Find(std::size_t directory, unsigned tag, unsigned type) const {
    if (directory == 0) return 0;
    const std::size_t end = std::min(EndOf(directory), size_);
    for (std::size_t at = directory + 2; at + 12 <= end; at += 12)
      if (Number(at, 2) == tag && Number(at + 2, 2) == type && Number(at + 4, 4) == 1)
        return at + 8;
    return 0;
  }

  std::uint32_t Value(std::size_t directory, unsigned tag, unsigned type) const {
    const std::size_t at = Find(directory, tag, type);
    return at == 0 ? 0 : Number(at, type == kShort ? 2 : 4);
  }

  bool IsBigEndian() const { return bigEndian_; }

 private:
  const unsigned char* data_;
  std::size_t size_;
  bool bigEndian_;
};

void EraseThumbnail(Bytes& exif) {
  const ExifData data(exif.data(), exif.size());
  const std::size_t link = data.EndOf(data.Directory()), second = data.Number(link, 4);
  if (second == 0) return;
  const std::size_t from = data.Value(second, kThumbnail, kLong);
  const std::size_t bytes = data.Value(second, kThumbnailBytes, kLong);
  const auto erase = [&exif](std::size_t at, std::size_t count) {
    for (; count > 0 && at < exif.size(); --count) exif[at++] = 0;
  };
  if (from != 0) erase(from, bytes);
  erase(link, 4);
}

}  // namespace

std::string_view ExifIn(std::string_view segment) {
  constexpr std::string_view kMark("Exif\0\0", 6);
  return segment.starts_with(kMark) ? segment.substr(kMark.size()) : std::string_view();
}

Bytes ExifOf(int orientation) {
  return {'I', 'I', 42, 0, 8, 0, 0, 0,  // the directory follows, with one entry
          1,   0,   0x12, 1, 3, 0, 1, 0, 0, 0, static_cast<unsigned char>(orientation), 0, 0, 0,
          0,   0,   0, 0};
}

int Metadata::Orientation() const {
  const ExifData data(exif.data(), exif.size());
  const std::uint32_t value = data.Value(data.Directory(), kOrientation, kShort);
  return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
}

void Metadata::SetUpright() {
  if (Orientation() >= 5) std::swap(density.x, density.y);
  const ExifData data(exif.data(), exif.size());
  if (const std::size_t at = data.Find(data.Directory(), kOrientation, kShort)) {
    exif[at] = data.IsBigEndian() ? 0 : 1;
    exif[at + 1] = data.IsBigEndian() ? 1 : 0;
  }
  EraseThumbnail(exif);
}

const Bytes& Metadata::ProfileFor(int channels) const {
  static const Bytes none;
  constexpr std::size_t kColourSpace = 16;  // in the profile's header (ICC.1, 7.2)
  if (icc.size() < 128) return none;
  const std::string space(icc.begin() + kColourSpace, icc.begin() + kColourSpace + 4);
  return space == (channels == 1 ? "GRAY" : "RGB ") ? icc : none;
}

Density Density::In(Unit wanted) const {
  constexpr double kMetres[] = {0, 0, .0254, .01, 1};
  if (unit == None || unit == Aspect || unit == wanted) return *this;
  const double factor = kMetres[wanted] / kMetres[unit];
  return {wanted, x * factor, y * factor};
}

}  // namespace qvtool
