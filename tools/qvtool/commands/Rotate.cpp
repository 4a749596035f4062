// qvtool rotate: turns frames about their middle.
#include <cmath>

#include "Projection.h"
#include "StreamFields.h"

namespace qvtool {
namespace {

struct Options {
  ProjectionOptions projection;
  double angle = 0;
  bool fit = false;
};

class Turn : public Step {
 public:
  explicit Turn(const Options& options) : options_(options) {}

  Frame& operator()(Frame& in, Frame& out) override {
    Rotate(options_.projection, in, options_.angle, options_.fit, out);
    return out;
  }

  VideoFields Fields(const VideoFields& fields, IppiSize before, IppiSize) const override {
    const double quarters = std::fmod(options_.angle, 360) / 90;
    if (quarters == 0) return fields;
    if (std::abs(quarters) == 2) return before.height % 2 ? fields : SwapRowParity(fields);
    const bool onSide = quarters == std::floor(quarters);
    return WithoutRows(onSide ? TurnAspect(fields) : fields);
  }

 private:
  Options options_;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
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
      "turns by 90, 180 and 270 degrees move pixels as they are. Colours count by their alpha.\n"
      "  qvtool rotate photo.jpg level.png --angle -3.5 --fit");
  return EachFrameWith<Turn>(options);
}

const Command command{"rotate", "Turn frames by any angle", Configure};

}  // namespace
}  // namespace qvtool
