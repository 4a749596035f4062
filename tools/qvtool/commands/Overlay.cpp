// qvtool overlay: places a picture with alpha over frames.
#include <cstdio>

#include "Command.h"
#include "Foreground.h"
#include "Pipeline.h"

namespace qvtool {
namespace {

struct Options {
  InputSpec input;
  OutputSpec output;
  std::string logo;
  Position at;
  int opacity = 255;
};

void SayOutside(Position at, const Frame& frame) {
  std::fprintf(stderr, "qvtool: --at: at %d,%d the picture lies outside of frames of %dx%d\n", at.x,
               at.y, frame.Width(), frame.Height());
}

void Run(const Options& options) {
  Foreground foreground(ReadPicture(options.logo), options.at);
  bool saidOutside = false;
  ForEachFrame(options.input, options.output, [&](Frame& in, Frame&) -> Frame& {
    if (!foreground.LayOver(in, options.opacity) && !saidOutside) {
      SayOutside(options.at, in);
      saidOutside = true;
    }
    return in;
  });
}

void Configure(CLI::App& app) {
  const auto options = AddFrames(app, Run);
  app.add_option("--with", options->logo, "Picture to place on the frames: a PNG with alpha")
      ->type_name("FILE")
      ->required();
  app.add_option_function<std::string>(
         "--at",
         [options](const std::string& text) { options->at = ParsePosition("--at", text); },
         "Where its upper left corner goes, in pixels (0,0); may be negative")
      ->type_name("X,Y");
  AddInteger(app, "--opacity", options->opacity, 0, 255,
             "All of its alphas are scaled by this / 255: 255 leaves them, 0 hides it");
  app.footer(
      "What sticks out of the frame is cut off. Frames of every layout are taken: the picture is\n"
      "converted to theirs. Where it is transparent, frames keep their pixels; opaque pixels arrive\n"
      "as they are.");
}

const Command command{"overlay", "Place a picture with alpha over frames", Configure};

}  // namespace
}  // namespace qvtool
