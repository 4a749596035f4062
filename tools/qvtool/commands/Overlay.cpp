// qvtool overlay: places a picture with alpha over frames.
#include <algorithm>
#include <cmath>

#include "Command.h"
#include "Pipeline.h"
#include "io/Samples.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  InputSpec input;
  OutputSpec output;
  std::string logo;
  Position at;
  int opacity = 255;
};

void CopyBytes(const Plane& from, const Plane& to) {
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::OneChannel, from.data, from.step, to.data, to.step,
                                    to.SizeInBytes()));
}

void Fill(const Plane& plane, unsigned char value) {
  Check("qvSet", CqvAccLib::qvSet(CqvAccLib::OneChannel, &value, plane.data, plane.step,
                                  plane.SizeInBytes()));
}

unsigned char Round(double value) {
  return static_cast<unsigned char>(std::lround(std::clamp(value, 0.0, 255.0)));
}

// Any picture as colours and alpha; opaque if it has none of its own.
Frame ReadLogo(const std::string& path) {
  Frame picture = ReadPicture(path);
  if (picture.GetLayout() == Layout::Bgra) return picture;
  if (picture.Info().isYCbCr)
    throw Error("--with: " + path + " is " + NameOf(picture.GetLayout()) +
                "; wanted is a PNG or JPEG picture");
  Frame logo(Layout::Bgra, picture.Width(), picture.Height());
  const Plane& from = picture.PlaneAt(0);
  const Plane& to = logo.PlaneAt(0);
  if (picture.GetLayout() == Layout::Grey)
    Check("qvDup", CqvAccLib::qvDup(CqvAccLib::OneChannel, from.data, from.step, to.data, to.step,
                                    to.Size()));
  else
    CopyBytes(from, to);
  Fill(logo.PlaneAt(1), 255);
  return logo;
}

// B, G, R to what frames of a layout hold in their place: Y, Cb, Cr by ITU-R BT.601 in studio
// range, or three times the luma of that recommendation.
void Recolour(const Plane& colours, Layout layout) {
  const LayoutInfo& info = Describe(layout);
  if (!info.isYCbCr && layout != Layout::Grey) return;
  for (int y = 0; y < colours.rows; ++y)
    for (unsigned char* p = colours.Row(y); p < colours.Row(y) + colours.RowBytes(); p += 3) {
      const double luma = 0.114 * p[0] + 0.587 * p[1] + 0.299 * p[2];
      const double cb = (p[0] - luma) / 1.772, cr = (p[2] - luma) / 1.402;
      if (info.isYCbCr) {
        p[0] = Round(16 + luma * 219 / 255);
        p[1] = Round(128 + cb * 224 / 255);
        p[2] = Round(128 + cr * 224 / 255);
      } else {
        p[0] = p[1] = p[2] = Round(luma);
      }
    }
}

class Overlay {
 public:
  explicit Overlay(const Options& options) : options_(options), logo_(ReadLogo(options.logo)) {
    const Plane& alpha = logo_.PlaneAt(1);
    Check("qvMulCScale",
          CqvAccLib::qvMulCScale(CqvAccLib::ScalePlane, static_cast<unsigned char>(options.opacity),
                                 alpha.data, alpha.step, alpha.Size()));
  }

  Frame& operator()(Frame& frame) {
    if (layout_ != frame.GetLayout()) {
      layout_ = frame.GetLayout();
      Recolour(logo_.PlaneAt(0), *layout_);
    }
    const IppiRect region = Visible(frame);
    if (region.width < 1 || region.height < 1) return frame;
    const Frame logo = Part(region);
    Merge(frame, region, logo);
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

  // A copy of that part of the logo: the merge replaces its colours by those of the result.
  Frame Part(const IppiRect& region) const {
    const IppiRect from = {region.x - options_.at.x, region.y - options_.at.y, region.width,
                           region.height};
    Frame part(Layout::Bgra, region.width, region.height);
    for (int i = 0; i < 2; ++i)
      CopyBytes(logo_.PlaneAt(i).Cut(from, logo_.Info().plane[i]), part.PlaneAt(i));
    return part;
  }

  void Merge(const Frame& frame, const IppiRect& region, const Frame& logo) {
    const Plane& colours = logo.PlaneAt(0);
    const Plane& alpha = logo.PlaneAt(1);
    merged_.Reset(Layout::Grey, region.width, region.height);
    below_.Reset(Layout::Bgra, region.width, region.height);
    CopyBytes(alpha, merged_.PlaneAt(0));
    LoadColours(frame, region, below_.PlaneAt(0));
    const int alphaPlane = frame.Info().alphaPlane;
    if (alphaPlane < 0)
      Fill(below_.PlaneAt(1), 255);
    else
      CopyBytes(frame.PlaneAt(alphaPlane).Cut(region, frame.Info().plane[alphaPlane]),
                below_.PlaneAt(1));
    const Plane& below = below_.PlaneAt(0);
    const Plane& belowAlpha = below_.PlaneAt(1);
    // The merged alpha has the step of the logo's: planes of one byte and one width.
    Check("qvMergeAlphaOver",
          CqvAccLib::qvMergeAlphaOver(CqvAccLib::ThreeChannels, colours.data, colours.step,
                                      alpha.data, alpha.step, below.data, below.step,
                                      belowAlpha.data, belowAlpha.step, merged_.PlaneAt(0).data,
                                      colours.RowBytes(), region.width, region.height));
    StoreColours(colours, frame, region);
    if (alphaPlane >= 0)
      StoreAlpha(alpha, frame.PlaneAt(alphaPlane).Cut(region, frame.Info().plane[alphaPlane]));
  }

  // The merged alpha is truncated: it would be one short where nothing is placed and where the
  // frame is opaque.
  void StoreAlpha(const Plane& logo, const Plane& frame) const {
    for (int y = 0; y < frame.rows; ++y)
      for (int x = 0; x < frame.columns; ++x)
        if (logo.Row(y)[x] != 0 && frame.Row(y)[x] != 255)
          frame.Row(y)[x] = merged_.PlaneAt(0).Row(y)[x];
  }

  const Options& options_;
  Frame logo_;
  std::optional<Layout> layout_;  // whose colours the logo has
  Frame below_;
  Frame merged_;
};

void Run(const Options& options) {
  Overlay overlay(options);
  ForEachFrame(options.input, options.output,
               [&](Frame& in, Frame&) -> Frame& { return overlay(in); });
}

void Configure(CLI::App& app) {
  const auto options = AddFrames(app, Run);
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
      "converted to theirs. Where it is transparent, frames keep their pixels.");
}

const Command command{"overlay", "Place a picture with alpha over frames", Configure};

}  // namespace
}  // namespace qvtool
