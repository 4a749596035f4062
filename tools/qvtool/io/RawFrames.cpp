#include "io/RawFrames.h"

#include "Error.h"

namespace qvtool {
namespace {

[[noreturn]] void CutShort(const std::string& name, long number, std::uint64_t got,
                           std::uint64_t wanted) {
  throw Error(name + ": frame " + std::to_string(number) + " is cut short: " + std::to_string(got) +
              " of " + std::to_string(wanted) + " bytes");
}

std::uint64_t FrameBytes(const Frame& frame) {
  std::uint64_t bytes = 0;
  for (int i = 0; i < frame.Planes(); ++i)
    bytes += static_cast<std::uint64_t>(frame.PlaneAt(i).RowBytes()) *
             static_cast<std::uint64_t>(frame.PlaneAt(i).rows);
  return bytes;
}

std::size_t PackedBytes(const Frame& frame) {
  return static_cast<std::size_t>(frame.Width()) * 4 * static_cast<std::size_t>(frame.Height());
}

}  // namespace

void ReadPlanes(ByteSource& source, const Frame& frame, long number) {
  std::uint64_t done = 0;
  for (int i = 0; i < frame.Planes(); ++i) {
    const Plane& plane = frame.PlaneAt(i);
    for (int y = 0; y < plane.rows; ++y) {
      const auto bytes = static_cast<std::size_t>(plane.RowBytes());
      const std::size_t got = source.Read(plane.Row(y), bytes);
      done += got;
      if (got < bytes) CutShort(source.Name(), number, done, FrameBytes(frame));
    }
  }
}

void WritePlanes(OutputFile& file, const Frame& frame) {
  for (int i = 0; i < frame.Planes(); ++i) {
    const Plane& plane = frame.PlaneAt(i);
    for (int y = 0; y < plane.rows; ++y)
      file.Write(plane.Row(y), static_cast<std::size_t>(plane.RowBytes()));
  }
}

RawReader::RawReader(std::unique_ptr<ByteSource> source, Layout layout, IppiSize size,
                     const std::string& rate)
    : FrameReader(std::move(source), FileFormat::Raw), layout_(layout), size_(size) {
  fields_ = {"F" + rate, "Ip", "A1:1"};
}

bool RawReader::Next(Frame& frame) {
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
    ReadPlanes(*source_, frame, frames_);
    return true;
  }
  std::vector<unsigned char> packed(PackedBytes(frame));
  const std::size_t got = source_->Read(packed.data(), packed.size());
  if (got < packed.size()) CutShort(source_->Name(), frames_, got, packed.size());
  UnpackAlpha(packed.data(), frame);
  return true;
}

void RawWriter::Write(const Frame& frame) {
  if (frame.GetLayout() != Layout::Bgra) {
    WritePlanes(file_, frame);
    return;
  }
  std::vector<unsigned char> packed(PackedBytes(frame));
  PackAlpha(frame, packed.data());
  file_.Write(packed.data(), packed.size());
}

}  // namespace qvtool
