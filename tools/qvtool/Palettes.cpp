#include "Palettes.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "Error.h"
#include "io/ByteSource.h"

namespace qvtool {
namespace {

struct Stop {
  double at;
  double red, green, blue;
};

struct Gradient {
  std::string name;
  std::vector<Stop> stops;
};

const Gradient kGradients[] = {
    {"grey", {{0, 0, 0, 0}, {1, 255, 255, 255}}},
    {"heat",
     {{0, 0, 0, 0},
      {0.2, 48, 0, 96},
      {0.45, 190, 20, 70},
      {0.7, 250, 120, 10},
      {0.9, 255, 225, 90},
      {1, 255, 255, 255}}},
    {"spectrum",
     {{0, 110, 0, 220},
      {0.2, 0, 70, 255},
      {0.4, 0, 200, 210},
      {0.55, 20, 200, 40},
      {0.72, 245, 225, 0},
      {0.87, 255, 110, 0},
      {1, 220, 0, 0}}},
    {"ocean", {{0, 4, 8, 40}, {0.4, 10, 80, 140}, {0.75, 90, 190, 200}, {1, 245, 255, 240}}},
};

unsigned char Mix(double from, double to, double share) {
  return static_cast<unsigned char>(std::lround(from + (to - from) * share));
}

}  // namespace

const std::vector<std::string>& PaletteNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    for (const Gradient& gradient : kGradients) all.push_back(gradient.name);
    return all;
  }();
  return names;
}

std::vector<unsigned char> NamedPalette(const std::string& name, int bits) {
  const Gradient* gradient =
      std::find_if(std::begin(kGradients), std::end(kGradients),
                   [&](const Gradient& candidate) { return candidate.name == name; });
  if (gradient == std::end(kGradients)) throw Error("there is no palette '" + name + "'");
  const int entries = 1 << bits;
  std::vector<unsigned char> palette;
  for (int k = 0; k < entries; ++k) {
    const double at = static_cast<double>(k) / (entries - 1);
    std::size_t next = 1;
    while (next + 1 < gradient->stops.size() && gradient->stops[next].at < at) ++next;
    const Stop& a = gradient->stops[next - 1];
    const Stop& b = gradient->stops[next];
    const double share = (at - a.at) / (b.at - a.at);
    palette.push_back(Mix(a.blue, b.blue, share));
    palette.push_back(Mix(a.green, b.green, share));
    palette.push_back(Mix(a.red, b.red, share));
  }
  return palette;
}

std::vector<unsigned char> ReadPalette(const std::string& path, int bits) {
  const std::size_t entries = std::size_t{1} << bits;
  ByteSource source(path);
  std::vector<unsigned char> palette;
  int number = 0;
  for (std::string line; !source.AtEnd();) {
    ++number;
    source.ReadLine(line, 1000);
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
    if (line.empty() || line.starts_with("//")) continue;
    unsigned rgb = 0;
    const char* end = line.data() + line.size();
    if (line.size() != 7 || line[0] != '#' ||
        std::from_chars(line.data() + 1, end, rgb, 16).ptr != end)
      throw Error(source.Name() + ": line " + std::to_string(number) + " is '" +
                  line.substr(0, 40) + "'; wanted is #rrggbb");
    if (palette.size() == entries * 3)
      throw Error(source.Name() + ": more than the " + std::to_string(entries) +
                  " entries of --bits " + std::to_string(bits));
    for (int shift : {0, 8, 16}) palette.push_back(static_cast<unsigned char>(rgb >> shift));
  }
  if (palette.empty()) throw Error(source.Name() + ": holds no entry");
  palette.resize(entries * 3);
  return palette;
}

}  // namespace qvtool
