#include "Pipeline.h"

#include "Error.h"
#include "Progress.h"

namespace qvtool {

void ForEachFrame(const InputSpec& input, const OutputSpec& output, Chain& chain) {
  if (output.path != "-") OutputFormat(output, FileFormat::Raw);  // an extension that is unknown
  const auto reader = OpenInput(input);
  const auto writer = OpenOutput(output, reader->Format());
  Progress progress(reader->IsVideo());
  Frame in;
  long frames = 0;
  while (reader->Next(in)) {
    Frame& result = chain(in);
    if (frames == 0) writer->SetFields(chain.Fields(reader->Fields()));
    writer->Write(result);
    progress.Show(++frames, reader->Source().Position(), reader->Source().Size());
  }
  if (frames == 0) throw Error(reader->Source().Name() + ": holds no frame");
  writer->Finish();
}

}  // namespace qvtool
