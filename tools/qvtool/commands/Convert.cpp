// qvtool convert: another layout of pixels or of luma and chroma.
#include <functional>

#include "Command.h"
#include "ExactApi.h"
#include "Pipeline.h"

namespace qvtool {
namespace {

struct Options {
  InputSpec input;
  OutputSpec output;
  Layout target = Layout::Bgr;
  bool exactApi = false;
};

void Run(const Options& options) {
  if (options.exactApi) {
    ExactConverter converter(options.target);
    ForEachFrame(options.input, options.output, std::ref(converter));
    return;
  }
  Conversion conversion;
  ForEachFrame(options.input, options.output, [&](Frame& in, Frame&) -> const Frame& {
    return conversion(in, options.target, options.output.coding.Over(in.coding));
  });
}

void Configure(CLI::App& app) {
  const auto options = AddFrames(app, Run);
  app.add_option_function<std::string>(
         "--to",
         [options](const std::string& text) { options->target = ParseLayout("--to", text); },
         "Layout of the output (bgr): " + LayoutNames())
      ->type_name("LAYOUT");
  AddExactApi(app, options->exactApi,
              "yuyv, i420, yv12 and nv12 to bgr, yuyv and nv12 to i420 and yv12; an odd last "
              "column or row of 4:2:0 is left out");
  app.footer(
      "Files that do not hold the layout get the nearest one that they do: PNG and JPEG pixels,\n"
      "Y4M planes. Samples are moved as they are where matrix, range and grid stay the same.");
}

const Command command{"convert", "Change the layout of frames", Configure};

}  // namespace
}  // namespace qvtool
