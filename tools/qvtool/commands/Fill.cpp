// qvtool fill: makes a frame of one colour, or fills a region of the frames given.
#include "Command.h"
#include "Pipeline.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  std::vector<std::string> paths;
  InputSpec input;
  OutputSpec output;
  std::optional<IppiRect> region;
  std::optional<Colour> colour;
};

void FillPlane(const Plane& plane, const unsigned char* value) {
  Check("qvSet",
        CqvAccLib::qvSet(plane.Type("filling"), value, plane.data, plane.step, plane.Size()));
}

// Packed 4:2:2 and pairs of chroma samples have no fill of their own.
void RejectGroups(const Frame& frame) {
  for (int i = 0; i < frame.Planes(); ++i) frame.PlaneAt(i).Type("filling");
}

void Fill(const Frame& frame, const IppiRect& region, const Colour& colour) {
  RejectGroups(frame);
  const auto value = colour.In(frame.GetLayout());
  const LayoutInfo& info = frame.Info();
  for (int i = 0; i < frame.Planes(); ++i) {
    const Plane plane = frame.PlaneAt(i).Cut(region, info.plane[i]);
    const unsigned char opaque = 255;
    if (i == info.alphaPlane) {
      FillPlane(plane, &opaque);
    } else {
      // The plane order of yv12 is Y, Cr, Cb.
      const int channel = info.layout == Layout::Yv12 && i > 0 ? 3 - i : i;
      FillPlane(plane, plane.bytes == 3 ? value.data() : &value[static_cast<std::size_t>(channel)]);
    }
  }
}

void MakeFrame(const Options& options) {
  if (!options.input.size)
    throw UsageError("--size: wanted when there is no input, such as --size 1920x1080");
  if (options.region) throw UsageError("--region: wants an input whose region is filled");
  const auto layout = options.input.layout.value_or(Layout::Bgr);
  const auto writer =
      OpenOutput(options.output, FileFormat::Raw, {"F" + options.input.rate, "Ip", "A1:1"});
  Frame frame(layout, options.input.size->width, options.input.size->height);
  Fill(frame, frame.Bounds(), *options.colour);
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
    Fill(in, region, *options.colour);
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
