// qvtool sheet: a contact sheet of pictures and of the frames of videos.
#include <algorithm>
#include <cmath>

#include "Command.h"
#include "FillFrame.h"
#include "Report.h"
#include "TargetSize.h"
#include "io/Resizer.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  std::vector<std::string> paths;
  InputSpec input;
  OutputSpec output;
  TargetSize fit = TargetSize::ParseFit("--cell", "240x180");
  IppiSize cell = {240, 180};
  int columns = 0;
  int gap = 8;
  int every = 1;
  Colour background = Colour::Parse("--background", "#ffffff");
};

class Sheet {
 public:
  explicit Sheet(const Options& options) : options_(options) {}

  // Every frame of a file, or every so-manieth.
  void AddFile(const std::string& path) {
    InputSpec spec = options_.input;
    spec.path = path;
    spec.decode.reduction = [this](IppiSize size) {
      const IppiSize small = SizeFor(size);
      return std::min(static_cast<double>(size.width) / small.width,
                      static_cast<double>(size.height) / small.height);
    };
    const auto reader = OpenInput(spec);
    Frame frame;
    for (long i = 0; reader->Next(frame); ++i)
      if (i % options_.every == 0) Add(frame);
  }

  std::size_t Count() const { return pictures_.size(); }

  Frame Compose() const {
    const auto count = static_cast<int>(pictures_.size());
    const int wanted = options_.columns > 0
                           ? options_.columns
                           : static_cast<int>(std::ceil(std::sqrt(static_cast<double>(count))));
    const int columns = std::min(wanted, count), rows = (count + columns - 1) / columns;
    const auto length = [&](int cells, int cell) {
      const double pixels = static_cast<double>(cells) * (cell + options_.gap) + options_.gap;
      return static_cast<int>(std::min(pixels, 2e9));
    };
    Frame sheet(Layout::Bgr, length(columns, options_.cell.width),
                length(rows, options_.cell.height));
    FillFrame(sheet, sheet.Bounds(), options_.background);
    for (int i = 0; i < count; ++i) {
      const Frame& picture = pictures_[static_cast<std::size_t>(i)];
      const int x = length(i % columns, options_.cell.width);
      const int y = length(i / columns, options_.cell.height);
      Place(picture, sheet, x + (options_.cell.width - picture.Width()) / 2,
            y + (options_.cell.height - picture.Height()) / 2);
    }
    return sheet;
  }

 private:
  // Pictures that are smaller than a cell stay as they are.
  IppiSize SizeFor(IppiSize size) const {
    const bool fits = size.width <= options_.cell.width && size.height <= options_.cell.height;
    return fits ? size : options_.fit.For(size);
  }

  void Add(const Frame& frame) {
    const IppiSize full = frame.FullSize(), size = SizeFor(full);
    resizer_(frame, {0, 0, full.width, full.height}, size, QV_INTERPOLATE_CUBIC, resized_);
    const Layout layout = frame.Info().alphaPlane < 0 ? Layout::Bgr : Layout::Bgra;
    pictures_.push_back(conversion_(resized_, layout, frame.coding, converted_).Clone());
  }

  static void Place(const Frame& picture, const Frame& sheet, int x, int y) {
    const Plane &from = picture.PlaneAt(0), &all = sheet.PlaneAt(0);
    const Plane to = all.Cut({x, y, picture.Width(), picture.Height()}, sheet.Info().plane[0]);
    if (picture.Planes() == 1) {
      Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeChannels, from.data, from.step, to.data,
                                        to.step, to.Size()));
      return;
    }
    const Plane& alpha = picture.PlaneAt(1);
    Check("qv_over", qv_over(3, to.data, to.step, {to.columns, to.rows}, 3, from.data, from.step,
                             {from.columns, from.rows}, alpha.data, alpha.step, 0, 0, 255,
                             QV_ALPHA_OVER));
  }

  const Options& options_;
  Resizer resizer_;
  Conversion conversion_;
  Frame resized_, converted_;
  std::vector<Frame> pictures_;
};

void Run(Options& options) {
  if (options.paths.size() < 2)
    throw UsageError("OUT is wanted as well, the file to write");
  options.output.path = options.paths.back();
  options.paths.pop_back();
  if (options.output.path == "-" && !options.output.format) options.output.format = FileFormat::Png;
  OutputFormat(options.output, FileFormat::Png);  // an extension that is unknown
  Sheet sheet(options);
  bool allSucceed = true;
  for (const std::string& path : options.paths) {
    try {
      sheet.AddFile(path);
    } catch (const Error& error) {
      Report(error.what());
      allSucceed = false;
    }
  }
  if (sheet.Count() > 0) {
    const auto writer = OpenOutput(options.output, FileFormat::Png);
    Frame result = sheet.Compose();
    writer->Write(result);
    writer->Finish();
  }
  if (!allSucceed) throw Reported();
}

void Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_option("IN... OUT", options->paths,
                 "Pictures and videos, all frames of which are taken, and the picture to write")
      ->required()
      ->type_name("");
  app.add_option_function<std::string>(
         "--cell",
         [options](const std::string& text) {
           options->cell = ParseSize("--cell", text);
           options->fit = TargetSize::ParseFit("--cell", text);
         },
         "What each one is reduced to, at the most (240x180)")
      ->type_name("WxH");
  AddInteger(app, "--columns", options->columns, 1, 10000, "Pictures beside each other (a square)");
  AddInteger(app, "--gap", options->gap, 0, 10000, "Pixels between them and around (8)");
  AddInteger(app, "--every", options->every, 1, 1000000, "Only every n-th frame of a file (1)");
  app.add_option_function<std::string>(
         "--background",
         [options](const std::string& text) {
           options->background = Colour::Parse("--background", text);
         },
         "Colour around and behind them (white)")
      ->type_name("COLOUR");
  AddRawInputOptions(app, options->input);
  AddOutputOptions(app, options->output);
  app.footer(
      "Files that cannot be read are said and left out; the exit code is 1 then.\n"
      "  qvtool sheet photo.jpg logo.png sheet.png --columns 2\n"
      "  qvtool sheet clip.y4m scenes.jpg --every 25 --cell 320x180");
  app.callback([options] { Run(*options); });
}

const Command command{"sheet", "Make a contact sheet of pictures or of the frames of a video",
                      Configure};

}  // namespace
}  // namespace qvtool
