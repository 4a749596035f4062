#include "TargetSize.h"

#include <algorithm>
#include <cmath>

namespace qvtool {

TargetSize TargetSize::Parse(const std::string& argument, const std::string& text) {
  TargetSize target;
  const std::size_t x = text.find('x');
  const auto side = [&](const std::string& digits) -> std::optional<int> {
    if (digits.empty()) return {};
    return ParseSize(argument, digits + "x1").width;
  };
  if (x == std::string::npos || text.size() == 1 || (x > 0 && x + 1 < text.size())) {
    const IppiSize size = ParseSize(argument, text);
    target.width_ = size.width;
    target.height_ = size.height;
  } else {
    target.width_ = side(text.substr(0, x));
    target.height_ = side(text.substr(x + 1));
  }
  return target;
}

TargetSize TargetSize::ParseFit(const std::string& argument, const std::string& text) {
  const IppiSize size = ParseSize(argument, text);
  TargetSize target;
  target.width_ = size.width;
  target.height_ = size.height;
  target.fit_ = true;
  return target;
}

IppiSize TargetSize::For(IppiSize frame) const {
  if (width_ && height_ && !fit_) return {*width_, *height_};
  constexpr double kAny = 1e9;
  const double across = width_ ? *width_ / static_cast<double>(frame.width) : kAny;
  const double down = height_ ? *height_ / static_cast<double>(frame.height) : kAny;
  const double factor = std::min(across, down);
  const auto scaled = [factor](int length) {
    return static_cast<int>(std::clamp(std::round(length * factor), 1.0, 1e9));
  };
  return {scaled(frame.width), scaled(frame.height)};
}

}  // namespace qvtool
