// qvtool fill: makes a frame of one colour, or fills a region of the frames given.
#include "Command.h"
#include "FillFrame.h"
#include "Pipeline.h"

namespace qvtool {
namespace {

struct Options {
  std::vector<std::string> paths;
  InputSpec input;
  OutputSpec output;
  std::optional<IppiRect> region;
  std::optional<Colour> colour;
};

void MakeFrame(const Options& options) {
  if (!options.input.size)
    throw UsageError("--size: wanted when there is no input, such as --size 1920x1080");
  if (options.region) throw UsageError("--region: wants an input whose region is filled");
  const auto layout = options.input.layout.value_or(Layout::Bgr);
  const auto writer =
      OpenOutput(options.output, FileFormat::Raw, {"F" + options.input.rate, "Ip", "A1:1"});
  Frame frame(layout, options.input.size->width, options.input.size->height);
  frame.coding = options.output.coding.Over(options.input.coding.ForRows(frame.Height()));
  FillFrame(frame, frame.Bounds(), *options.colour);
  writer->Write(frame);
  writer->Finish();
}

void Run(Options& options) {
  options.output.path = options.paths.back();
  if (options.paths.size() == 1) {
    MakeFrame(options);
    return;
  }
  options.input.path = options.paths.front();
  ForEachFrame(options.input, options.output, [&](Frame& in, Frame&) -> Frame& {
    const IppiRect region = options.region.value_or(in.Bounds());
    CheckRegion(region, in);
    FillFrame(in, region, *options.colour);
    return in;
  });
}

void Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option(
         "[IN] OUT", options->paths,
         "The frames to fill, if any, and the file to write; - for standard input or output")
      ->required()
      ->expected(1, 2);
  app.add_option_function<std::string>(
         "--colour,--color",
         [options](const std::string& text) { options->colour = Colour::Parse("--colour", text); },
         "#rrggbb, one value, or one value a channel in the order of the layout (B,G,R or Y,Cb,Cr)")
      ->type_name("COLOUR")
      ->required();
  AddRawInputOptions(app, options->input);
  AddRegion(app, options->region);
  AddOutputOptions(app, options->output);
  app.footer("Without IN, a frame of --size and --layout (bgr) is made.");
  app.callback([options] { Run(*options); });
}

const Command command{"fill", "Make a frame of one colour, or fill a region of frames", Configure};

}  // namespace
}  // namespace qvtool
