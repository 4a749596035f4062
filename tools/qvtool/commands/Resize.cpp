// qvtool resize: scales frames, or a part of them.
#include <algorithm>
#include <cmath>

#include "Command.h"
#include "ExactApi.h"
#include "StreamFields.h"
#include "TargetSize.h"
#include "io/Resizer.h"

namespace qvtool {
namespace {

struct Options {
  std::optional<TargetSize> size;
  std::optional<double> factor;
  std::optional<IppiRect> region;
  int method = QV_INTERPOLATE_CUBIC;
  bool exactApi = false;
};

double ParseFactor(const std::string& text) {
  std::size_t used = 0;
  double factor = 0;
  try {
    factor = std::stod(text, &used);
  } catch (const std::exception&) {
    used = text.size() + 1;
  }
  if (used != text.size() || !(factor > 0) || !std::isfinite(factor))
    throw UsageError("--factor: '" + text + "' given; wanted is a number above 0");
  return factor;
}

int Scaled(int length, double factor) {
  const double scaled = length * factor + 1e-07;
  if (scaled > 1e9)
    throw UsageError("--factor: the result would be more than 1000000000 pixels long");
  return scaled < 1 ? 1 : static_cast<int>(scaled);
}

IppiSize Scaled(const IppiRect& region, double factor) {
  if (std::max(region.width, region.height) * factor < 0.5)
    throw UsageError("--factor: the result would be less than a pixel");
  return {Scaled(region.width, factor), Scaled(region.height, factor)};
}

class Resize : public Step {
 public:
  explicit Resize(const Options& options) : options_(options) {
    if (options.exactApi && options.method == QV_INTERPOLATE_MITCHELL)
      throw UsageError("--method: mitchell is none of the methods of --exact-api");
    if (options.size.has_value() == options.factor.has_value())
      throw UsageError("resize wants one of --to, --fit and --factor");
  }

  // The nearest pixels are some of the file's own, and a reduced picture has none of these.
  double Reduction(IppiSize frame) const override {
    if (options_.exactApi || options_.method == QV_INTERPOLATE_NEAREST) return 1;
    const IppiRect region = options_.region.value_or(IppiRect{0, 0, frame.width, frame.height});
    const IppiSize size = SizeFor(region);
    return std::min(static_cast<double>(region.width) / size.width,
                    static_cast<double>(region.height) / size.height);
  }

  Frame& operator()(Frame& in, Frame& out) override {
    if (options_.region) CheckRegion("--region", *options_.region, in);
    const IppiSize full = in.FullSize();
    const IppiRect region = options_.region.value_or(IppiRect{0, 0, full.width, full.height});
    const IppiSize size = SizeFor(region);
    if (options_.exactApi) {
      out.Reset(in.GetLayout(), size.width, size.height);
      ExactResize(in, region, out, options_.method);
    } else {
      resizer_(in, region, size, options_.method, out);
    }
    return out;
  }

  VideoFields Fields(const VideoFields& fields, IppiSize before, IppiSize after) const override {
    if (options_.region) before = {options_.region->width, options_.region->height};
    return ScaleAspect(fields, before, after);
  }

 private:
  IppiSize SizeFor(const IppiRect& region) const {
    return options_.size ? options_.size->For({region.width, region.height})
                         : Scaled(region, *options_.factor);
  }

  Options options_;
  Resizer resizer_;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  auto* to = app.add_option_function<std::string>(
      "--to",
      [options](const std::string& text) { options->size = TargetSize::Parse("--to", text); },
      "The size of the result; 640x or x360 keeps the shape");
  auto* fit = app.add_option_function<std::string>(
      "--fit",
      [options](const std::string& text) { options->size = TargetSize::ParseFit("--fit", text); },
      "The largest size of the frame's shape within this one");
  to->type_name("WxH");
  fit->type_name("WxH")->excludes(to);
  app.add_option_function<std::string>(
         "--factor", [options](const std::string& text) { options->factor = ParseFactor(text); },
         "Result over source, both ways: 0.5 halves")
      ->type_name("NUMBER");
  AddChoice<int>(app, "--method", options->method,
                 {{"nearest", QV_INTERPOLATE_NEAREST},
                  {"linear", QV_INTERPOLATE_LINEAR},
                  {"cubic", QV_INTERPOLATE_CUBIC},
                  {"mitchell", QV_INTERPOLATE_MITCHELL},
                  {"area", QV_INTERPOLATE_AREA},
                  {"lanczos", QV_INTERPOLATE_LANCZOS}},
                 "How (cubic); in reductions every pixel counts, but for nearest");
  AddRegion(app, options->region);
  AddExactApi(app, options->exactApi,
              "every plane on its own grid; its positions depend on the number of threads");
  app.footer(
      "The edges of the frame, or of the region, are those of the result, and chroma stays where\n"
      "it lies among the luma. Colours count by their alpha. The result is the same on any number\n"
      "of threads.\n"
      "  qvtool resize photo.jpg small.png --fit 320x320\n"
      "  qvtool resize clip.y4m half.y4m --factor 0.5 --method lanczos");
  return EachFrameWith<Resize>(options);
}

const Command command{"resize", "Scale frames, or a part of them, to another size", Configure};

}  // namespace
}  // namespace qvtool
