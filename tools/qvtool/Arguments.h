// Arguments that several sub-commands take, and the text forms of sizes, regions and colours.
#ifndef QV_TOOLS_QVTOOL_ARGUMENTS_H
#define QV_TOOLS_QVTOOL_ARGUMENTS_H

#include <CLI/App.hpp>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Error.h"
#include "io/FrameStream.h"

namespace qvtool {

// Each parser throws a UsageError that names the argument, what was given and what is wanted.
int ParseInteger(const std::string& argument, const std::string& text, int least, int most);
// Exactly `count` numbers with commas between; `wanted` describes them in the message.
std::vector<double> ParseNumbers(const std::string& argument, const std::string& text,
                                 std::size_t count, const std::string& wanted);
IppiSize ParseSize(const std::string& argument, const std::string& text);    // "640x360"
FrameRange ParseFrames(const std::string& argument, const std::string& text);  // "10-20"
IppiRect ParseRegion(const std::string& argument, const std::string& text);  // "x,y,w,h"

// A place in pixels, which may lie outside of the frame.
struct Position {
  int x = 0;
  int y = 0;
};
Position ParsePosition(const std::string& argument, const std::string& text);  // "x,y"

// A colour as the user gives it: "#rrggbb", one value, or one value a channel in the order of the
// layout (grey; blue, green, red; Y, Cb, Cr).
class Colour {
 public:
  static Colour Parse(const std::string& argument, const std::string& text);

  // The sample values of every channel of `layout` except alpha: grey or B, G, R or Y, Cb, Cr, the
  // last by `coding`. Throws a UsageError when a colour of this form cannot be meant for it.
  std::array<unsigned char, 3> In(Layout layout, const Coding& coding) const;

 private:
  std::string argument_;
  std::string text_;
  bool isRgb_ = false;
  std::vector<unsigned char> values_;
};

// What belongs to IN and to OUT, without the positionals themselves.
void AddRawInputOptions(CLI::App& app, InputSpec& spec);
void AddOutputOptions(CLI::App& app, OutputSpec& spec);

// --exact-api; `about` says what it does here.
void AddExactApi(CLI::App& app, bool& exactApi, const std::string& about);

CLI::Option* AddRegion(CLI::App& app, std::optional<IppiRect>& region);

// Throws a UsageError that names the argument when the region is not inside the frame.
void CheckRegion(const std::string& argument, const IppiRect& region, const Frame& frame);

CLI::Option* AddInteger(CLI::App& app, const std::string& name, int& value, int least, int most,
                        const std::string& about);

// An option that is one of a few words, in upper or lower case.
template <class Value>
CLI::Option* AddChoice(CLI::App& app, const std::string& name, Value& value,
                       const std::vector<std::pair<std::string, Value>>& choices,
                       const std::string& about) {
  std::string words;
  for (const auto& [word, meaning] : choices) words += (words.empty() ? "" : "|") + word;
  CLI::Option* option = app.add_option_function<std::string>(
      name,
      [name, words, choices, &value](const std::string& text) {
        for (const auto& [word, meaning] : choices) {
          if (LowerCase(text) == word) {
            value = meaning;
            return;
          }
        }
        throw UsageError(name + ": '" + text + "' given; wanted is " + words);
      },
      about);
  return option->type_name(words);
}

}  // namespace qvtool

#endif
