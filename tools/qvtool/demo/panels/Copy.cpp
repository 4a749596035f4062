#include "demo/Panel.h"
#include "io/Status.h"

namespace qvtool::demo {
namespace {

void Clear(const Plane& plane, unsigned char value) {
  Check("qvSet", CqvAccLib::qvSet(CqvAccLib::OneChannel, &value, plane.data, plane.step,
                                  plane.SizeInBytes()));
}

// Three planes of one image: blue, green and red.
struct Planes {
  explicit Planes(const Frame& bgr)
      : plane{Frame(Layout::Grey, bgr.Width(), bgr.Height()),
              Frame(Layout::Grey, bgr.Width(), bgr.Height()),
              Frame(Layout::Grey, bgr.Width(), bgr.Height())} {
    for (int y = 0; y < bgr.Height(); ++y)
      for (int x = 0; x < bgr.Width(); ++x)
        for (int c = 0; c < 3; ++c)
          plane[c].PlaneAt(0).Row(y)[x] = bgr.PlaneAt(0).Row(y)[3 * x + c];
  }
  Frame plane[3];
};

void Whole(const Scene& scene, Gallery& gallery) {
  const struct {
    const Frame& frame;
    const char* name;
    const char* title;
    const char* formula;
  } kinds[] = {{scene.colour, "copy-colour", "pixels of three bytes", "dst[3k + c] = src[3k + c]"},
               {scene.grey, "copy-plane", "a plane", "dst[k] = src[k]"}};
  for (const auto& kind : kinds) {
    Frame result(kind.frame.GetLayout(), kind.frame.Width(), kind.frame.Height());
    const Plane& src = kind.frame.PlaneAt(0);
    const Plane& dst = result.PlaneAt(0);
    const auto type = src.Type("qvCopy");
    gallery.Add({.name = kind.name,
                 .title = std::string("Copy ") + kind.title,
                 .formula = kind.formula,
                 .calls = {QV_CALL(CqvAccLib::qvCopy(type, src.data, src.step, dst.data, dst.step,
                                                     src.Size()))},
                 .before = {{kind.title, kind.frame}},
                 .after = {{"the copy", result}}});
  }
}

void Merge(const Scene& scene, Gallery& gallery) {
  const Planes planes(scene.colour);
  Frame merged(Layout::Bgr, scene.colour.Width(), scene.colour.Height());
  const Plane& blue = planes.plane[0].PlaneAt(0);
  const Plane& green = planes.plane[1].PlaneAt(0);
  const Plane& red = planes.plane[2].PlaneAt(0);
  const Plane& dst = merged.PlaneAt(0);
  gallery.Add(
      {.name = "merge-planes",
       .title = "Merge three planes into one image",
       .formula = "dst[3k] = src[k], with dst moved on by one byte a plane",
       .note = "Each call leaves the other two bytes of a pixel alone.",
       .calls = {QV_CALL(CqvAccLib::qvCopy(CqvAccLib::PlaneToThreeChannels, blue.data, blue.step,
                                           dst.data, dst.step, dst.Size())),
                 QV_CALL(CqvAccLib::qvCopy(CqvAccLib::PlaneToThreeChannels, green.data, green.step,
                                           dst.data + 1, dst.step, dst.Size())),
                 QV_CALL(CqvAccLib::qvCopy(CqvAccLib::PlaneToThreeChannels, red.data, red.step,
                                           dst.data + 2, dst.step, dst.Size()))},
       .before = {{"blue", planes.plane[0]}, {"green", planes.plane[1]}, {"red", planes.plane[2]}},
       .after = {{"all three", merged}}});
}

void Duplicate(const Scene& scene, Gallery& gallery) {
  Frame result(Layout::Bgr, scene.grey.Width(), scene.grey.Height());
  const Plane& src = scene.grey.PlaneAt(0);
  const Plane& dst = result.PlaneAt(0);
  gallery.Add({.name = "duplicate",
               .title = "Grey to three-byte pixels",
               .formula = "dst[3k] = dst[3k + 1] = dst[3k + 2] = src[k]",
               .calls = {QV_CALL(CqvAccLib::qvDup(CqvAccLib::OneChannel, src.data, src.step,
                                                  dst.data, dst.step, src.Size()))},
               .before = {{"one byte a pixel", scene.grey}},
               .after = {{"three bytes a pixel", result}}});
}

// The operations know images of four bytes a pixel; frames of this tool keep alpha apart, so the
// packed image is shown through a frame that is filled from it.
void Alpha(const Scene& scene, Gallery& gallery) {
  const int width = scene.colour.Width();
  const int height = scene.colour.Height();
  const IppiSize size = scene.colour.Size();
  const int step = width * 4;
  std::vector<unsigned char> packed(static_cast<std::size_t>(step) *
                                    static_cast<std::size_t>(height));

  Frame masked(Layout::Bgra, width, height);
  Clear(masked.PlaneAt(0), 0);
  const Plane& mask = scene.mask.PlaneAt(0);
  const Plane& alpha = masked.PlaneAt(1);
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::OneChannel, mask.data, mask.step, alpha.data,
                                    alpha.step, size));
  const Frame empty = masked.Clone();
  PackAlpha(masked, packed.data());

  const Plane& src = scene.colour.PlaneAt(0);
  unsigned char* const bgra = packed.data();
  gallery.Add({.name = "copy-keep-alpha",
               .title = "Colours into an image with alpha",
               .formula = "dst[4k + c] = src[3k + c], dst[4k + 3] stays",
               .calls = {QV_CALL(CqvAccLib::qvCopy(CqvAccLib::ThreeToFourChannels, src.data,
                                                   src.step, bgra, step, size))},
               .finish = [&] { UnpackAlpha(bgra, masked); },
               .before = {{"the frame", scene.colour}, {"black with an alpha", empty}},
               .after = {{"the frame with that alpha", masked}}});

  Frame dropped(Layout::Bgr, width, height);
  const Plane& dst = dropped.PlaneAt(0);
  gallery.Add({.name = "copy-drop-alpha",
               .title = "Drop the alpha",
               .formula = "dst[3k + c] = src[4k + c]",
               .calls = {QV_CALL(CqvAccLib::qvCopy(CqvAccLib::FourToThreeChannels, bgra, step,
                                                   dst.data, dst.step, size))},
               .before = {{"four bytes a pixel", masked}},
               .after = {{"three bytes a pixel", dropped}}});
}

const PanelSource source{110, "Copy", {Whole, Merge, Duplicate, Alpha}};

}  // namespace
}  // namespace qvtool::demo
