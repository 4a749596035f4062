// qvtool copy: copies, crops and changes the layout of pixels.
#include "Command.h"
#include "CropFrame.h"
#include "StreamFields.h"
#include "io/Samples.h"
#include "io/Status.h"

namespace qvtool {
namespace {

enum class Target { Same, Bgr, Bgra, Blue, Green, Red };

struct Options {
  std::optional<IppiRect> region;
  Target target = Target::Same;
  std::string onto;
  std::string alpha;
};

void GreyToBgr(const Plane& from, const Plane& to) {
  Check("qvDup", CqvAccLib::qvDup(CqvAccLib::OneChannel, from.data, from.step, to.data, to.step,
                                  from.Size()));
}

void CopyColour(const Plane& from, const Plane& to) {
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeChannels, from.data, from.step, to.data,
                                    to.step, from.Size()));
}

// A picture given by an option, which must have the size of the frames.
Frame Companion(const char* option, const std::string& path, const Frame& frame) {
  Frame picture = ReadPicture(path);
  if (picture.Width() != frame.Width() || picture.Height() != frame.Height())
    throw Error(std::string(option) + ": " + path + " is " + std::to_string(picture.Width()) + "x" +
                std::to_string(picture.Height()) + "; wanted is the size of the input, " +
                std::to_string(frame.Width()) + "x" + std::to_string(frame.Height()));
  return picture;
}

class Copy : public Step {
 public:
  explicit Copy(const Options& options) : options_(options) {
    const bool intoChannel = options.target >= Target::Blue;
    if (!options.onto.empty() && !intoChannel)
      throw UsageError("--onto: only with --to blue, --to green or --to red");
    if (!options.alpha.empty() && options.target != Target::Bgra)
      throw UsageError("--alpha: only with --to bgra");
  }

  Frame& operator()(Frame& in, Frame& out) override {
    const bool isLast = options_.target == Target::Same;
    Frame& part = !options_.region ? in : isLast ? out : cropped_;
    if (options_.region) CropFrame("--region", *options_.region, in, part);
    switch (options_.target) {
      case Target::Same: return part;
      case Target::Bgr: return conversion_(part, Layout::Bgr, part.coding, out);
      case Target::Bgra: return ToBgra(part, out);
      default: return IntoChannel(part, out);
    }
  }

  VideoFields Fields(const VideoFields& fields, IppiSize, IppiSize) const override {
    return options_.region && options_.region->y % 2 != 0 ? SwapRowParity(fields) : fields;
  }

 private:
  Frame& ToBgra(Frame& in, Frame& result) {
    Frame& out = conversion_(in, Layout::Bgra, in.coding, result);
    if (options_.alpha.empty()) return out;
    if (companion_.Empty()) companion_ = Companion("--alpha", options_.alpha, in);
    if (companion_.GetLayout() != Layout::Grey)
      throw Error("--alpha: " + options_.alpha + " is " + NameOf(companion_.GetLayout()) +
                  "; wanted is a grey picture");
    CopyChannel(ChannelOf(companion_, 0), ChannelOf(out, 3));
    return out;
  }

  Frame& IntoChannel(const Frame& in, Frame& out) {
    if (in.GetLayout() != Layout::Grey)
      throw Error("--to: " + NameOf(in.GetLayout()) +
                  " frames given; wanted is a grey plane for the channel");
    out.Reset(Layout::Bgr, in.Width(), in.Height());
    const Plane& from = in.PlaneAt(0);
    const Plane& to = out.PlaneAt(0);
    if (options_.onto.empty()) {
      const unsigned char black[3] = {};
      Check("qvSet",
            CqvAccLib::qvSet(CqvAccLib::ThreeChannels, black, to.data, to.step, to.Size()));
    } else {
      if (companion_.Empty()) companion_ = Companion("--onto", options_.onto, in);
      if (companion_.Info().isYCbCr)
        throw Error("--onto: " + options_.onto + " is " + NameOf(companion_.GetLayout()) +
                    "; wanted is a grey or colour picture");
      if (companion_.GetLayout() == Layout::Grey)
        GreyToBgr(companion_.PlaneAt(0), to);
      else
        CopyColour(companion_.PlaneAt(0), to);
    }
    const int channel = static_cast<int>(options_.target) - static_cast<int>(Target::Blue);
    Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::PlaneToThreeChannels, from.data, from.step,
                                      to.data + channel, to.step, from.Size()));
    return out;
  }

  Options options_;
  Conversion conversion_;
  Frame cropped_;
  Frame companion_;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  AddRegion(app, options->region);
  AddChoice<Target>(
      app, "--to", options->target,
      {{"same", Target::Same},
       {"bgr", Target::Bgr},
       {"bgra", Target::Bgra},
       {"blue", Target::Blue},
       {"green", Target::Green},
       {"red", Target::Red}},
      "Layout of the output: bgr drops alpha and makes grey and video into three channels, bgra "
      "adds alpha, blue, green and red put a grey plane into that channel");
  app.add_option("--onto", options->onto,
                 "Picture whose other channels stay beside the one written (black)")
      ->type_name("FILE");
  app.add_option("--alpha", options->alpha,
                 "Grey picture that becomes the alpha of --to bgra (255)")
      ->type_name("FILE");
  app.footer(
      "  qvtool copy photo.jpg part.png --region 100,80,640,360\n"
      "  qvtool copy photo.jpg upright.jpg --quality 95");
  return EachFrameWith<Copy>(options);
}

const Command command{"copy", "Copy, crop, or change between grey, BGR and BGRA", Configure};

}  // namespace
}  // namespace qvtool
