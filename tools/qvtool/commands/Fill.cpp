// qvtool fill: makes a frame of one colour, or fills a region of the frames given.
#include "Command.h"
#include "Files.h"
#include "FillFrame.h"

namespace qvtool {
namespace {

struct Options {
  std::optional<IppiRect> region;
  std::optional<Colour> colour;
};

Frame& Fill(const Options& options, Frame& frame) {
  const IppiRect region = options.region.value_or(frame.Bounds());
  CheckRegion("--region", region, frame);
  FillFrame(frame, region, *options.colour);
  return frame;
}

void MakeFrame(const Options& options, const Files& files) {
  const InputSpec& input = files.input;
  OutputSpec output = files.output;
  output.path = files.paths.front();
  if (!input.size)
    throw UsageError("--size: wanted when there is no input, such as --size 1920x1080");
  if (options.region) throw UsageError("--region: wants an input whose region is filled");
  const auto writer = OpenOutput(output, FileFormat::Raw);
  writer->SetFields({"F" + input.rate, "Ip", "A1:1"});
  Frame frame(input.layout.value_or(Layout::Bgr), input.size->width, input.size->height);
  frame.coding = output.coding.Over(input.coding.ForRows(frame.Height()));
  FillFrame(frame, frame.Bounds(), *options.colour);
  writer->Write(frame);
  writer->Finish();
}

std::shared_ptr<Options> AddOptions(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option_function<std::string>(
         "--colour,--color",
         [options](const std::string& text) { options->colour = Colour::Parse("--colour", text); },
         "#rrggbb, one value, or one value a channel in the order of the layout (B,G,R or Y,Cb,Cr)")
      ->type_name("COLOUR")
      ->required();
  AddRegion(app, options->region);
  return options;
}

MakeStep StepOf(std::shared_ptr<Options> options) {
  return EachFrame([options](Frame& in, Frame&) -> Frame& { return Fill(*options, in); });
}

MakeStep ConfigureStep(CLI::App& app) { return StepOf(AddOptions(app)); }

void Configure(CLI::App& app) {
  const auto options = AddOptions(app);
  const auto files = AddFiles(app, "[IN] OUT");
  app.footer(
      "Without IN, a frame of --size and --layout (bgr) is made.\n"
      "  qvtool fill clip.y4m covered.y4m --region 40,40,320,90 --colour '#000000'\n"
      "  qvtool fill blue.png --size 640x360 --colour '#2040ff'");
  app.callback([options, files] {
    if (files->paths.size() == 1 && files->folder.empty())
      MakeFrame(*options, *files);
    else
      files->Run(OneStep(StepOf(options)));
  });
}

const Command command{"fill", "Make a frame of one colour, or fill a region of frames", Configure,
                      ConfigureStep};

}  // namespace
}  // namespace qvtool
