#include "demo/Scene.h"

#include <algorithm>
#include <cmath>

#include "Error.h"
#include "demo/TestCard.h"
#include "io/FrameStream.h"
#include "io/Status.h"

namespace qvtool::demo {
namespace {

unsigned char Clamp(double value) {
  return static_cast<unsigned char>(std::lround(std::clamp(value, 0.0, 255.0)));
}

// Luma by the weights of ITU-R BT.601, full range.
Frame Luma(const Frame& bgr) {
  Frame grey(Layout::Grey, bgr.Width(), bgr.Height());
  for (int y = 0; y < bgr.Height(); ++y) {
    const unsigned char* from = bgr.PlaneAt(0).Row(y);
    unsigned char* to = grey.PlaneAt(0).Row(y);
    for (int x = 0; x < bgr.Width(); ++x, from += 3)
      to[x] =
          static_cast<unsigned char>((114 * from[0] + 587 * from[1] + 299 * from[2] + 500) / 1000);
  }
  return grey;
}

Frame ToBgr(const Frame& frame) {
  Conversion conversion;
  return conversion(frame, Layout::Bgr, frame.coding).Clone();
}

// The frame moved left by `pixels`; its last columns stay.
Frame Panned(const Frame& frame, int pixels) {
  Frame panned = frame.Clone();
  const Plane& from = frame.PlaneAt(0);
  const Plane& to = panned.PlaneAt(0);
  if (frame.Width() > pixels)
    Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeChannels, from.data + 3 * pixels, from.step,
                                      to.data, to.step, {frame.Width() - pixels, frame.Height()}));
  return panned;
}

Frame Weave(const Frame& even, const Frame& odd) {
  Frame woven = even.Clone();
  if (even.Height() < 2) return woven;
  const Plane& from = odd.PlaneAt(0);
  const Plane& to = woven.PlaneAt(0);
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeChannels, from.Row(1), 2 * from.step, to.Row(1),
                                    2 * to.step, {even.Width(), even.Height() / 2}));
  return woven;
}

Frame Vignette(int width, int height) {
  Frame mask(Layout::Grey, width, height);
  for (int y = 0; y < height; ++y) {
    unsigned char* row = mask.PlaneAt(0).Row(y);
    for (int x = 0; x < width; ++x) {
      const double dx = (x + 0.5) / width * 2 - 1;
      const double dy = (y + 0.5) / height * 2 - 1;
      row[x] = Clamp((1.05 - std::sqrt(dx * dx + dy * dy)) / 0.45 * 255);
    }
  }
  return mask;
}

// ITU-R BT.601 in studio range from a pixel B, G, R.
unsigned char Y(const unsigned char* p) {
  return Clamp(16 + (0.114 * p[0] + 0.587 * p[1] + 0.299 * p[2]) * 219 / 255);
}
unsigned char Cb(const unsigned char* p) {
  const double y = 0.114 * p[0] + 0.587 * p[1] + 0.299 * p[2];
  return Clamp(128 + (p[0] - y) / 1.772 * 224 / 255);
}
unsigned char Cr(const unsigned char* p) {
  const double y = 0.114 * p[0] + 0.587 * p[1] + 0.299 * p[2];
  return Clamp(128 + (p[2] - y) / 1.402 * 224 / 255);
}

// Each group has the chroma of its left pixel.
Frame Packed(const Frame& colour) {
  Frame packed(Layout::Yuyv, colour.Width() & ~1, colour.Height() & ~1);
  for (int y = 0; y < packed.Height(); ++y) {
    const unsigned char* from = colour.PlaneAt(0).Row(y);
    unsigned char* to = packed.PlaneAt(0).Row(y);
    for (int x = 0; x < packed.Width(); x += 2, from += 6, to += 4) {
      to[0] = Y(from);
      to[1] = Cb(from);
      to[2] = Y(from + 3);
      to[3] = Cr(from);
    }
  }
  return packed;
}

// The middle of the detail, of all those side by side, in which two frames of one size differ most.
Spot MostDifferent(const Frame& a, const Frame& b) {
  constexpr int kWidth = kDetail.width, kHeight = kDetail.height;
  Spot most = {a.Width() / 2, a.Height() / 2};
  long long largest = 0;
  for (int top = 0; top + kHeight <= a.Height(); top += kHeight)
    for (int left = 0; left + kWidth <= a.Width(); left += kWidth) {
      long long sum = 0;
      for (int y = top; y < top + kHeight; ++y)
        for (int i = 3 * left; i < 3 * (left + kWidth); ++i)
          sum += std::abs(a.PlaneAt(0).Row(y)[i] - b.PlaneAt(0).Row(y)[i]);
      if (sum > largest) most = {left + kWidth / 2, top + kHeight / 2};
      largest = std::max(largest, sum);
    }
  return most;
}

Scene Complete(Scene scene) {
  scene.woven = Weave(scene.colour, scene.later);
  scene.grey = Luma(scene.colour);
  if (scene.colour.Width() > 1 && scene.colour.Height() > 1) scene.packed = Packed(scene.colour);
  scene.mask = Vignette(scene.colour.Width(), scene.colour.Height());
  scene.about +=
      ", " + std::to_string(scene.colour.Width()) + " × " + std::to_string(scene.colour.Height());
  return scene;
}

}  // namespace

IppiRect Around(const Frame& frame, Spot spot, IppiSize size) {
  const int width = std::min(size.width, frame.Width());
  const int height = std::min(size.height, frame.Height());
  return {std::clamp(spot.x - width / 2, 0, frame.Width() - width),
          std::clamp(spot.y - height / 2, 0, frame.Height() - height), width, height};
}

Scene TestCardScene() {
  Scene scene;
  scene.about = "the test card";
  scene.colour = DrawTestCard(21);
  scene.later = DrawTestCard(22);
  scene.letters = kTestCardLetters;
  scene.fine = kTestCardRings;
  scene.moving = kTestCardMotion;
  scene.coloured = kTestCardRed;
  return Complete(std::move(scene));
}

Scene FileScene(const std::string& path) {
  InputSpec spec;
  spec.path = path;
  const auto reader = OpenInput(spec);
  Frame frame;
  if (!reader->Next(frame)) throw Error(reader->Source().Name() + ": holds no frame");
  Scene scene;
  scene.about = path.substr(path.rfind('/') + 1);
  scene.colour = ToBgr(frame);
  Frame second;
  scene.later = reader->Next(second)
                    ? ToBgr(second)
                    : Panned(scene.colour, std::max(1, scene.colour.Width() / 160));
  scene.moving = MostDifferent(scene.colour, scene.later);
  scene.letters = scene.fine = scene.coloured =
      MostDifferent(scene.colour, Panned(scene.colour, 1));
  return Complete(std::move(scene));
}

}  // namespace qvtool::demo
