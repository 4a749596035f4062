#include "io/Y4mFile.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <sstream>

#include "Error.h"
#include "io/RawFrames.h"

namespace qvtool {
namespace {

constexpr std::string_view kMagic = "YUV4MPEG2";
constexpr std::size_t kLongestLine = 4096;

struct Colour {
  std::string_view token;  // of samples of 8 bits; deeper ones are "420p10", "mono10"
  Layout layout;
  Siting siting = Siting::Left;
  int bits = 8;
};

// The first token of a layout and siting is the one written when the stream does not bring its own.
constexpr Colour kColours[] = {
    {"420jpeg", Layout::I420, Siting::Centre},
    {"420mpeg2", Layout::I420, Siting::Left},
    {"420paldv", Layout::I420, Siting::TopLeft},
    {"420", Layout::I420, Siting::Centre},
    {"411", Layout::I411},
    {"422", Layout::I422},
    {"444", Layout::I444},
    {"444alpha", Layout::I444Alpha},
    {"mono", Layout::Grey},
};

constexpr std::string_view kRange = "XCOLORRANGE=";
constexpr std::string_view kStudio = "XCOLORRANGE=LIMITED", kFull = "XCOLORRANGE=FULL";

int ParseExtent(const std::string& name, const std::string& field) {
  int value = 0;
  const char* end = field.data() + field.size();
  const auto [stop, error] = std::from_chars(field.data() + 1, end, value);
  if (error != std::errc() || stop != end || value < 1)
    throw Error(name + ": the Y4M header says '" + field + "'; wanted is " + field[0] +
                " and a number of at least 1");
  return value;
}

// Deep samples of one of the formats above.
std::optional<Colour> ParseDeep(std::string_view token) {
  for (const std::string_view base : {"420p", "422p", "444p", "mono"}) {
    if (!token.starts_with(base)) continue;
    for (const int bits : {9, 10, 12, 14, 16}) {
      if (token.substr(base.size()) != std::to_string(bits)) continue;
      const Layout layout = base == "420p"   ? Layout::I420
                            : base == "422p" ? Layout::I422
                            : base == "444p" ? Layout::I444
                                             : Layout::Grey;
      return Colour{token, layout, Siting::Left, bits};
    }
  }
  return {};
}

Colour ParseColour(const std::string& name, std::string_view token) {
  for (const Colour& colour : kColours)
    if (colour.token == token) return colour;
  if (const auto deep = ParseDeep(token)) return *deep;
  std::string known;
  for (const Colour& colour : kColours)
    known += (known.empty() ? "" : ", ") + std::string(colour.token);
  throw Error(name + ": the Y4M colour format is '" + std::string(token) +
              "'; wanted is one of " + known +
              ", 420p10, 422p10, 444p10, mono10 and these with other numbers of bits");
}

bool Fits(const Colour& colour, const Frame& frame) {
  return colour.bits == 8 && colour.layout == frame.GetLayout() &&
         (colour.layout != Layout::I420 || colour.siting == frame.coding.siting);
}

const Colour& ColourOf(const Frame& frame) {
  for (const Colour& colour : kColours)
    if (Fits(colour, frame)) return colour;
  throw Error("Y4M does not hold " + NameOf(frame.GetLayout()) + " frames");
}

}  // namespace

bool LooksLikeY4m(std::string_view firstBytes) { return firstBytes.starts_with(kMagic); }

Y4mReader::Y4mReader(std::unique_ptr<ByteSource> source)
    : FrameReader(std::move(source), FileFormat::Y4m) {
  const std::string& name = source_->Name();
  std::string line;
  if (!source_->ReadLine(line, kLongestLine))
    throw Error(name + ": the Y4M header line is cut short or has no end");
  coding_.siting = kColours[0].siting;  // what a header without the field means
  std::istringstream words(line.substr(kMagic.size()));
  for (std::string field; words >> field;) {
    switch (field[0]) {
      case 'W': size_.width = ParseExtent(name, field); break;
      case 'H': size_.height = ParseExtent(name, field); break;
      case 'C': {
        const Colour colour = ParseColour(name, std::string_view(field).substr(1));
        layout_ = colour.layout;
        bits_ = colour.bits;
        coding_.siting = colour.siting;
        [[fallthrough]];
      }
      default: fields_.push_back(field);
    }
    if (field == kStudio) coding_.range = QV_STUDIO_RANGE;
    if (field == kFull) coding_.range = QV_FULL_RANGE;
  }
  if (size_.width == 0 || size_.height == 0)
    throw Error(name + ": the Y4M header gives no " + (size_.width == 0 ? "width" : "height"));
}

// Samples are pairs of bytes, the less significant first. Of studio range the 8 bits are the upper
// ones, of full range they reach as far; both are rounded.
void Y4mReader::ReadDeepPlanes(const Frame& frame) {
  const int most = (1 << bits_) - 1, shift = bits_ - 8;
  const bool full = coding_.range == QV_FULL_RANGE || layout_ == Layout::Grey;
  for (int i = 0; i < frame.Planes(); ++i) {
    const Plane& plane = frame.PlaneAt(i);
    row_.resize(static_cast<std::size_t>(plane.columns) * 2);
    for (int y = 0; y < plane.rows; ++y) {
      if (source_->Read(row_.data(), row_.size()) < row_.size())
        throw Error(source_->Name() + ": frame " + std::to_string(frames_) + " is cut short");
      const unsigned char* from = row_.data();
      for (int x = 0; x < plane.columns; ++x, from += 2) {
        const int sample = std::min(from[0] | from[1] << 8, most);
        const int eight = full ? (sample * 255 + most / 2) / most
                               : std::min((sample + (1 << (shift - 1))) >> shift, 255);
        plane.Row(y)[x] = static_cast<unsigned char>(eight);
      }
    }
  }
}

StreamInfo Y4mReader::Describe() {
  if (!source_->Size()) return {layout_, size_, {}};
  for (std::string line; ReadFrameHeader(line);) {
    const int bytes = bits_ > 8 ? 2 : 1;  // a sample
    for (int i = 0; i < bytes; ++i) SkipPlanes(*source_, layout_, size_, frames_);
  }
  if (frames_ == 0) throw Error(source_->Name() + ": holds no frame");
  return {layout_, size_, frames_};
}

bool Y4mReader::ReadFrameHeader(std::string& line) {
  const std::string& name = source_->Name();
  if (!source_->ReadLine(line, kLongestLine)) {
    if (line.empty()) return false;
    throw Error(name + ": frame " + std::to_string(frames_ + 1) + " is cut short in its header");
  }
  ++frames_;
  if (line != "FRAME" && !line.starts_with("FRAME "))
    throw Error(name + ": there is no frame header where frame " + std::to_string(frames_) +
                " should begin");
  return true;
}

bool Y4mReader::ReadFrame(Frame& frame) {
  std::string line;
  if (!ReadFrameHeader(line)) return false;
  try {
    frame.Reset(layout_, size_.width, size_.height);
  } catch (const Error& error) {
    throw Error(source_->Name() + ": " + error.what());
  }
  frame.parameters = line.substr(5);
  if (bits_ > 8)
    ReadDeepPlanes(frame);
  else
    ReadPlanes(*source_, frame, pieces_, frames_);
  return true;
}

void Y4mWriter::WriteHeader(const Frame& frame) {
  layout_ = frame.GetLayout();
  size_ = frame.Size();
  const Colour& colour = ColourOf(frame);
  const std::string_view range = frame.coding.range == QV_FULL_RANGE ? kFull : kStudio;
  std::string line = std::string(kMagic) + " W" + std::to_string(size_.width) + " H" +
                     std::to_string(size_.height);
  bool hasRate = false;
  bool hasColour = Fits(kColours[0], frame);  // what a header without the field means
  bool hasRange = !frame.Info().isYCbCr || range == kStudio;
  bool changed = false;
  for (const std::string& field : fields_) {
    if (field[0] == 'C' &&
        !Fits(ParseColour(file_.Name(), std::string_view(field).substr(1)), frame)) {
      changed = true;
      hasColour = false;
      continue;
    }
    // A second, older way to write the subsampling, which must not contradict the first.
    if (changed && field.starts_with("XYSCSS=")) continue;
    if (field.starts_with(kRange) && frame.Info().isYCbCr) {
      hasRange = field == range;
      if (!hasRange) continue;
    }
    hasColour |= field[0] == 'C';
    hasRate |= field[0] == 'F';
    line += " " + field;
  }
  if (!hasRate) line += " F25:1";
  if (!hasColour || changed) line += " C" + std::string(colour.token);
  if (!hasRange) line += " " + std::string(range);
  file_.Write(line + "\n");
}

void Y4mWriter::WriteFrame(const Frame& frame) {
  if (size_.width == 0) WriteHeader(frame);
  if (frame.GetLayout() != layout_ || frame.Width() != size_.width ||
      frame.Height() != size_.height)
    throw Error(file_.Name() + ": all frames of a Y4M stream have one size and layout");
  const std::string line = "FRAME" + frame.parameters + "\n";
  pieces_.Clear();
  pieces_.Add(line.data(), line.size());
  pieces_.AddPlanes(frame);
  file_.Write(pieces_);
}

}  // namespace qvtool
