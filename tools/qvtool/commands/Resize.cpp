// qvtool resize: scales frames, or a part of them.
#include <cmath>

#include "Command.h"
#include "Pipeline.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  InputSpec input;
  OutputSpec output;
  std::optional<IppiSize> size;
  std::optional<double> factor;
  std::optional<IppiRect> region;
  IppiInterpolation method = InterpolateCubic;
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

// Every plane goes from the grid it has in the one frame to the grid it has in the other.
void ResizePlane(const Plane& from, const Plane& to, bool packed, IppiInterpolation method) {
  const IppiRect all = {0, 0, from.columns, from.rows};
  const double xFactor = static_cast<double>(to.columns) / from.columns;
  const double yFactor = static_cast<double>(to.rows) / from.rows;
  if (packed) {  // columns are pairs of pixels
    Check("qvResizeYUV422",
          CqvAccLib::qvResizeYUV422(CqvAccLib::OneChannel, from.data,
                                    {2 * from.columns, from.rows}, from.step,
                                    {0, 0, 2 * from.columns, from.rows}, to.data, to.step,
                                    {2 * to.columns, to.rows}, xFactor, yFactor,
                                    method));
  } else {
    Check("qvResize", CqvAccLib::qvResize(from.Type("resizing"), from.data, from.Size(), from.step,
                                          all, to.data, to.step, to.Size(), xFactor, yFactor,
                                          method));
  }
}

Frame& Resize(const Options& options, const Frame& in, Frame& out) {
  if (options.region) CheckRegion(*options.region, in);
  const IppiRect region = options.region.value_or(in.Bounds());
  const IppiSize size = options.size ? *options.size
                                     : IppiSize{Scaled(region.width, *options.factor),
                                                Scaled(region.height, *options.factor)};
  out.Reset(in.GetLayout(), size.width, size.height);
  for (int i = 0; i < in.Planes(); ++i)
    ResizePlane(in.PlaneAt(i).Cut(region, in.Info().plane[i]), out.PlaneAt(i),
                in.GetLayout() == Layout::Yuyv, options.method);
  return out;
}

void Run(const Options& given) {
  Options options = given;
  // Files know their own size: what --size says of them is the size wanted.
  if (options.input.size && !options.input.layout && !options.size)
    options.size.swap(options.input.size);
  if (options.size.has_value() == options.factor.has_value())
    throw UsageError("resize wants one of --to (or --size) and --factor");
  ForEachFrame(options.input, options.output, [&](Frame& in, Frame& out) -> Frame& {
    return Resize(options, in, out);
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
  AddChoice<IppiInterpolation>(app, "--method", options->method,
                               {{"nearest", InterpolateNearest},
                                {"linear", InterpolateLinear},
                                {"cubic", InterpolateCubic},
                                {"area", InterpolateArea},
                                {"lanczos", InterpolateLanczos}},
                               "How (cubic); area is the one for strong reductions");
  AddRegion(app, options->region);
  app.footer(
      "Planes of chroma are resized each on its own grid. Area enlarges as lanczos does; packed\n"
      "yuyv frames take cubic for both.");
}

const Command command{"resize", "Scale frames, or a part of them, to another size", Configure};

}  // namespace
}  // namespace qvtool
