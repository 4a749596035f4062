#include "Arguments.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>

#include "io/Status.h"

namespace qvtool {
namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::size_t from = 0;
  for (;;) {
    const std::size_t at = text.find(separator, from);
    parts.push_back(text.substr(from, at - from));
    if (at == std::string::npos) return parts;
    from = at + 1;
  }
}

std::optional<int> Integer(const std::string& text, int base = 10) {
  int value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, base);
  if (error != std::errc() || stop != end) return {};
  return value;
}

std::string Given(const std::string& argument, const std::string& text) {
  return argument + ": '" + text + "' given; wanted is ";
}

bool IsRate(const std::string& text) {
  const auto parts = Split(text, ':');
  if (parts.size() != 2) return false;
  return Integer(parts[0]).value_or(0) > 0 && Integer(parts[1]).value_or(0) > 0;
}

}  // namespace

int ParseInteger(const std::string& argument, const std::string& text, int least, int most) {
  const auto value = Integer(text);
  if (!value || *value < least || *value > most)
    throw UsageError(Given(argument, text) + "a whole number from " + std::to_string(least) +
                     " to " + std::to_string(most));
  return *value;
}

std::vector<double> ParseNumbers(const std::string& argument, const std::string& text,
                                 std::size_t count, const std::string& wanted) {
  const auto parts = Split(text, ',');
  std::vector<double> numbers;
  for (const std::string& part : parts) {
    char* end = nullptr;
    const double number = std::strtod(part.c_str(), &end);
    if (!part.empty() && *end == '\0' && std::isfinite(number)) numbers.push_back(number);
  }
  if (parts.size() != count || numbers.size() != count)
    throw UsageError(Given(argument, text) + wanted);
  return numbers;
}

FrameRange ParseFrames(const std::string& argument, const std::string& text) {
  const std::size_t dash = std::min(text.find('-'), text.size());
  FrameRange frames;
  const auto first = Integer(text.substr(0, dash));
  const bool isOne = dash == text.size(), isOpen = dash + 1 == text.size();
  const auto last = isOne ? first : isOpen ? INT_MAX : Integer(text.substr(dash + 1));
  if (!first || !last || *first < 0 || *last < *first)
    throw UsageError(Given(argument, text) + "A-B, such as 10-20, 10- to the end, or 10 alone");
  frames.first = *first;
  frames.last = *last;
  return frames;
}

IppiSize ParseSize(const std::string& argument, const std::string& text) {
  const auto parts = Split(text, 'x');
  if (parts.size() == 2) {
    const auto width = Integer(parts[0]);
    const auto height = Integer(parts[1]);
    if (width && height && *width > 0 && *height > 0) return {*width, *height};
  }
  throw UsageError(Given(argument, text) + "WIDTHxHEIGHT, both at least 1, such as 1920x1080");
}

IppiRect ParseRegion(const std::string& argument, const std::string& text) {
  const auto parts = Split(text, ',');
  int values[4] = {};
  bool good = parts.size() == 4;
  for (std::size_t i = 0; good && i < 4; ++i) {
    const auto value = Integer(parts[i]);
    good = value && *value >= (i < 2 ? 0 : 1);
    if (good) values[i] = *value;
  }
  if (!good)
    throw UsageError(Given(argument, text) +
                     "X,Y,WIDTH,HEIGHT in pixels, X and Y at least 0, width and height at least 1");
  return {values[0], values[1], values[2], values[3]};
}

Position ParsePosition(const std::string& argument, const std::string& text) {
  const auto parts = Split(text, ',');
  if (parts.size() == 2) {
    const auto x = Integer(parts[0]);
    const auto y = Integer(parts[1]);
    if (x && y) return {*x, *y};
  }
  throw UsageError(Given(argument, text) + "X,Y in pixels, such as 40,30");
}

Colour Colour::Parse(const std::string& argument, const std::string& text) {
  Colour colour;
  colour.argument_ = argument;
  colour.text_ = text;
  bool good = true;
  if (text.starts_with('#')) {
    colour.isRgb_ = true;
    good = text.size() == 7;
    for (std::size_t i = 1; good && i < 7; i += 2) {
      const auto value = Integer(text.substr(i, 2), 16);
      good = value && *value >= 0;
      if (good) colour.values_.push_back(static_cast<unsigned char>(*value));
    }
  } else {
    const auto parts = Split(text, ',');
    good = parts.size() == 1 || parts.size() == 3;
    for (std::size_t i = 0; good && i < parts.size(); ++i) {
      const auto value = Integer(parts[i]);
      good = value && *value >= 0 && *value <= 255;
      if (good) colour.values_.push_back(static_cast<unsigned char>(*value));
    }
  }
  if (!good)
    throw UsageError(Given(argument, text) +
                     "#rrggbb, one value from 0 to 255, or three of them with commas between");
  return colour;
}

std::array<unsigned char, 3> Colour::In(Layout layout, const Coding& coding) const {
  const bool isYCbCr = Describe(layout).isYCbCr;
  if (layout == Layout::Grey) {
    const bool isGrey =
        values_.size() == 1 || (values_[0] == values_[1] && values_[1] == values_[2]);
    if (!isGrey)
      throw UsageError(Given(argument_, text_) + "a grey value, because the frame is grey");
    return {values_[0], values_[0], values_[0]};
  }
  if (values_.size() == 1) {
    if (isYCbCr) return {values_[0], 128, 128};
    return {values_[0], values_[0], values_[0]};
  }
  if (!isRgb_) return {values_[0], values_[1], values_[2]};
  if (!isYCbCr) return {values_[2], values_[1], values_[0]};
  std::array<unsigned char, 3> samples;
  unsigned char* const planes[] = {&samples[0], &samples[1], &samples[2]};
  constexpr int kSteps[] = {1, 1, 1};
  Check("qv_rgb_to_yuv",
        qv_rgb_to_yuv(QV_LAYOUT_RGB, values_.data(), 3, QV_LAYOUT_I444, planes, kSteps, {1, 1},
                      coding.matrix, coding.range, QV_CHROMA_LEFT));
  return samples;
}

namespace {

void AddMatrix(CLI::App& app, const std::string& name, CodingHints& coding,
               const std::string& about) {
  AddChoice<std::optional<int>>(
      app, name, coding.matrix,
      {{"bt601", QV_BT601}, {"bt709", QV_BT709}, {"bt2020", QV_BT2020}}, about);
}

void AddRange(CLI::App& app, const std::string& name, CodingHints& coding,
              const std::string& about) {
  AddChoice<std::optional<int>>(app, name, coding.range,
                                {{"studio", QV_STUDIO_RANGE}, {"full", QV_FULL_RANGE}}, about);
}

}  // namespace

void AddExactApi(CLI::App& app, bool& exactApi, const std::string& about) {
  app.add_flag("--exact-api", exactApi, "The bytes of the operations of CqvAccLib: " + about);
}

void AddRawInputOptions(CLI::App& app, InputSpec& spec) {
  app.add_option_function<std::string>(
         "--layout",
         [&spec](const std::string& text) { spec.layout = ParseLayout("--layout", text); },
         "Layout of headerless input frames: " + LayoutNames())
      ->type_name("LAYOUT");
  app.add_option_function<std::string>(
         "--size", [&spec](const std::string& text) { spec.size = ParseSize("--size", text); },
         "Size of headerless input frames in pixels, with --layout")
      ->type_name("WxH");
  app.add_option_function<std::string>(
         "--rate",
         [&spec](const std::string& text) {
           if (!IsRate(text))
             throw UsageError(Given("--rate", text) + "frames:seconds, such as 25:1 or 30000:1001");
           spec.rate = text;
         },
         "Frame rate of headerless input frames and of pictures, for Y4M output (25:1)")
      ->type_name("N:D");
  app.add_option_function<std::string>(
         "--frames",
         [&spec](const std::string& text) { spec.frames = ParseFrames("--frames", text); },
         "Only these frames, the first being 1; of numbered pictures, their numbers")
      ->type_name("A-B");
  app.add_flag("--keep-orientation", spec.decode.keepOrientation,
               "Leave the pixels of pictures as they lie in the file, with the orientation that it "
               "states, instead of turning them upright");
  AddMatrix(app, "--matrix", spec.coding,
            "Matrix of luma and chroma (bt601 below 720 rows, bt709 from there on)");
  AddRange(app, "--range", spec.coding,
           "Range of luma and chroma, whatever the stream says (studio if it says nothing)");
  AddChoice<std::optional<Siting>>(app, "--siting", spec.coding.siting,
                                   {{"centre", Siting::Centre},
                                    {"left", Siting::Left},
                                    {"top-left", Siting::TopLeft}},
                                   "Where chroma of 4:2:0 lies, whatever the stream says (left)");
  app.add_flag("--verbose", spec.verbose, "Say what is taken for granted");
}

void AddOutputOptions(CLI::App& app, OutputSpec& spec) {
  AddChoice<std::optional<FileFormat>>(app, "--format", spec.format,
                                       {{"png", FileFormat::Png},
                                        {"jpeg", FileFormat::Jpeg},
                                        {"ppm", FileFormat::Netpbm},
                                        {"y4m", FileFormat::Y4m},
                                        {"raw", FileFormat::Raw}},
                                       "Format of the output, instead of by its extension");
  AddInteger(app, "--quality", spec.quality, 1, 100, "Quality of a JPEG (92)");
  AddMatrix(app, "--to-matrix", spec.coding, "Matrix of the output, if another than that of IN");
  AddRange(app, "--to-range", spec.coding, "Range of the output, if another than that of IN");
}

CLI::Option* AddRegion(CLI::App& app, std::optional<IppiRect>& region) {
  return app
      .add_option_function<std::string>(
          "--region",
          [&region](const std::string& text) { region = ParseRegion("--region", text); },
          "Only this part of the frame, in pixels")
      ->type_name("X,Y,W,H");
}

void CheckRegion(const std::string& argument, const IppiRect& region, const Frame& frame) {
  const IppiSize size = frame.FullSize();
  if (region.x > size.width - region.width || region.y > size.height - region.height)
    throw UsageError(argument + ": " + std::to_string(region.x) + "," + std::to_string(region.y) +
                     "," + std::to_string(region.width) + "," + std::to_string(region.height) +
                     " given; wanted is a part of the frame of " + std::to_string(size.width) +
                     "x" + std::to_string(size.height));
}

CLI::Option* AddInteger(CLI::App& app, const std::string& name, int& value, int least, int most,
                        const std::string& about) {
  return app
      .add_option_function<std::string>(
          name,
          [name, least, most, &value](const std::string& text) {
            value = ParseInteger(name, text, least, most);
          },
          about)
      ->type_name(std::to_string(least) + ".." + std::to_string(most));
}

}  // namespace qvtool
