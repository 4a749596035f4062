// Pictures as a stream of frames: that of a file, those of numbered files, or those that
// follow each other on standard input.
#ifndef QV_TOOLS_QVTOOL_IO_PICTUREREADER_H
#define QV_TOOLS_QVTOOL_IO_PICTUREREADER_H

#include "io/FrameStream.h"
#include "io/Numbering.h"
#include "io/PictureCutter.h"

namespace qvtool {

class PictureReader : public FrameReader {
 public:
  PictureReader(std::unique_ptr<ByteSource> source, const PictureFormat& format,
                const InputSpec& spec);

  // Has the reader go on with the pictures of the numbers that follow, up to the first that is
  // missing.
  void GoOn(const Numbering& numbering, long number);

  StreamInfo Describe() override;

 private:
  bool ReadFrame(Frame& frame) override;
  Frame Decode(const std::string& name);
  void FindNext();
  void FindNextInSource();

  const PictureFormat* picture_;  // of the next one, or null at the end
  DecodeOptions options_;
  std::optional<PictureCutter> cutter_;  // for what may hold more than one
  std::optional<Numbering> numbering_;
  long number_ = 1;
};

}  // namespace qvtool

#endif
