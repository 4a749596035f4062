#include "Pipeline.h"

#include "Error.h"
#include "Progress.h"
#include "ReadAhead.h"
#include "WriteBehind.h"

namespace qvtool {
namespace {

class Pipeline {
 public:
  Pipeline(const InputSpec& input, const OutputSpec& output, Chain& chain, bool showProgress)
      : chain_(chain),
        showProgress_(showProgress),
        reader_(OpenInput(input)),
        writer_(OpenOutput(output, reader_->Format())) {}

  void Run() {
    if (reader_->IsVideo())
      SideBySide();
    else
      Loop(*reader_, *writer_);
    if (frames_ == 0) throw Error(reader_->Source().Name() + ": holds no frame");
    writer_->Finish();
  }

 private:
  // Each of reading, working and writing in its own thread.
  void SideBySide() {
    ReadAhead ahead(*reader_);
    WriteBehind behind(*writer_, [&ahead] { ahead.Stop(); });
    try {
      Loop(ahead, behind);
    } catch (...) {
      behind.Drain();  // the frames before; what goes wrong with one of them comes first
      throw;
    }
    behind.Drain();
  }

  template <class In, class Out>
  void Loop(In& in, Out& out) {
    Progress progress(showProgress_ && reader_->IsVideo());
    for (Frame frame; in.Next(frame);) {
      Frame& result = chain_(frame);
      if (frames_ == 0) writer_->SetFields(chain_.Fields(reader_->Fields()));
      out.Write(result);
      progress.Show(++frames_, in.Position(), reader_->Source().Size());
    }
  }

  Chain& chain_;
  bool showProgress_;
  std::unique_ptr<FrameReader> reader_;
  std::unique_ptr<FrameWriter> writer_;
  long frames_ = 0;
};

}  // namespace

void ForEachFrame(const InputSpec& input, const OutputSpec& output, Chain& chain,
                  bool showProgress) {
  if (output.path != "-") OutputFormat(output, FileFormat::Raw);  // an extension that is unknown
  Pipeline(input, output, chain, showProgress).Run();
}

}  // namespace qvtool
