// A picture that host programs have mirrored, and a check of what came back.
#ifndef QV_TESTS_HOSTS_MIRRORED_H
#define QV_TESTS_HOSTS_MIRRORED_H

#include <cstddef>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"

namespace hosts {

struct Images {
  IppiSize size;
  std::vector<unsigned char> source, mirrored;

  explicit Images(IppiSize s)
      : size(s), source(static_cast<std::size_t>(s.width * s.height)), mirrored(source.size()) {
    for (std::size_t i = 0; i < source.size(); ++i)
      source[i] = static_cast<unsigned char>(i * 7 + i / 251);
  }

  template <class Mirror>
  IppStatus Call(const Mirror& mirror) {
    return mirror(CqvAccLib::OneChannel, source.data(), size.width, mirrored.data(), size.width,
                  size, AxisVertical);
  }
  bool IsMirrored() const {
    const auto width = static_cast<std::size_t>(size.width);
    for (std::size_t i = 0; i < source.size(); ++i)
      if (mirrored[i] != source[i - i % width + width - 1 - i % width]) return false;
    return true;
  }
};

}  // namespace hosts

#endif
