#include <algorithm>
#include <cmath>
#include <string_view>

#include "demo/Font.h"
#include "demo/Panel.h"
#include "io/Status.h"

namespace qvtool::demo {
namespace {

void CopyColours(const Plane& from, const Plane& to) {
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeChannels, from.data, from.step, to.data,
                                    to.step, to.Size()));
}

void CopyAlpha(const Plane& from, const Plane& to) {
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::OneChannel, from.data, from.step, to.data, to.step,
                                    to.Size()));
}

// Calls dot(x, y) for the pixels of a text whose dots are squares of `size` pixels.
template <class Dot>
void ForText(int left, int top, int size, std::string_view text, Dot dot) {
  for (int y = 0; y < kGlyphHeight * size; ++y)
    for (int x = 0; x < kGlyphAdvance * size * static_cast<int>(text.size()); ++x) {
      const int column = x / size % kGlyphAdvance;
      const char character = text[static_cast<std::size_t>(x / size / kGlyphAdvance)];
      if (column < kGlyphWidth && GlyphDot(character, column, y / size)) dot(left + x, top + y);
    }
}

constexpr IppiSize kLogo = {560, 200};

// A plate that one can look through, with a soft shadow, and an opaque disc and letters on it.
Frame DrawLogo() {
  Frame logo(Layout::Bgra, kLogo.width, kLogo.height);
  const auto paint = [&](int x, int y, double b, double g, double r, double share) {
    unsigned char* pixel = logo.PlaneAt(0).Row(y) + 3 * x;
    const double colour[3] = {b, g, r};
    for (int c = 0; c < 3; ++c)
      pixel[c] = static_cast<unsigned char>(std::lround(pixel[c] + (colour[c] - pixel[c]) * share));
  };
  for (int y = 0; y < kLogo.height; ++y)
    for (int x = 0; x < kLogo.width; ++x) {
      unsigned char* pixel = logo.PlaneAt(0).Row(y) + 3 * x;
      unsigned char& alpha = logo.PlaneAt(1).Row(y)[x];
      // The distance from a plate with round corners, 24 pixels inside.
      const double dx = std::max(std::abs(x + 0.5 - 280) - 216, 0.0);
      const double dy = std::max(std::abs(y + 0.5 - 100) - 36, 0.0);
      const double outside = std::hypot(dx, dy) - 40;
      const double plate = std::clamp(0.5 - outside, 0.0, 1.0);
      pixel[0] = static_cast<unsigned char>(std::lround(90 * plate));
      pixel[1] = static_cast<unsigned char>(std::lround(48 * plate));
      pixel[2] = static_cast<unsigned char>(std::lround(20 * plate));
      const double shadow = std::clamp(1 - outside / 24, 0.0, 1.0);
      alpha = static_cast<unsigned char>(std::lround(plate > 0 ? 165 : 165 * shadow * shadow));
      const double radius = std::hypot(x + 0.5 - 100, y + 0.5 - 100);
      const double disc = std::clamp(52.5 - radius, 0.0, 1.0);
      const double light = std::clamp(1.2 - std::hypot(x - 82.0, y - 80.0) / 90, 0.0, 1.0);
      paint(x, y, 40 * light, 90 + 100 * light, 255, disc);
      alpha = std::max(alpha, static_cast<unsigned char>(std::lround(255 * disc)));
    }
  ForText(184, 65, 10, "qvAcc", [&](int x, int y) {
    paint(x, y, 255, 250, 245, 1);
    logo.PlaneAt(1).Row(y)[x] = 255;
  });
  return logo;
}

Frame Part(const Frame& source, Spot middle, IppiSize most) {
  const IppiRect region = Around(source, middle, most);
  Frame part(source.GetLayout(), region.width, region.height);
  for (int i = 0; i < source.Planes(); ++i) {
    const Plane from = source.PlaneAt(i).Cut(region, source.Info().plane[i]);
    if (from.bytes == 3)
      CopyColours(from, part.PlaneAt(i));
    else
      CopyAlpha(from, part.PlaneAt(i));
  }
  return part;
}

// Where the logo goes.
IppiRect PlaceOf(const Frame& logo, const Frame& frame) {
  return Around(frame, {1460, 220}, logo.Size());
}

void MakeOver(const Scene& scene, Gallery& gallery) {
  const Frame logo = Part(DrawLogo(), {0, 0}, scene.colour.Size());
  const IppiRect at = PlaceOf(logo, scene.colour);
  const Plane& fg = logo.PlaneAt(0);
  const Plane& alpha = logo.PlaneAt(1);
  Frame result = scene.colour.Clone();
  const Plane& frame = result.PlaneAt(0);
  const qv_size frameSize = {frame.columns, frame.rows}, fgSize = {fg.columns, fg.rows};
  for (const int opacity : {255, 100}) {
    const std::string caption = "opacity " + std::to_string(opacity);
    gallery.Add({.name = "over-" + std::to_string(opacity),
                 .title = "Lay a logo over a frame, in place",
                 .variant = caption,
                 .formula = "B = F * (a o / 65025) + B * (1 - a o / 65025), rounded once",
                 .note = "Porter and Duff's over: an opaque pixel arrives as it is.",
                 .calls = {QV_CALL(qv_over(3, frame.data, frame.step, frameSize, 3, fg.data,
                                           fg.step, fgSize, alpha.data, alpha.step, at.x, at.y,
                                           opacity, QV_ALPHA_OVER))},
                 .prepare = [&] { CopyColours(scene.colour.PlaneAt(0), frame); },
                 .pixels = static_cast<long long>(fg.columns) * fg.rows,
                 .before = {{"the logo", logo}},
                 .after = {{opacity == 255 ? "a logo over it" : caption, result}},
                 .cover = opacity == 255});
  }
}

void MakeLogo(const Scene& scene, Gallery& gallery) {
  const Frame logo = Part(DrawLogo(), {0, 0}, scene.colour.Size());
  const IppiRect at = PlaceOf(logo, scene.colour);
  Frame placed = logo.Clone();
  Frame opaque(Layout::Grey, logo.Width(), logo.Height());
  for (int y = 0; y < opaque.Height(); ++y)
    std::fill_n(opaque.PlaneAt(0).Row(y), opaque.Width(), static_cast<unsigned char>(255));

  const Plane& fg = placed.PlaneAt(0);
  const Plane& fgAlpha = logo.PlaneAt(1);
  const Plane bg = scene.colour.PlaneAt(0).Cut(at, scene.colour.Info().plane[0]);
  const Plane& bgAlpha = opaque.PlaneAt(0);
  const Plane& alpha = placed.PlaneAt(1);
  gallery.Add({.name = "composite-logo",
               .title = "Merge two pictures, each with an alpha",
               .formula = "F = (F * fa + (1 - fa) * ba * B) / a, a = fa + (1 - fa) * ba",
               .note = "The colours of the logo are replaced by those of the result.",
               .calls = {QV_CALL(CqvAccLib::qvMergeAlphaOver(
                   CqvAccLib::ThreeChannels, fg.data, fg.step, fgAlpha.data, fgAlpha.step, bg.data,
                   bg.step, bgAlpha.data, bgAlpha.step, alpha.data, fg.RowBytes(), fg.columns,
                   fg.rows))},
               .prepare =
                   [&] {
                     CopyColours(logo.PlaneAt(0), fg);
                     CopyAlpha(fgAlpha, alpha);
                   },
               .before = {{"the logo", logo}},
               .after = {{"merged with what lies below it", placed}}});
}

// The frame in the middle of its own mirror image.
void MakeMask(const Scene& scene, Gallery& gallery) {
  const Plane& from = scene.colour.PlaneAt(0);
  Frame mirrored(Layout::Bgr, scene.colour.Width(), scene.colour.Height());
  const Plane& back = mirrored.PlaneAt(0);
  Check("qvMirror", CqvAccLib::qvMirror(CqvAccLib::ThreeChannels, from.data, from.step, back.data,
                                        back.step, from.Size(), AxisVertical));
  Frame result = mirrored.Clone();
  const Plane& dst = result.PlaneAt(0);
  const Plane& src = from;
  const Plane& alpha = scene.mask.PlaneAt(0);
  gallery.Add({.name = "composite-mask",
               .title = "Mix a frame into another one under a mask",
               .formula = "D = floor(a * S / 255) + floor(((255 - a) * D + 1) / 256)",
               .calls = {QV_CALL(CqvAccLib::qvMergeAlphaPlus(
                   CqvAccLib::ThreeChannels, dst.data, dst.step, src.data, src.step, alpha.data,
                   alpha.step, dst.columns, dst.rows))},
               .prepare = [&] { CopyColours(back, dst); },
               .before = {{"the mask a", scene.mask}, {"D", mirrored}},
               .after = {{"mixed with its mirror image under a mask", result}},
               .cover = true});
}

struct Operation {
  const char* name;
  const char* formula;
};

constexpr Operation kOperations[] = {{"0 over", "A a1 + B a2 (1 - a1)"},
                                     {"1 in", "A a1 a2"},
                                     {"2 out", "A a1 (1 - a2)"},
                                     {"3 atop", "A a1 a2 + B a2 (1 - a1)"},
                                     {"4 xor", "A a1 (1 - a2) + B a2 (1 - a1)"},
                                     {"5 plus", "A a1 + B a2"},
                                     {"6 over premultiplied", "A + B (1 - a1)"},
                                     {"7 in premultiplied", "A a2"},
                                     {"8 out premultiplied", "A (1 - a2)"},
                                     {"9 atop premultiplied", "A a2 + B (1 - a1)"},
                                     {"10 xor premultiplied", "A (1 - a2) + B (1 - a1)"},
                                     {"11 plus premultiplied", "A + B"}};

void MakeOperations(const Scene& scene, Gallery& gallery) {
  constexpr int kColumns = 3, kRows = 4, kGap = 8, kCaption = 40;
  const Frame first = Part(scene.colour, scene.fine, {340, 200});
  const Frame second =
      Part(scene.colour, {scene.colour.Width() * 19 / 100, scene.colour.Height() * 47 / 100},
           {340, 200});
  const IppiSize size = first.Size();
  const int acrossStep = size.width + kGap, downStep = size.height + kCaption;
  Frame result(Layout::Bgr, kColumns * acrossStep - kGap, kRows * downStep);
  const Plane& grid = result.PlaneAt(0);
  const unsigned char paper[3] = {38, 32, 28};
  Check("qvSet",
        CqvAccLib::qvSet(CqvAccLib::ThreeChannels, paper, grid.data, grid.step, grid.Size()));
  const auto cell = [&](int code) {
    return grid.Row(code / kColumns * downStep) + 3 * (code % kColumns) * acrossStep;
  };
  const Plane& a = first.PlaneAt(0);
  const Plane& b = second.PlaneAt(0);
  const unsigned char alpha1 = 150, alpha2 = 190;
  const auto text = [&](int code, int line, std::string_view words, unsigned char value) {
    const int left = code % kColumns * acrossStep;
    ForText(left + 2, code / kColumns * downStep + size.height + 4 + 17 * line, 2 - line, words,
            [&](int x, int y) {
              if (x < std::min(left + size.width, grid.columns) && y < grid.rows)
                std::fill_n(grid.Row(y) + 3 * x, 3, value);
            });
  };
  const auto compose = [&](int code) {
    return CqvAccLib::qvAlphaCompC(CqvAccLib::ThreeChannels, a.data, a.step, alpha1, b.data, b.step,
                                   alpha2, cell(code), grid.step, size,
                                   static_cast<IppiAlphaType>(code));
  };
  const Call calls = {"for (code : the twelve operations)\n"
                      "  qvAlphaCompC(ThreeChannels, a.data, a.step, alpha1, b.data, b.step,\n"
                      "               alpha2, cell(code), grid.step, size, code)",
                      [&] {
                        IppStatus status = StatusOk;
                        for (int code = 0; code < 12 && status == StatusOk; ++code)
                          status = compose(code);
                        return status;
                      }};
  gallery.Add({.name = "composite-operations",
               .title = "Compose two pictures in twelve ways",
               .formula = "Div255 of every product; a1 = 150 / 255 of A, a2 = 190 / 255 of B",
               .calls = {calls},
               .finish =
                   [&] {
                     for (int code = 0; code < 12; ++code) {
                       text(code, 0, kOperations[code].name, 255);
                       text(code, 1, kOperations[code].formula, 190);
                     }
                   },
               .pixels = 12LL * size.width * size.height,
               .before = {{"A", first}, {"B", second}},
               .after = {{"codes 0 to 11", result}}});
}

const PanelSource source{50, "Compositing", {MakeOver, MakeLogo, MakeMask, MakeOperations}};

}  // namespace
}  // namespace qvtool::demo
