#include "io/Samples.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "Error.h"

namespace qvtool {
namespace {

// Compilers make vectors of loops that replace the first byte of words, but not of such as leave
// out bytes. The last word may reach beyond the row.
template <int kFrom, class Word>
void ReplaceFirstBytes(const unsigned char* from, unsigned char* to, std::ptrdiff_t count) {
  static_assert(std::endian::native == std::endian::little);
  constexpr std::ptrdiff_t kTo = sizeof(Word);
  for (std::ptrdiff_t x = 0; x < count - 1; ++x) {
    Word word;
    std::memcpy(&word, to + kTo * x, sizeof word);
    word = static_cast<Word>((word & ~Word{0xff}) | from[kFrom * x]);
    std::memcpy(to + kTo * x, &word, sizeof word);
  }
  to[kTo * (count - 1)] = from[kFrom * (count - 1)];
}

template <int kFrom, int kTo>
void CopyRow(const unsigned char* from, unsigned char* to, std::ptrdiff_t count) {
  if constexpr (kTo == 2) return ReplaceFirstBytes<kFrom, std::uint16_t>(from, to, count);
  if constexpr (kTo == 4) return ReplaceFirstBytes<kFrom, std::uint32_t>(from, to, count);
  for (std::ptrdiff_t x = 0; x < count; ++x) to[kTo * x] = from[kFrom * x];
}

template <int kFrom>
constexpr auto kCopiesFrom =
    std::array{CopyRow<kFrom, 1>, CopyRow<kFrom, 2>, CopyRow<kFrom, 3>, CopyRow<kFrom, 4>};

constexpr std::array kRowCopies = {kCopiesFrom<1>, kCopiesFrom<2>, kCopiesFrom<3>, kCopiesFrom<4>};

}  // namespace

Channel ChannelOf(const Frame& frame, int channel) {
  const LayoutInfo& info = frame.Info();
  for (int i = 0; i < info.planes; ++i) {
    const PlaneShape& shape = info.plane[i];
    const int* const end = shape.channel + shape.bytes;
    const int* const first = std::find(shape.channel, end, channel);
    if (first == end) continue;
    const Plane& plane = frame.PlaneAt(i);
    const auto samples = static_cast<int>(std::count(first, end, channel));  // in a unit: 1 or 2
    return {plane.data + (first - shape.channel),
            plane.step,
            shape.bytes / samples,
            plane.columns * samples,
            plane.rows,
            shape.shiftX - (samples - 1),
            shape.shiftY};
  }
  throw Error(NameOf(info.layout) + " frames have no alpha");
}

Channel Channel::Cut(const IppiRect& region) const {
  const int left = region.x >> shiftX, top = region.y >> shiftY;
  Channel part = *this;
  part.data = &At(left, top);
  part.columns = ((region.x + region.width - 1) >> shiftX) + 1 - left;
  part.rows = ((region.y + region.height - 1) >> shiftY) + 1 - top;
  return part;
}

void CopyChannel(const Channel& from, const Channel& to) {
  const auto copyRow = kRowCopies[from.spacing - 1][to.spacing - 1];
  const int both = std::min(from.columns, to.columns);
  for (int y = 0; y < to.rows; ++y) {
    copyRow(from.Row(y), to.Row(y), both);
    if (to.columns > both) to.At(both, y) = from.At(both - 1, y);
  }
}

void FillChannel(const Channel& channel, unsigned char value) {
  for (int y = 0; y < channel.rows; ++y)
    if (channel.spacing == 1)
      std::memset(channel.Row(y), value, static_cast<std::size_t>(channel.columns));
    else
      for (int x = 0; x < channel.columns; ++x) channel.At(x, y) = value;
}

}  // namespace qvtool
