// Frames in and out: what all file formats have in common, and the choice between them.
#ifndef QV_TOOLS_QVTOOL_IO_FRAMESTREAM_H
#define QV_TOOLS_QVTOOL_IO_FRAMESTREAM_H

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "io/ByteSource.h"
#include "io/Conversion.h"
#include "io/Frame.h"
#include "io/OutputFile.h"
#include "io/Pictures.h"

namespace qvtool {

// What a video stream says of itself besides its size: the fields of a Y4M header as they are
// written there ("F25:1", "Ip", "A1:1", "C420jpeg", "XYSCSS=420"). Empty for pictures.
using VideoFields = std::vector<std::string>;

// Which frames are wanted, the first of all being 1.
struct FrameRange {
  long first = 1;
  long last = std::numeric_limits<long>::max();
};

struct InputSpec {
  std::string path;
  // Both are given for headerless frames, and neither otherwise.
  std::optional<Layout> layout;
  std::optional<IppiSize> size;
  // Frame rate of headerless frames and of pictures, "25:1".
  std::string rate = "25:1";
  // Of numbered pictures, their numbers.
  std::optional<FrameRange> frames;
  DecodeOptions decode;
  // What the stream does not say of itself, or says wrongly.
  CodingHints coding;
  // Says on standard error what is taken for granted.
  bool verbose = false;
};

struct OutputSpec {
  std::string path;
  // Unset: by the extension of the path; for standard output, as the input.
  std::optional<FileFormat> format;
  int quality = 92;  // of a JPEG
  // Of luma and chroma that are written; otherwise the coding that the frames have.
  CodingHints coding;
};

// What is known of a stream before its frames are read.
struct StreamInfo {
  Layout layout;
  IppiSize size;
  std::optional<long> frames;  // not of pipes
};

class FrameReader {
 public:
  virtual ~FrameReader() = default;

  // Reads the next frame; false at the end. Throws an Error for damaged input.
  bool Next(Frame& frame);

  // Leaves out all frames but these.
  void Select(const FrameRange& frames) { range_ = frames; }

  // Instead of Next: what the headers say. Throws an Error when frames are damaged or missing, as
  // far as these tell.
  virtual StreamInfo Describe();

  // Puts what arguments say of the coding in the place of what the stream says.
  void Override(const CodingHints& hints, bool verbose);

  FileFormat Format() const { return format_; }
  const VideoFields& Fields() const { return fields_; }
  ByteSource& Source() { return *source_; }
  // Bytes of the source read so far.
  std::uint64_t Position() const { return source_->Position(); }
  bool IsVideo() const { return format_ == FileFormat::Y4m || format_ == FileFormat::Raw; }

 protected:
  FrameReader(std::unique_ptr<ByteSource> source, FileFormat format)
      : source_(std::move(source)), format_(format) {}

  virtual bool ReadFrame(Frame& frame) = 0;

  std::unique_ptr<ByteSource> source_;
  FileFormat format_;
  VideoFields fields_;
  CodingHints coding_;  // as far as the stream says

 private:
  FrameRange range_;
  long read_ = 0;
  bool verbose_ = false;
};

class FrameWriter {
 public:
  virtual ~FrameWriter() = default;
  // Converts the frame to what the file holds, and to the coding asked for. May keep its memory and
  // put a frame with other memory in its place.
  virtual void Write(Frame& frame) { WriteFrame(Converted(frame, conversion_)); }
  // Makes the output appear under its name. Without it, nothing is left behind.
  virtual void Finish() = 0;

  // What a stream says of itself; to be known before the first frame is written.
  void SetFields(VideoFields fields) { fields_ = std::move(fields); }

 protected:
  explicit FrameWriter(const CodingHints& coding) : coding_(coding) {}

  // The layout that frames of this one are written in.
  virtual Layout Holds(const LayoutInfo& info) const = 0;
  virtual void WriteFrame(const Frame& frame) = 0;

  const Frame& Converted(const Frame& frame, Conversion& conversion) const {
    return conversion(frame, Holds(frame.Info()), coding_.Over(frame.coding));
  }

  VideoFields fields_;

 private:
  CodingHints coding_;
  Conversion conversion_;
};

// Chooses by the first bytes of the input; headerless frames by the layout given. A path such as
// frame-%04d.png, unless there is a file of this very name, is a picture of every number from 0 or
// 1 on.
std::unique_ptr<FrameReader> OpenInput(const InputSpec& spec);

// The format that a name's extension stands for, and the usual extension of a format.
std::optional<FileFormat> FormatOfName(const std::string& path);
const char* ExtensionOf(FileFormat format);

// The format that `spec` asks for; `input` is what an output to a pipe follows.
FileFormat OutputFormat(const OutputSpec& spec, FileFormat input);

// A path such as frame-%04d.png makes a picture of every frame, counted from 1.
std::unique_ptr<FrameWriter> OpenOutput(const OutputSpec& spec, FileFormat input);

// The whole of a picture file, or the first frame of a video.
Frame ReadPicture(const std::string& path);

void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes);

}  // namespace qvtool

#endif
