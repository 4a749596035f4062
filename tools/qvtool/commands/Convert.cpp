// qvtool convert: video frames to BGR pictures, or to three planes of 4:2:0.
#include "Command.h"
#include "Pipeline.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  InputSpec input;
  OutputSpec output;
  Layout target = Layout::Bgr;
};

// The planes and steps of a planar 4:2:0 frame in the order that an operation wants.
struct Planes420 {
  Planes420(const Frame& frame, bool crFirst) {
    const bool swapped = crFirst != (frame.GetLayout() == Layout::Yv12);
    for (int i = 0; i < 3; ++i) {
      const Plane& plane = frame.PlaneAt(i > 0 && swapped ? 3 - i : i);
      data[i] = plane.data;
      step[i] = plane.step;
    }
  }
  unsigned char* data[3];
  int step[3];
};

class Converter {
 public:
  explicit Converter(Layout target) : target_(target) {}

  Frame& operator()(Frame& in, Frame& out) {
    const Layout from = in.GetLayout();
    const bool isPlanar = from == Layout::I420 || from == Layout::Yv12;
    if (from != Layout::Yuyv && from != Layout::Nv12 && !isPlanar)
      throw Error("convert: " + NameOf(from) +
                  " frames given; wanted is yuyv, i420, yv12 or nv12");
    if (target_ != Layout::Bgr) {
      if (isPlanar)
        throw Error("--to: " + NameOf(from) + " frames given; " + NameOf(target_) +
                    " is made from yuyv and nv12");
      return ToPlanes(in, out, target_);
    }
    if (from == Layout::Yuyv) return PackedToBgr(in, out);
    // Two planes become three on the way.
    return PlanesToBgr(from == Layout::Nv12 ? ToPlanes(in, planes_, Layout::I420) : in, out);
  }

 private:
  // 4:2:0 is converted in blocks of 2 x 2 pixels: an odd last column or row is left out.
  static void ResetEven(const Frame& in, Frame& out, Layout layout) {
    if (in.Width() < 2 || in.Height() < 2)
      throw Error("convert: the frames are " + std::to_string(in.Width()) + "x" +
                  std::to_string(in.Height()) + "; wanted is 2x2 at least");
    out.Reset(layout, in.Width() & ~1, in.Height() & ~1);
  }

  static Frame& PackedToBgr(const Frame& in, Frame& out) {
    if (in.Width() < 2) throw Error("convert: the frames are 1 pixel wide; wanted is 2 at least");
    out.Reset(Layout::Bgr, in.Width(), in.Height());
    const Plane& from = in.PlaneAt(0);
    const Plane& to = out.PlaneAt(0);
    Check("qvYCbCr422ToBGR", CqvAccLib::qvYCbCr422ToBGR(CqvAccLib::ThreeChannels, from.data,
                                                        from.step, to.data, to.step, in.Size()));
    return out;
  }

  static Frame& PlanesToBgr(const Frame& in, Frame& out) {
    ResetEven(in, out, Layout::Bgr);
    Planes420 from(in, false);
    const Plane& to = out.PlaneAt(0);
    Check("qvYCbCr420ToBGR",
          CqvAccLib::qvYCbCr420ToBGR(CqvAccLib::ThreeChannels, from.data, from.step, to.data,
                                     to.step, out.Size()));
    return out;
  }

  static Frame& ToPlanes(const Frame& in, Frame& out, Layout layout) {
    ResetEven(in, out, layout);
    const Plane& first = in.PlaneAt(0);
    if (in.GetLayout() == Layout::Yuyv) {
      Planes420 to(out, true);
      Check("qvYCbCr422ToYCrCb420",
            CqvAccLib::qvYCbCr422ToYCrCb420(CqvAccLib::OneChannel, first.data, first.step, to.data,
                                            to.step, out.Size()));
    } else {
      Planes420 to(out, false);
      const Plane& pairs = in.PlaneAt(1);
      Check("qvYCbCr420",
            CqvAccLib::qvYCbCr420(CqvAccLib::OneChannel, first.data, first.step, pairs.data,
                                  pairs.step, to.data, to.step, out.Size()));
    }
    return out;
  }

  Layout target_;
  Frame planes_;
};

void Run(const Options& options) {
  Converter converter(options.target);
  ForEachFrame(options.input, options.output, std::ref(converter));
}

void Configure(CLI::App& app) {
  const auto options = AddFrames(app, Run);
  AddChoice<Layout>(
      app, "--to", options->target,
      {{"bgr", Layout::Bgr}, {"i420", Layout::I420}, {"yv12", Layout::Yv12}},
      "Layout of the output: bgr (if not given), or planar 4:2:0 from yuyv and nv12. An odd "
      "last column or row of 4:2:0 is left out");
}

const Command command{"convert", "Convert YCbCr video to BGR, or to planar 4:2:0", Configure};

}  // namespace
}  // namespace qvtool
