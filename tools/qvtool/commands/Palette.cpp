// qvtool palette: colours a grey plane through a palette.
#include "Palettes.h"

#include "Command.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  std::string name = "heat";
  std::string file;
  int bits = 8;
};

class Colouring : public Step {
 public:
  explicit Colouring(const Options& options)
      : palette_(options.file.empty() ? NamedPalette(options.name, options.bits)
                                      : ReadPalette(options.file, options.bits)),
        bits_(options.bits) {}

  Frame& operator()(Frame& in, Frame& out) override {
    const Plane& indices = in.PlaneAt(0);
    if (indices.bytes != 1)
      throw Error("a palette takes one byte a pixel, and the frames are " + NameOf(in.GetLayout()));
    out.Reset(Layout::Bgr, in.Width(), in.Height());
    const Plane& to = out.PlaneAt(0);
    Check("qvLUTPalette",
          CqvAccLib::qvLUTPalette(CqvAccLib::OneChannel, indices.data, indices.step, to.data,
                                  to.step, to.Size(), palette_.data(), bits_));
    return out;
  }

 private:
  std::vector<unsigned char> palette_;
  int bits_;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
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
  app.footer(
      "Of frames with luma and chroma the luma is coloured.\n"
      "  qvtool palette clip.y4m heat-%04d.png --name heat");
  return EachFrameWith<Colouring>(options);
}

const Command command{"palette", "Colour a grey plane through a palette", Configure};

}  // namespace
}  // namespace qvtool
