// qvtool rotate: turns frames about their middle.
#include "Pipeline.h"
#include "Projection.h"

namespace qvtool {
namespace {

struct Options {
  InputSpec input;
  OutputSpec output;
  ProjectionOptions projection;
  double angle = 0;
  bool fit = false;
};

void Run(const Options& options) {
  ForEachFrame(options.input, options.output, [&](Frame& in, Frame& out) -> Frame& {
    Rotate(options.projection, in, options.angle, options.fit, out);
    return out;
  });
}

void Configure(CLI::App& app) {
  const auto options = AddFrames(app, Run);
  app.add_option_function<std::string>(
         "--angle",
         [options](const std::string& text) {
           options->angle = ParseNumbers("--angle", text, 1, "a number of degrees")[0];
         },
         "Degrees, counter-clockwise")
      ->type_name("NUMBER")
      ->required();
  app.add_flag("--fit", options->fit, "Make the canvas large enough for all of the turned frame");
  AddProjectionOptions(app, options->projection);
  app.footer(
      "Without --fit the canvas keeps the frame's size and its corners are cut off. With --fit,\n"
      "turns by 90, 180 and 270 degrees move pixels as they are.");
}

const Command command{"rotate", "Turn frames by any angle", Configure};

}  // namespace
}  // namespace qvtool
