#include "StreamFields.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <optional>
#include <sstream>
#include <string_view>

namespace qvtool {
namespace {

VideoFields WithInterlacing(VideoFields fields, std::string_view from, std::string_view to) {
  for (std::string& field : fields) {
    if (field.size() != 2 || field[0] != 'I') continue;
    const std::size_t at = from.find(field[1]);
    if (at != std::string_view::npos) field[1] = to[at];
  }
  return fields;
}

// No pixel has a shape beyond this, and its product with what is below kMostOfScale fits 64 bits.
constexpr long long kMostOfAspect = 1 << 20, kMostOfScale = 1LL << 42;

struct Aspect {
  long long width, height;
};

std::optional<Aspect> ParseAspect(const std::string& field) {
  Aspect aspect{};
  const char* const end = field.data() + field.size();
  const auto first = std::from_chars(field.data() + 1, end, aspect.width);
  if (field[0] != 'A' || first.ec != std::errc()) return {};
  if (first.ptr == end || *first.ptr != ':') return {};
  const auto second = std::from_chars(first.ptr + 1, end, aspect.height);
  if (second.ec != std::errc() || second.ptr != end) return {};
  const bool isKnown = aspect.width > 0 && aspect.height > 0;
  if (!isKnown || aspect.width > kMostOfAspect || aspect.height > kMostOfAspect) return {};
  return aspect;
}

template <class Change>
VideoFields WithAspect(VideoFields fields, const Change& change) {
  for (std::string& field : fields)
    if (const auto aspect = ParseAspect(field)) {
      const auto [width, height] = change(*aspect);
      const long long common = std::gcd(width, height);
      field = "A" + std::to_string(width / common) + ":" + std::to_string(height / common);
    }
  return fields;
}

}  // namespace

VideoFields Progressive(const VideoFields& fields) {
  return WithInterlacing(fields, "tbm?", "pppp");
}

std::string WithoutFieldOrder(const std::string& parameters) {
  std::istringstream words(parameters);
  std::string kept;
  for (std::string word; words >> word;)
    if (word[0] != 'I') kept += " " + word;
  return kept;
}

VideoFields SwapRowParity(const VideoFields& fields) { return WithInterlacing(fields, "tb", "bt"); }

VideoFields WithoutRows(const VideoFields& fields) { return WithInterlacing(fields, "tbm", "???"); }

VideoFields ScaleAspect(const VideoFields& fields, IppiSize before, IppiSize after) {
  const long long width = static_cast<long long>(before.width) * after.height;
  const long long height = static_cast<long long>(before.height) * after.width;
  const long long common = std::gcd(width, height);
  if (width == height || std::max(width, height) / common >= kMostOfScale) return fields;
  return WithAspect(fields, [&](Aspect aspect) {
    return Aspect{aspect.width * (width / common), aspect.height * (height / common)};
  });
}

VideoFields TurnAspect(const VideoFields& fields) {
  return WithAspect(fields, [](Aspect aspect) { return Aspect{aspect.height, aspect.width}; });
}

}  // namespace qvtool
