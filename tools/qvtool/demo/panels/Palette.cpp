#include "Palettes.h"
#include "demo/Panel.h"

namespace qvtool::demo {
namespace {

void Make(const Scene& scene, Gallery& gallery) {
  struct Look {
    const char* name;
    const char* title;
    const char* palette;
    int bits;
    const char* note;
  };
  constexpr Look kLooks[] = {
      {"palette-heat", "Palette of 256 colours", "heat", 8,
       "Dark becomes cold, bright becomes hot."},
      {"palette-low-bits", "Palette of 32 colours", "spectrum", 5,
       "Five bits: only the low bits of a byte count, so the palette repeats every 32 levels."}};
  for (const Look& look : kLooks) {
    const std::vector<unsigned char> colours = NamedPalette(look.palette, look.bits);
    Frame result(Layout::Bgr, scene.grey.Width(), scene.grey.Height());
    const Plane& src = scene.grey.PlaneAt(0);
    const Plane& dst = result.PlaneAt(0);
    const unsigned char* const palette = colours.data();
    const int bitSize = look.bits;
    gallery.Add({.name = look.name,
                 .title = look.title,
                 .formula = "dst[3k + c] = palette[3 (src[k] mod 2^bitSize) + c]",
                 .note = look.note,
                 .calls = {QV_CALL(CqvAccLib::qvLUTPalette(CqvAccLib::OneChannel, src.data,
                                                           src.step, dst.data, dst.step, src.Size(),
                                                           palette, bitSize))},
                 .before = {{"a grey plane", scene.grey}},
                 .after = {{std::string("through the palette '") + look.palette + "'", result}},
                 .cover = look.bits == 8});
  }
}

const PanelSource source{80, "Palette", {Make}};

}  // namespace
}  // namespace qvtool::demo
