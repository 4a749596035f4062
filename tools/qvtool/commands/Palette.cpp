// qvtool palette: colours a grey plane through a palette.
#include "Palettes.h"

#include "Command.h"
#include "Pipeline.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  InputSpec input;
  OutputSpec output;
  std::string name = "heat";
  std::string file;
  int bits = 8;
};

void Run(const Options& options) {
  const std::vector<unsigned char> palette = options.file.empty()
                                                 ? NamedPalette(options.name, options.bits)
                                                 : ReadPalette(options.file, options.bits);
  ForEachFrame(options.input, options.output, [&](Frame& in, Frame& out) -> Frame& {
    const Plane& indices = in.PlaneAt(0);
    if (indices.bytes != 1)
      throw Error("a palette takes one byte a pixel, and the frames are " + NameOf(in.GetLayout()));
    out.Reset(Layout::Bgr, in.Width(), in.Height());
    const Plane& to = out.PlaneAt(0);
    Check("qvLUTPalette",
          CqvAccLib::qvLUTPalette(CqvAccLib::OneChannel, indices.data, indices.step, to.data,
                                  to.step, to.Size(), palette.data(), options.bits));
    return out;
  });
}

void Configure(CLI::App& app) {
  const auto options = AddFrames(app, Run);
  std::vector<std::pair<std::string, std::string>> names;
  for (const std::string& name : PaletteNames()) names.emplace_back(name, name);
  CLI::Option* named = AddChoice<std::string>(app, "--name", options->name, names,
                                              "A palette that the tool brings (heat)");
  app.add_option("--palette", options->file,
                 "A palette of your own: a text file with one #rrggbb a line")
      ->type_name("FILE")
      ->excludes(named);
  AddInteger(app, "--bits", options->bits, 1, 8,
             "Only so many low bits of a byte are the index; the palette has 2^bits entries (8)");
  app.footer("Of frames with luma and chroma the luma is coloured.");
}

const Command command{"palette", "Colour a grey plane through a palette", Configure};

}  // namespace
}  // namespace qvtool
