// qvtool mirror: flips frames.
#include "Command.h"
#include "StreamFields.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  IppiAxis axis = AxisVertical;
};

class Mirror : public Step {
 public:
  explicit Mirror(const Options& options) : axis_(options.axis) {}

  Frame& operator()(Frame& in, Frame& out) override {
    out.ResetLike(in);
    for (int i = 0; i < in.Planes(); ++i) MirrorPlane(in.PlaneAt(i), out.PlaneAt(i));
    return out;
  }

  // The last row of an even number of rows is of the other field than the first.
  VideoFields Fields(const VideoFields& fields, IppiSize before, IppiSize) const override {
    return axis_ == AxisVertical || before.height % 2 != 0 ? fields : SwapRowParity(fields);
  }

 private:
  void MirrorPlane(const Plane& from, const Plane& to) const {
    // Top to bottom, rows stay whole, so that groups of any number of bytes can be flipped.
    const bool asBytes = axis_ == AxisHorizontal && from.bytes != 3;
    const auto type = asBytes ? CqvAccLib::OneChannel : from.Type("mirroring left to right");
    Check("qvMirror", CqvAccLib::qvMirror(type, from.data, from.step, to.data, to.step,
                                          asBytes ? from.SizeInBytes() : from.Size(), axis_));
  }

  IppiAxis axis_;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  AddChoice<IppiAxis>(
      app, "--axis", options->axis,
      {{"top-bottom", AxisHorizontal}, {"left-right", AxisVertical}, {"both", AxisBoth}},
      "Which way to flip (left-right); both is a turn by 180 degrees");
  app.footer("  qvtool mirror photo.jpg turned.png --axis both");
  return EachFrameWith<Mirror>(options);
}

const Command command{"mirror", "Flip top to bottom, left to right or both", Configure};

}  // namespace
}  // namespace qvtool
