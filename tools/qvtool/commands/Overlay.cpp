// qvtool overlay: places a picture with alpha over frames.
#include <cstdio>

#include "Command.h"
#include "Foreground.h"

namespace qvtool {
namespace {

struct Options {
  std::string logo;
  Position at;
  int opacity = 255;
};

class Overlay : public Step {
 public:
  explicit Overlay(const Options& options)
      : options_(options), foreground_(ReadPicture(options.logo), options.at) {}

  Frame& operator()(Frame& frame, Frame&) override {
    if (!foreground_.LayOver(frame, options_.opacity)) SayOutside(frame);
    return frame;
  }

 private:
  void SayOutside(const Frame& frame) {
    if (!saidOutside_)
      std::fprintf(stderr, "qvtool: --at: at %d,%d the picture lies outside of frames of %dx%d\n",
                   options_.at.x, options_.at.y, frame.Width(), frame.Height());
    saidOutside_ = true;
  }

  Options options_;
  Foreground foreground_;
  bool saidOutside_ = false;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
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
      "converted to theirs. Where it is transparent, frames keep their pixels; opaque pixels\n"
      "arrive as they are.\n"
      "  qvtool overlay clip.y4m branded.y4m --with logo.png --at 40,40 --opacity 200");
  return EachFrameWith<Overlay>(options);
}

const Command command{"overlay", "Place a picture with alpha over frames", Configure};

}  // namespace
}  // namespace qvtool
