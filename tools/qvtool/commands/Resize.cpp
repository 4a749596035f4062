// qvtool resize: scales frames, or a part of them.
#include <algorithm>
#include <cmath>

#include "Command.h"
#include "ExactApi.h"
#include "Pipeline.h"
#include "io/Resizer.h"

namespace qvtool {
namespace {

struct Options {
  InputSpec input;
  OutputSpec output;
  std::optional<IppiSize> size;
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

Frame& Resize(const Options& options, Resizer& resizer, const Frame& in, Frame& out) {
  if (options.region) CheckRegion(*options.region, in);
  const IppiRect region = options.region.value_or(in.Bounds());
  const IppiSize size = options.size ? *options.size : Scaled(region, *options.factor);
  if (options.exactApi) {
    out.Reset(in.GetLayout(), size.width, size.height);
    ExactResize(in, region, out, options.method);
  } else {
    resizer(in, region, size, options.method, out);
  }
  return out;
}

void Run(const Options& given) {
  Options options = given;
  // Files know their own size: what --size says of them is the size wanted.
  if (options.input.size && !options.input.layout && !options.size)
    options.size.swap(options.input.size);
  if (options.size.has_value() == options.factor.has_value())
    throw UsageError("resize wants one of --to (or --size) and --factor");
  if (options.exactApi && options.method == QV_INTERPOLATE_MITCHELL)
    throw UsageError("--method: mitchell is none of the methods of --exact-api");
  Resizer resizer;
  ForEachFrame(options.input, options.output, [&](Frame& in, Frame& out) -> Frame& {
    return Resize(options, resizer, in, out);
  });
}

void Configure(CLI::App& app) {
  const auto options = AddFrames(app, Run);
  app.add_option_function<std::string>(
         "--to", [options](const std::string& text) { options->size = ParseSize("--to", text); },
         "The size of the result; --size without --layout is the same")
      ->type_name("WxH");
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
      "of threads.");
}

const Command command{"resize", "Scale frames, or a part of them, to another size", Configure};

}  // namespace
}  // namespace qvtool
