#include "io/Numbering.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "Error.h"

namespace qvtool {

std::optional<Numbering> Numbering::Find(const std::string& path) {
  const std::size_t at = path.find('%');
  if (at == std::string::npos) return {};
  std::size_t end = at + 1;
  int digits = 0;
  while (end < path.size() && std::isdigit(static_cast<unsigned char>(path[end])) && digits < 100)
    digits = digits * 10 + (path[end++] - '0');
  if (end >= path.size() || !std::isalpha(static_cast<unsigned char>(path[end]))) return {};
  if (path[end] != 'd')
    throw UsageError(path + ": '" + path.substr(at, end + 1 - at) +
                     "' given; wanted is the number of the frame, such as %04d");
  Numbering numbering;
  numbering.before_ = path.substr(0, at);
  numbering.after_ = path.substr(end + 1);
  numbering.digits_ = std::min(digits, 12);
  return numbering;
}

std::string Numbering::Path(long number) const {
  char digits[32];
  std::snprintf(digits, sizeof digits, "%0*ld", digits_, number);
  return before_ + digits + after_;
}

}  // namespace qvtool
