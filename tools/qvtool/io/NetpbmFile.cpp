#include "io/NetpbmFile.h"

#include <climits>
#include <cstring>
#include <optional>
#include <utility>

#include "Error.h"

namespace qvtool {
namespace {

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

struct Header {
  int channels, width, height, most;
  std::size_t bytes;  // of itself

  std::size_t SampleBytes() const { return most > 255 ? 2 : 1; }
  std::size_t RowBytes() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(channels) * SampleBytes();
  }
};

// The next number of a header and the single white space after it, or 0. Comments go from # to the
// end of their line.
int ReadNumber(std::span<const unsigned char> bytes, std::size_t& at) {
  long long number = 0;
  bool any = false, comment = false;
  while (at < bytes.size()) {
    const char c = static_cast<char>(bytes[at++]);
    if (comment) {
      comment = c != '\n';
    } else if (c == '#' && !any) {
      comment = true;
    } else if (c >= '0' && c <= '9' && number <= INT_MAX / 10) {
      number = number * 10 + (c - '0');
      any = true;
    } else if (!IsSpace(c)) {
      break;
    } else if (any) {
      return number <= INT_MAX ? static_cast<int>(number) : 0;
    }
  }
  return 0;
}

std::optional<Header> ReadHeader(std::span<const unsigned char> bytes) {
  Header header{};
  std::size_t at = 3;
  if (bytes.size() < at) return {};
  header.channels = bytes[1] == '5' ? 1 : 3;
  header.width = ReadNumber(bytes, at);
  header.height = ReadNumber(bytes, at);
  header.most = ReadNumber(bytes, at);
  header.bytes = at;
  if (header.width < 1 || header.height < 1 || header.most < 1 || header.most > 65535) return {};
  return header;
}

// A row of samples that are bytes or, the more significant first, pairs of them. False if one is
// larger than the header says.
bool Scale(const unsigned char* from, const Header& header, unsigned char* to, int count) {
  const bool wide = header.SampleBytes() == 2;
  for (int i = 0; i < count; ++i) {
    const int sample = wide ? from[2 * i] << 8 | from[2 * i + 1] : from[i];
    if (sample > header.most) return false;
    to[i] = static_cast<unsigned char>((sample * 255 + header.most / 2) / header.most);
  }
  return true;
}

// Between R, G, B and B, G, R.
void SwapColours(const Plane& plane) {
  for (int y = 0; y < plane.rows; ++y)
    for (unsigned char* pixel = plane.Row(y); pixel < plane.Row(y) + plane.RowBytes(); pixel += 3)
      std::swap(pixel[0], pixel[2]);
}

}  // namespace

bool LooksLikeNetpbm(std::string_view firstBytes) {
  return firstBytes.size() > 2 && firstBytes[0] == 'P' &&
         (firstBytes[1] == '5' || firstBytes[1] == '6') && IsSpace(firstBytes[2]);
}

std::size_t NetpbmBytes(std::span<const unsigned char> bytes) {
  const auto header = ReadHeader(bytes);
  return header ? header->bytes + header->RowBytes() * static_cast<std::size_t>(header->height) : 0;
}

Frame DecodeNetpbm(std::span<const unsigned char> bytes, const std::string& name,
                   const DecodeOptions& options) {
  const auto damaged = [&](const char* why) {
    return Error(name + ": not a whole PGM or PPM: " + why);
  };
  const auto header = ReadHeader(bytes);
  if (!header) throw damaged("the header gives no width, height and largest sample");
  Frame frame;
  ResetFor(frame, header->channels == 1 ? Layout::Grey : Layout::Bgr, header->width,
           header->height, name);
  if (options.headersOnly) return frame;
  if (bytes.size() < NetpbmBytes(bytes)) throw damaged("it is cut short");
  const Plane& to = frame.PlaneAt(0);
  const unsigned char* from = bytes.data() + header->bytes;
  for (int y = 0; y < to.rows; ++y, from += header->RowBytes()) {
    if (header->most == 255)
      std::memcpy(to.Row(y), from, header->RowBytes());
    else if (!Scale(from, *header, to.Row(y), to.RowBytes()))
      throw damaged("a sample is larger than the header says");
  }
  if (to.bytes == 3) SwapColours(to);
  return frame;
}

Bytes EncodeNetpbm(const Frame& frame, const std::string& name) {
  if (frame.GetLayout() != Layout::Grey && frame.GetLayout() != Layout::Bgr)
    throw Error(name + ": a PGM or PPM holds grey or bgr pixels, and this frame is " +
                NameOf(frame.GetLayout()));
  const Plane& from = frame.PlaneAt(0);
  const std::string header = (from.bytes == 1 ? "P5\n" : "P6\n") + std::to_string(from.columns) +
                             " " + std::to_string(from.rows) + "\n255\n";
  const auto rowBytes = static_cast<std::size_t>(from.RowBytes());
  Bytes out(header.size() + rowBytes * static_cast<std::size_t>(from.rows));
  std::memcpy(out.data(), header.data(), header.size());
  Plane to = from;
  to.data = out.data() + header.size();
  to.step = from.RowBytes();
  for (int y = 0; y < from.rows; ++y) std::memcpy(to.Row(y), from.Row(y), rowBytes);
  if (from.bytes == 3) SwapColours(to);
  return out;
}

}  // namespace qvtool
