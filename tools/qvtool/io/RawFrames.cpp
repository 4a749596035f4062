#include "io/RawFrames.h"

#include "Error.h"

namespace qvtool {
namespace {

[[noreturn]] void CutShort(const std::string& name, long number, std::uint64_t got,
                           std::uint64_t wanted) {
  throw Error(name + ": frame " + std::to_string(number) + " is cut short: " + std::to_string(got) +
              " of " + std::to_string(wanted) + " bytes");
}

std::uint64_t FrameBytes(Layout layout, IppiSize size) {
  std::uint64_t bytes = 0;
  const LayoutInfo& info = Describe(layout);
  for (int i = 0; i < info.planes; ++i) {
    const auto units = [](int length, int shift) {
      return (static_cast<std::uint64_t>(length) + (1u << shift) - 1) >> shift;
    };
    const PlaneShape& shape = info.plane[i];
    bytes += units(size.width, shape.shiftX) * units(size.height, shape.shiftY) *
             static_cast<std::uint64_t>(shape.bytes);
  }
  return bytes;
}

}  // namespace

void ReadPlanes(ByteSource& source, const Frame& frame, Pieces& pieces, long number) {
  pieces.Clear();
  pieces.AddPlanes(frame);
  const std::size_t wanted = pieces.Bytes(), got = source.Read(pieces);
  if (got < wanted) CutShort(source.Name(), number, got, wanted);
}

void SkipPlanes(ByteSource& source, Layout layout, IppiSize size, long number) {
  const std::uint64_t wanted = FrameBytes(layout, size), got = source.Skip(wanted);
  if (got < wanted) CutShort(source.Name(), number, got, wanted);
}

RawReader::RawReader(std::unique_ptr<ByteSource> source, Layout layout, IppiSize size,
                     const std::string& rate)
    : FrameReader(std::move(source), FileFormat::Raw), layout_(layout), size_(size) {
  fields_ = {"F" + rate, "Ip", "A1:1"};
  const std::uint64_t frame = FrameBytes(layout, size), all = source_->Size().value_or(0);
  if (all % frame != 0)
    throw Error(source_->Name() + ": " + std::to_string(all) + " bytes given; wanted is a " +
                "multiple of " + std::to_string(frame) + ", the bytes of a " + NameOf(layout) +
                " frame of " + std::to_string(size.width) + "x" + std::to_string(size.height));
}

StreamInfo RawReader::Describe() {
  StreamInfo info = {layout_, size_, {}};
  if (const auto bytes = source_->Size()) {
    if (*bytes == 0) throw Error(source_->Name() + ": is empty");
    info.frames = static_cast<long>(*bytes / FrameBytes(layout_, size_));
  }
  return info;
}

bool RawReader::ReadFrame(Frame& frame) {
  if (source_->AtEnd()) {
    if (frames_ == 0) throw Error(source_->Name() + ": is empty");
    return false;
  }
  ++frames_;
  try {
    frame.Reset(layout_, size_.width, size_.height);
  } catch (const Error& error) {
    throw Error(source_->Name() + ": " + error.what());
  }
  frame.parameters.clear();
  if (layout_ != Layout::Bgra) {
    ReadPlanes(*source_, frame, pieces_, frames_);
    return true;
  }
  packed_.resize(frame.PackedBytes());
  const std::size_t got = source_->Read(packed_.data(), packed_.size());
  if (got < packed_.size()) CutShort(source_->Name(), frames_, got, packed_.size());
  UnpackAlpha(packed_.data(), frame);
  return true;
}

void RawWriter::WriteFrame(const Frame& frame) {
  if (frame.GetLayout() != Layout::Bgra) {
    pieces_.Clear();
    pieces_.AddPlanes(frame);
    file_.Write(pieces_);
    return;
  }
  packed_.resize(frame.PackedBytes());
  PackAlpha(frame, packed_.data());
  file_.Write(packed_.data(), packed_.size());
}

}  // namespace qvtool
