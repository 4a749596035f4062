// qvtool scale: darkens frames by a constant.
#include "Command.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  int value = 255;
  bool alpha = false;
};

void ScalePlane(const Plane& plane, int value) {
  Check("qvMulCScale",
        CqvAccLib::qvMulCScale(CqvAccLib::ScalePlane, static_cast<unsigned char>(value), plane.data,
                               plane.step, plane.SizeInBytes()));
}

Frame& Scale(const Options& options, Frame& frame) {
  const LayoutInfo& info = frame.Info();
  if (options.alpha) {
    if (info.alphaPlane < 0)
      throw Error("--alpha: the frames are " + NameOf(info.layout) + ", which has no alpha");
    ScalePlane(frame.PlaneAt(info.alphaPlane), options.value);
    return frame;
  }
  if (info.isYCbCr && info.plane[0].bytes != 1)
    throw Error("scaling takes planes of luma, and " + NameOf(info.layout) +
                " frames mix luma with chroma");
  // Chroma lies around 128: only luma can be scaled towards black.
  ScalePlane(frame.PlaneAt(0), options.value);
  return frame;
}

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  AddInteger(app, "--by", options->value, 0, 255,
             "Every byte becomes floor(byte * this / 255): 255 changes nothing, 0 is black")
      ->required();
  app.add_flag("--alpha", options->alpha,
               "Scale the alpha instead of the colours: fade to nothing");
  app.footer(
      "Of frames with luma and chroma only the luma is scaled.\n"
      "  qvtool scale logo.png half.png --by 128 --alpha");
  return EachFrame([options](Frame& in, Frame&) -> Frame& { return Scale(*options, in); });
}

const Command command{"scale", "Multiply all samples by a constant from 0 to 1", Configure};

}  // namespace
}  // namespace qvtool
