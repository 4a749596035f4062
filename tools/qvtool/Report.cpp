#include "Report.h"

#include <cstdio>

namespace qvtool {
namespace {

std::string Visible(const std::string& text) {
  std::string visible;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, "\\x%02x", byte);
    visible += byte < 0x20 || byte == 0x7f ? escaped : std::string(1, c);
  }
  return visible;
}

}  // namespace

void Report(const std::string& text) {
  std::fprintf(stderr, "qvtool: %s\n", Visible(text).c_str());
}

}  // namespace qvtool
