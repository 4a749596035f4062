// qvtool mirror: flips frames.
#include "Command.h"
#include "Pipeline.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  InputSpec input;
  OutputSpec output;
  IppiAxis axis = AxisVertical;
};

Frame& Mirror(IppiAxis axis, const Frame& in, Frame& out) {
  out.ResetLike(in);
  for (int i = 0; i < in.Planes(); ++i) {
    const Plane& from = in.PlaneAt(i);
    const Plane& to = out.PlaneAt(i);
    // Top to bottom, rows stay whole, so that groups of any number of bytes can be flipped.
    const bool asBytes = axis == AxisHorizontal && from.bytes != 3;
    const auto type = asBytes ? CqvAccLib::OneChannel : from.Type("mirroring left to right");
    Check("qvMirror", CqvAccLib::qvMirror(type, from.data, from.step, to.data, to.step,
                                          asBytes ? from.SizeInBytes() : from.Size(), axis));
  }
  return out;
}

void Run(const Options& options) {
  ForEachFrame(options.input, options.output,
               [&](Frame& in, Frame& out) -> Frame& { return Mirror(options.axis, in, out); });
}

void Configure(CLI::App& app) {
  const auto options = AddFrames(app, Run);
  AddChoice<IppiAxis>(
      app, "--axis", options->axis,
      {{"top-bottom", AxisHorizontal}, {"left-right", AxisVertical}, {"both", AxisBoth}},
      "Which way to flip (left-right); both is a turn by 180 degrees");
}

const Command command{"mirror", "Flip top to bottom, left to right or both", Configure};

}  // namespace
}  // namespace qvtool
