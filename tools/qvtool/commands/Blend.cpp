// qvtool blend: composes two pictures under an alpha each.
#include "Command.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  std::string below;
  IppiAlphaType operation = AlphaOver;
  int alpha1 = 128;
  int alpha2 = 255;
};

std::string Shape(const Frame& frame) {
  return NameOf(frame.GetLayout()) + " of " + std::to_string(frame.Width()) + "x" +
         std::to_string(frame.Height());
}

// All bytes are composed alike, those of an alpha plane too. Chroma lies around 128: most of the
// operations would tint it.
Frame& Blend(const Options& options, const Frame& a, const Frame& b, Frame& out) {
  if (a.Info().isYCbCr)
    throw Error("blend: " + NameOf(a.GetLayout()) + " frames given; wanted is grey, bgr or bgra");
  if (a.GetLayout() != b.GetLayout() || a.Width() != b.Width() || a.Height() != b.Height())
    throw Error("blend: the frames are " + Shape(a) + ", and " + options.below + " is " + Shape(b) +
                "; wanted are two alike");
  out.ResetLike(a);
  for (int i = 0; i < a.Planes(); ++i) {
    const Plane& first = a.PlaneAt(i);
    const Plane& second = b.PlaneAt(i);
    const Plane& to = out.PlaneAt(i);
    Check("qvAlphaCompC",
          CqvAccLib::qvAlphaCompC(first.Type("blending"), first.data, first.step,
                                  static_cast<unsigned char>(options.alpha1), second.data,
                                  second.step, static_cast<unsigned char>(options.alpha2), to.data,
                                  to.step, to.Size(), options.operation));
  }
  return out;
}

class Blending : public Step {
 public:
  explicit Blending(const Options& options)
      : options_(options), below_(ReadPicture(options.below)) {}

  Frame& operator()(Frame& in, Frame& out) override { return Blend(options_, in, below_, out); }

 private:
  Options options_;
  Frame below_;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option("--with", options->below, "The picture below: of the same size and layout")
      ->type_name("FILE")
      ->required();
  AddChoice<IppiAlphaType>(app, "--operation", options->operation,
                           {{"over", AlphaOver},
                            {"in", AlphaIn},
                            {"out", AlphaOut},
                            {"atop", AlphaAtop},
                            {"xor", AlphaXor},
                            {"plus", AlphaPlus},
                            {"over-premultiplied", AlphaOverPremul},
                            {"in-premultiplied", AlphaInPremul},
                            {"out-premultiplied", AlphaOutPremul},
                            {"atop-premultiplied", AlphaAtopPremul},
                            {"xor-premultiplied", AlphaXorPremul},
                            {"plus-premultiplied", AlphaPlusPremul}},
                           "How (over), after Porter and Duff 1984");
  AddInteger(app, "--alpha1", options->alpha1, 0, 255, "Alpha of all of IN (128)");
  AddInteger(app, "--alpha2", options->alpha2, 0, 255, "Alpha of all of the picture below (255)");
  app.footer(
      "The premultiplied operations take pictures that are scaled by their alphas already. Bytes\n"
      "of an alpha plane are composed like those of colours.\n"
      "  qvtool blend first.png mixed.png --with second.png --operation atop --alpha1 180");
  return EachFrameWith<Blending>(options);
}

const Command command{"blend", "Compose two pictures under an alpha each", Configure};

}  // namespace
}  // namespace qvtool
