// qvtool overlay: places a picture with alpha over frames.
#include <algorithm>
#include <cstdio>

#include "Command.h"
#include "io/Samples.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  std::string logo;
  Position at;
  int opacity = 255;
};

// A foreground over pixels that have an alpha themselves (Porter and Duff 1984), rounded once.
// Opacity, in 1 / 255, is a factor of the foreground's alpha.
void OverAlpha(const Plane& colours, const Plane& alpha, const Plane& below,
               const Plane& belowAlpha, int opacity) {
  for (int y = 0; y < below.rows; ++y)
    for (int x = 0; x < below.columns; ++x) {
      const long long a = alpha.Row(y)[x] * opacity, ba = belowAlpha.Row(y)[x];
      if (a == 0) continue;
      const long long rest = ba * (65025 - a), all = a * 255 + rest;
      for (int c = 3 * x; c < 3 * x + 3; ++c)
        below.Row(y)[c] = static_cast<unsigned char>(
            (colours.Row(y)[c] * a * 255 + below.Row(y)[c] * rest + all / 2) / all);
      belowAlpha.Row(y)[x] = static_cast<unsigned char>((all + 32512) / 65025);
    }
}

class Overlay : public Step {
 public:
  explicit Overlay(const Options& options)
      : options_(options),
        picture_(ReadPicture(options.logo)),
        logo_(conversion_(picture_, Layout::Bgra, picture_.coding)) {}

  Frame& operator()(Frame& frame, Frame&) override {
    const IppiRect region = Visible(frame);
    if (region.width < 1 || region.height < 1) {
      SayOutside(frame);
      return frame;
    }
    if (colours_.Empty()) Recolour(frame);
    below_.Reset(Layout::Bgr, region.width, region.height);
    LoadColours(frame, region, below_.PlaneAt(0));
    Merge(frame, region);
    StoreColours(below_.PlaneAt(0), frame, region);
    return frame;
  }

 private:
  // The part of the frame that the logo covers.
  IppiRect Visible(const Frame& frame) const {
    const auto span = [](int at, int length, int limit, int& first, int& count) {
      const long long end = std::min<long long>(static_cast<long long>(at) + length, limit);
      first = std::max(at, 0);
      count = static_cast<int>(std::max<long long>(end - first, 0));
    };
    IppiRect region;
    span(options_.at.x, logo_.Width(), frame.Width(), region.x, region.width);
    span(options_.at.y, logo_.Height(), frame.Height(), region.y, region.height);
    return region;
  }

  void SayOutside(const Frame& frame) {
    if (!saidOutside_)
      std::fprintf(stderr, "qvtool: --at: at %d,%d the picture lies outside of frames of %dx%d\n",
                   options_.at.x, options_.at.y, frame.Width(), frame.Height());
    saidOutside_ = true;
  }

  // B, G, R of the logo to what frames of this layout and coding hold in their place.
  void Recolour(const Frame& frame) {
    const bool isGrey = frame.GetLayout() == Layout::Grey;
    const Layout layout = frame.Info().isYCbCr ? Layout::I444 : isGrey ? Layout::Grey : Layout::Bgr;
    colours_.Reset(Layout::Bgr, logo_.Width(), logo_.Height());
    LoadColours(recolour_(logo_, layout, frame.coding), logo_.Bounds(), colours_.PlaneAt(0));
  }

  // The logo over the colours of the region, and over its alpha, if there is one.
  void Merge(const Frame& frame, const IppiRect& region) const {
    const Plane &colours = colours_.PlaneAt(0), &alpha = logo_.PlaneAt(1);
    const Plane& below = below_.PlaneAt(0);
    const int alphaPlane = frame.Info().alphaPlane;
    const IppiRect part = {region.x - options_.at.x, region.y - options_.at.y, region.width,
                           region.height};
    if (alphaPlane >= 0)
      OverAlpha(colours.Cut(part, kWhole), alpha.Cut(part, kWhole), below,
                frame.PlaneAt(alphaPlane).Cut(region, kWhole), options_.opacity);
    else
      Check("qv_over",
            qv_over(3, below.data, below.step, {below.columns, below.rows}, 3, colours.data,
                    colours.step, {colours.columns, colours.rows}, alpha.data, alpha.step, -part.x,
                    -part.y, options_.opacity, QV_ALPHA_OVER));
  }

  static constexpr PlaneShape kWhole = {};  // of planes with a unit for every pixel

  Options options_;
  Conversion conversion_, recolour_;
  Frame picture_;
  const Frame& logo_;  // in BGRA
  Frame colours_;      // of the logo, three bytes a pixel
  Frame below_;
  bool saidOutside_ = false;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option("--with", options->logo, "Picture to place on the frames: a PNG with alpha")
      ->type_name("FILE")
      ->required();
  app.add_option_function<std::string>(
         "--at",
         [options](const std::string& text) { options->at = ParsePosition("--at", text); },
         "Where its upper left corner goes, in pixels (0,0); may be negative")
      ->type_name("X,Y");
  AddInteger(app, "--opacity", options->opacity, 0, 255,
             "All of its alphas are scaled by this / 255: 255 leaves them, 0 hides it");
  app.footer(
      "What sticks out of the frame is cut off. Frames of every layout are taken: the picture is\n"
      "converted to theirs. Where it is transparent, frames keep their pixels; opaque pixels\n"
      "arrive as they are.\n"
      "  qvtool overlay clip.y4m branded.y4m --with logo.png --at 40,40 --opacity 200");
  return EachFrameWith<Overlay>(options);
}

const Command command{"overlay", "Place a picture with alpha over frames", Configure};

}  // namespace
}  // namespace qvtool
