#include "io/FrameStream.h"

#include <cctype>
#include <filesystem>

#include "Error.h"
#include "Report.h"
#include "io/Numbering.h"
#include "io/PictureReader.h"
#include "io/PictureWriter.h"
#include "io/RawFrames.h"
#include "io/Y4mFile.h"

namespace qvtool {
namespace {

// The first one of a format is the usual one.
constexpr std::pair<const char*, FileFormat> kExtensions[] = {
    {".png", FileFormat::Png},    {".jpg", FileFormat::Jpeg},   {".jpeg", FileFormat::Jpeg},
    {".ppm", FileFormat::Netpbm}, {".pgm", FileFormat::Netpbm}, {".pnm", FileFormat::Netpbm},
    {".y4m", FileFormat::Y4m},    {".raw", FileFormat::Raw},    {".yuv", FileFormat::Raw}};

std::string Extension(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string::npos || path.find('/', dot) != std::string::npos) return "";
  std::string extension = path.substr(dot);
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension;
}

}  // namespace

bool FrameReader::Next(Frame& frame) {
  if (read_ >= range_.last) return false;
  do {
    if (!ReadFrame(frame)) {
      if (read_ < range_.first && range_.first > 1)
        throw Error(source_->Name() + ": frame " + std::to_string(range_.first) +
                    " is wanted, and it has " + std::to_string(read_));
      return false;
    }
  } while (++read_ < range_.first);
  frame.coding = coding_.ForRows(frame.Height());
  if (verbose_ && frame.Info().isYCbCr && !(coding_.matrix && coding_.range))
    Report(source_->Name() + ": taken for " + NameOf(frame.coding) +
           "; --matrix and --range say otherwise");
  verbose_ = false;
  return true;
}

StreamInfo FrameReader::Describe() {
  Frame frame;
  if (!Next(frame)) throw Error(source_->Name() + ": holds no frame");
  return {frame.GetLayout(), frame.Size(), 1};
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
                                 : "--size without --layout: it is the size of headerless frames, "
                                   "which need both; the size of a result is --to");
  auto source = std::make_unique<ByteSource>(spec.path);
  if (spec.layout)
    return std::make_unique<RawReader>(std::move(source), *spec.layout, *spec.size, spec.rate);
  const std::string_view first = source->Peek(12);
  if (first.empty()) throw Error(source->Name() + ": is empty");
  if (const PictureFormat* format = PictureFormatOf(first))
    return std::make_unique<PictureReader>(std::move(source), *format, spec);
  if (LooksLikeY4m(first)) return std::make_unique<Y4mReader>(std::move(source));
  throw Error(source->Name() + ": is none of " + PictureFormatNames() +
              " and Y4M; headerless frames need --layout and --size");
}

std::unique_ptr<FrameReader> OpenNumbered(const InputSpec& spec, const Numbering& numbering) {
  long number = 0;
  if (spec.frames)
    number = spec.frames->first;
  else if (!std::filesystem::exists(numbering.Path(0)))
    number = 1;
  InputSpec first = spec;
  first.path = numbering.Path(number);
  auto reader = OpenSource(first);
  auto* pictures = dynamic_cast<PictureReader*>(reader.get());
  if (!pictures) throw Error(first.path + ": is none of " + PictureFormatNames());
  pictures->GoOn(numbering, number);
  if (spec.frames) reader->Select({1, spec.frames->last - number + 1});
  return reader;
}

}  // namespace

std::unique_ptr<FrameReader> OpenInput(const InputSpec& spec) {
  const auto numbering = std::filesystem::exists(spec.path) ? std::nullopt
                                                            : Numbering::Find(spec.path);
  auto reader = numbering ? OpenNumbered(spec, *numbering) : OpenSource(spec);
  if (spec.frames && !numbering) reader->Select(*spec.frames);
  reader->Override(spec.coding, spec.verbose);
  return reader;
}

std::optional<FileFormat> FormatOfName(const std::string& path) {
  const std::string extension = Extension(path);
  for (const auto& [name, format] : kExtensions)
    if (extension == name) return format;
  return {};
}

const char* ExtensionOf(FileFormat format) {
  for (const auto& [name, of] : kExtensions)
    if (of == format) return name;
  return "";
}

FileFormat OutputFormat(const OutputSpec& spec, FileFormat input) {
  if (spec.format) return *spec.format;
  if (spec.path == "-") {
    const PictureFormat* format = PictureFormatOf(input);
    return format && !format->encode ? FileFormat::Png : input;
  }
  if (const auto format = FormatOfName(spec.path)) return *format;
  const std::string extension = Extension(spec.path);
  throw UsageError(spec.path + ": " +
                   (extension.empty()
                        ? std::string("the name has no extension")
                        : "there is no format for the extension '" + extension + "'") +
                   "; wanted is .png, .jpg, .jpeg, .ppm, .pgm, .y4m, .raw or .yuv, or --format");
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
