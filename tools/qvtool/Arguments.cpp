#include "Arguments.h"

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>

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

unsigned char Round(double value) {
  return static_cast<unsigned char>(std::lround(std::fmin(std::fmax(value, 0), 255)));
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

std::array<unsigned char, 3> Colour::In(Layout layout) const {
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
  const double r = values_[0], g = values_[1], b = values_[2];
  if (!isYCbCr) return {values_[2], values_[1], values_[0]};
  // ITU-R BT.601, studio range, from 8-bit RGB.
  const double y = 0.299 * r + 0.587 * g + 0.114 * b;
  return {Round(16 + y * 219 / 255), Round(128 + (b - y) / 1.772 * 224 / 255),
          Round(128 + (r - y) / 1.402 * 224 / 255)};
}

void AddRawInputOptions(CLI::App& app, InputSpec& spec) {
  app.add_option_function<std::string>(
         "--layout",
         [&spec](const std::string& text) { spec.layout = ParseLayout("--layout", text); },
         "Layout of headerless input frames: " + LayoutNames())
      ->type_name("LAYOUT");
  app.add_option_function<std::string>(
         "--size", [&spec](const std::string& text) { spec.size = ParseSize("--size", text); },
         "Size of headerless input frames in pixels")
      ->type_name("WxH");
  app.add_option_function<std::string>(
         "--rate",
         [&spec](const std::string& text) {
           if (!IsRate(text))
             throw UsageError(Given("--rate", text) + "frames:seconds, such as 25:1 or 30000:1001");
           spec.rate = text;
         },
         "Frame rate of headerless input frames, for Y4M output (25:1)")
      ->type_name("N:D");
}

void AddOutputOptions(CLI::App& app, OutputSpec& spec) {
  app.add_option_function<std::string>(
         "--format",
         [&spec](const std::string& text) {
           for (FileFormat format :
                {FileFormat::Png, FileFormat::Jpeg, FileFormat::Y4m, FileFormat::Raw}) {
             constexpr const char* kWords[] = {"png", "jpeg", "y4m", "raw"};
             if (text == kWords[static_cast<int>(format)]) {
               spec.format = format;
               return;
             }
           }
           throw UsageError(Given("--format", text) + "png|jpeg|y4m|raw");
         },
         "Format of the output, instead of by its extension")
      ->type_name("png|jpeg|y4m|raw");
  AddInteger(app, "--quality", spec.quality, 1, 100, "Quality of a JPEG (92)");
}

void AddInput(CLI::App& app, InputSpec& spec) {
  app.add_option("IN", spec.path,
                 "PNG, JPEG or Y4M file, headerless frames, or - for standard input")
      ->required();
  AddRawInputOptions(app, spec);
}

void AddOutput(CLI::App& app, OutputSpec& spec) {
  app.add_option(
         "OUT", spec.path,
         ".png, .jpg, .y4m, .raw or .yuv file, frame-%04d.png for a picture of every frame, "
         "or - for standard output")
      ->required();
  AddOutputOptions(app, spec);
}

CLI::Option* AddRegion(CLI::App& app, std::optional<IppiRect>& region) {
  return app
      .add_option_function<std::string>(
          "--region",
          [&region](const std::string& text) { region = ParseRegion("--region", text); },
          "Only this part of the frame, in pixels")
      ->type_name("X,Y,W,H");
}

void CheckRegion(const IppiRect& region, const Frame& frame) {
  if (region.x > frame.Width() - region.width || region.y > frame.Height() - region.height)
    throw UsageError("--region: " + std::to_string(region.x) + "," + std::to_string(region.y) +
                     "," + std::to_string(region.width) + "," + std::to_string(region.height) +
                     " given; wanted is a part of the frame of " + std::to_string(frame.Width()) +
                     "x" + std::to_string(frame.Height()));
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
