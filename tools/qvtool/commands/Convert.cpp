// qvtool convert: another layout of pixels or of luma and chroma.
#include "Command.h"
#include "ExactApi.h"

namespace qvtool {
namespace {

struct Options {
  Layout target = Layout::Bgr;
  bool exactApi = false;
};

class Converting : public Step {
 public:
  explicit Converting(const Options& options) : target_(options.target) {}

  void Begin(InputSpec&, const OutputSpec& output) override { coding_ = output.coding; }

  Frame& operator()(Frame& in, Frame& out) override {
    return conversion_(in, target_, coding_.Over(in.coding), out);
  }

 private:
  Layout target_;
  CodingHints coding_;
  Conversion conversion_;
};

class ExactConverting : public Step {
 public:
  explicit ExactConverting(const Options& options) : converter_(options.target) {}
  Frame& operator()(Frame& in, Frame& out) override { return converter_(in, out); }

 private:
  ExactConverter converter_;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
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
      "Y4M planes. Samples are moved as they are where matrix, range and grid stay the same.\n"
      "  qvtool convert clip.y4m frame-%04d.png --frames 1-2\n"
      "  qvtool convert photo.jpg photo.yuv --to nv12 --to-matrix bt709");
  return [options]() -> std::unique_ptr<Step> {
    if (options->exactApi) return std::make_unique<ExactConverting>(*options);
    return std::make_unique<Converting>(*options);
  };
}

const Command command{"convert", "Change the layout of frames", Configure};

}  // namespace
}  // namespace qvtool
