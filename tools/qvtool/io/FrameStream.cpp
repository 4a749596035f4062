#include "io/FrameStream.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "Error.h"
#include "io/JpegFile.h"
#include "io/PngFile.h"
#include "io/RawFrames.h"
#include "io/Y4mFile.h"

namespace qvtool {
namespace {

// A PNG or JPEG file as a stream of one frame.
class PictureReader : public FrameReader {
 public:
  PictureReader(std::unique_ptr<ByteSource> source, FileFormat format)
      : FrameReader(std::move(source), format) {}

  bool ReadFrame(Frame& frame) override {
    if (done_) return false;
    done_ = true;
    const auto bytes = source_->ReadAll();
    frame = format_ == FileFormat::Png ? DecodePng(bytes, source_->Name())
                                       : DecodeJpeg(bytes, source_->Name());
    return true;
  }

 private:
  bool done_ = false;
};

// The place of the frame number in a path such as frame-%04d.png, if it has one.
struct Numbering {
  std::size_t at;
  std::size_t length;
  int digits;
};

std::optional<Numbering> FindNumbering(const std::string& path) {
  const std::size_t at = path.find('%');
  if (at == std::string::npos) return {};
  std::size_t end = at + 1;
  int digits = 0;
  while (end < path.size() && std::isdigit(static_cast<unsigned char>(path[end])) && digits < 100)
    digits = digits * 10 + (path[end++] - '0');
  if (end >= path.size() || !std::isalpha(static_cast<unsigned char>(path[end]))) return {};
  if (path[end] != 'd')
    throw UsageError(path + ": '" + path.substr(at, end + 1 - at) +
                     "' given; wanted is the number of the frame, such as %04d");
  return Numbering{at, end + 1 - at, std::min(digits, 12)};
}

class PictureWriter : public FrameWriter {
 public:
  PictureWriter(const OutputSpec& spec, FileFormat format)
      : FrameWriter(spec.coding),
        path_(spec.path),
        format_(format),
        quality_(spec.quality),
        numbering_(FindNumbering(path_)) {}

  Layout Holds(const LayoutInfo& info) const override { return info.inPictures; }

  void WriteFrame(const Frame& frame) override {
    ++frames_;
    if (frames_ == 2 && !numbering_)
      throw Error(path_ +
                  ": the input has more than one frame; a name such as frame-%04d.png makes "
                  "a picture of each");
    const std::string path = numbering_ ? Numbered(frames_) : path_;
    auto bytes = Encode(frame, path);
    if (numbering_)
      WriteFile(path, bytes);
    else
      only_ = std::move(bytes);
  }

  void Finish() override {
    if (!numbering_ && frames_ == 1) WriteFile(path_, only_);
  }

 private:
  std::vector<unsigned char> Encode(const Frame& frame, const std::string& path) {
    if (format_ == FileFormat::Png) return EncodePng(frame, path);
    if (frame.GetLayout() != Layout::Bgra) return EncodeJpeg(frame, path, quality_);
    Flatten(frame, opaque_);
    return EncodeJpeg(opaque_, path, quality_);
  }

  std::string Numbered(long frame) const {
    char number[32];
    std::snprintf(number, sizeof number, "%0*ld", numbering_->digits, frame);
    std::string path = path_;
    return path.replace(numbering_->at, numbering_->length, number);
  }

  std::string path_;
  FileFormat format_;
  int quality_;
  std::optional<Numbering> numbering_;
  long frames_ = 0;
  std::vector<unsigned char> only_;
  Frame opaque_;
};

std::string Extension(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string::npos || path.find('/', dot) != std::string::npos) return "";
  std::string extension = path.substr(dot);
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension;
}

}  // namespace

const char* NameOf(FileFormat format) {
  switch (format) {
    case FileFormat::Png: return "PNG";
    case FileFormat::Jpeg: return "JPEG";
    case FileFormat::Y4m: return "Y4M";
    case FileFormat::Raw: return "raw frames";
  }
  return "";
}

bool FrameReader::Next(Frame& frame) {
  if (!ReadFrame(frame)) return false;
  frame.coding = coding_.ForRows(frame.Height());
  if (verbose_ && frame.Info().isYCbCr && !(coding_.matrix && coding_.range))
    std::fprintf(stderr, "qvtool: %s: taken for %s; --matrix and --range say otherwise\n",
                 source_->Name().c_str(), NameOf(frame.coding).c_str());
  verbose_ = false;
  return true;
}

void FrameReader::Override(const CodingHints& hints, bool verbose) {
  if (hints.matrix) coding_.matrix = hints.matrix;
  if (hints.range) coding_.range = hints.range;
  if (hints.siting) coding_.siting = hints.siting;
  verbose_ = verbose;
}

namespace {

std::unique_ptr<FrameReader> OpenSource(const InputSpec& spec) {
  if (spec.layout.has_value() != spec.size.has_value())
    throw UsageError(spec.layout ? "--layout without --size: headerless frames need both"
                                 : "--size without --layout: headerless frames need both");
  auto source = std::make_unique<ByteSource>(spec.path);
  if (spec.layout)
    return std::make_unique<RawReader>(std::move(source), *spec.layout, *spec.size, spec.rate);
  const std::string_view first = source->Peek(12);
  if (first.empty()) throw Error(source->Name() + ": is empty");
  if (LooksLikePng(first))
    return std::make_unique<PictureReader>(std::move(source), FileFormat::Png);
  if (LooksLikeJpeg(first))
    return std::make_unique<PictureReader>(std::move(source), FileFormat::Jpeg);
  if (LooksLikeY4m(first)) return std::make_unique<Y4mReader>(std::move(source));
  throw Error(source->Name() +
              ": neither PNG, JPEG nor Y4M; headerless frames need --layout and --size");
}

}  // namespace

std::unique_ptr<FrameReader> OpenInput(const InputSpec& spec) {
  auto reader = OpenSource(spec);
  reader->Override(spec.coding, spec.verbose);
  return reader;
}

FileFormat OutputFormat(const OutputSpec& spec, FileFormat input) {
  if (spec.format) return *spec.format;
  if (spec.path == "-") return input;
  const std::string extension = Extension(spec.path);
  if (extension == ".png") return FileFormat::Png;
  if (extension == ".jpg" || extension == ".jpeg") return FileFormat::Jpeg;
  if (extension == ".y4m") return FileFormat::Y4m;
  if (extension == ".raw" || extension == ".yuv") return FileFormat::Raw;
  throw UsageError(spec.path + ": " +
                   (extension.empty()
                        ? std::string("the name has no extension")
                        : "there is no format for the extension '" + extension + "'") +
                   "; wanted is .png, .jpg, .jpeg, .y4m, .raw or .yuv, or --format");
}

std::unique_ptr<FrameWriter> OpenOutput(const OutputSpec& spec, FileFormat input) {
  switch (const FileFormat format = OutputFormat(spec, input); format) {
    case FileFormat::Y4m: return std::make_unique<Y4mWriter>(spec);
    case FileFormat::Raw: return std::make_unique<RawWriter>(spec);
    default: return std::make_unique<PictureWriter>(spec, format);
  }
}

Frame ReadPicture(const std::string& path) {
  InputSpec spec;
  spec.path = path;
  auto reader = OpenInput(spec);
  Frame frame;
  if (!reader->Next(frame)) throw Error(reader->Source().Name() + ": holds no frame");
  return frame;
}

void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes) {
  OutputFile file(path);
  file.Write(bytes.data(), bytes.size());
  file.Commit();
}

}  // namespace qvtool
