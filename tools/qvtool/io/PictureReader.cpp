#include "io/PictureReader.h"

#include <filesystem>

#include "Error.h"
#include "Report.h"

namespace qvtool {

PictureReader::PictureReader(std::unique_ptr<ByteSource> source, const PictureFormat& format,
                             const InputSpec& spec)
    : FrameReader(std::move(source), format.format), picture_(&format), options_(spec.decode) {
  fields_ = {"F" + spec.rate};
  if (spec.path == "-" || format.format == FileFormat::Netpbm) cutter_.emplace(*source_);
}

void PictureReader::GoOn(const Numbering& numbering, long number) {
  numbering_ = numbering;
  number_ = number;
  cutter_.reset();
}

StreamInfo PictureReader::Describe() {
  options_.headersOnly = true;
  const Frame frame = Decode(source_->Name());
  const IppiSize size = frame.metadata ? options_.Turned(frame.Size(), *frame.metadata)
                                       : frame.Size();
  return {frame.GetLayout(), size, 1};
}

Frame PictureReader::Decode(const std::string& name) {
  const Bytes bytes = cutter_ ? cutter_->Cut(picture_->format) : source_->ReadAll();
  return picture_->decode(bytes, name, options_);
}

bool PictureReader::ReadFrame(Frame& frame) {
  if (!picture_) return false;
  std::string name = source_->Name();
  if (cutter_ && number_ > 1) name += ": picture " + std::to_string(number_);
  frame = Decode(name);
  if (!options_.keepOrientation) TurnUpright(frame);
  ++number_;
  FindNext();
  return true;
}

void PictureReader::FindNext() {
  picture_ = nullptr;
  if (cutter_) {
    FindNextInSource();
  } else if (numbering_) {
    const std::string path = numbering_->Path(number_);
    if (!std::filesystem::exists(path)) return;
    source_ = std::make_unique<ByteSource>(path);
    picture_ = PictureFormatOf(source_->Peek(12));
    if (!picture_) throw Error(path + ": is none of " + PictureFormatNames());
  }
}

void PictureReader::FindNextInSource() {
  const std::string_view first = cutter_->Peek();
  picture_ = PictureFormatOf(first);
  if (!picture_ && !first.empty())
    Report(source_->Name() + ": what follows picture " + std::to_string(number_ - 1) +
           " is none and is left out");
}

}  // namespace qvtool
