#include "Pipeline.h"

#include "Error.h"
#include "Progress.h"

namespace qvtool {

void ForEachFrame(const InputSpec& input, const OutputSpec& output, const FrameFunction& work) {
  if (output.path != "-") OutputFormat(output, FileFormat::Raw);  // an extension that is unknown
  const auto reader = OpenInput(input);
  const auto writer = OpenOutput(output, reader->Format(), reader->Fields());
  Progress progress(reader->IsVideo());
  Frame in;
  Frame out;
  long frames = 0;
  while (reader->Next(in)) {
    out.Inherit(in);
    writer->Write(work(in, out));
    progress.Show(++frames, reader->Source().Position(), reader->Source().Size());
  }
  if (frames == 0) throw Error(reader->Source().Name() + ": holds no frame");
  writer->Finish();
}

}  // namespace qvtool
