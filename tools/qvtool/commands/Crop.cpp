// qvtool crop: a part of frames.
#include "Command.h"
#include "CropFrame.h"
#include "StreamFields.h"

namespace qvtool {
namespace {

struct Options {
  IppiRect area = {};
};

class Crop : public Step {
 public:
  explicit Crop(const Options& options) : area_(options.area) {}

  Frame& operator()(Frame& in, Frame& out) override {
    CropFrame("AREA", area_, in, out);
    return out;
  }

  VideoFields Fields(const VideoFields& fields, IppiSize, IppiSize) const override {
    return area_.y % 2 == 0 ? fields : SwapRowParity(fields);
  }

 private:
  IppiRect area_;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option_function<std::string>(
         "AREA",
         [options](const std::string& text) { options->area = ParseRegion("AREA", text); },
         "The part that stays: X,Y,WIDTH,HEIGHT in pixels")
      ->type_name("")
      ->required();
  app.footer(
      "Of frames with fewer chroma samples than pixels, X and Y are where there is one: even with\n"
      "4:2:0.\n"
      "  qvtool crop 100,80,640,360 photo.jpg part.png");
  return EachFrameWith<Crop>(options);
}

const Command command{"crop", "Cut a part out of frames", Configure};

}  // namespace
}  // namespace qvtool
