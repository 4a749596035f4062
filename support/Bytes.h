// What most tests of the public interface begin with: buffers of noise, and types by their number.
#ifndef QV_SUPPORT_BYTES_H
#define QV_SUPPORT_BYTES_H

#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "support/Random.h"

namespace qv::test {

using Bytes = std::vector<unsigned char>;

inline Bytes Noise(std::size_t n, std::uint64_t seed) {
  Bytes bytes(n);
  Random(seed).Fill(bytes.data(), n);
  return bytes;
}

inline Bytes Noise(std::size_t n) { return Noise(n, n); }

// Any number, known as a type or not.
constexpr CqvAccLib::qvDataType Type(int value) {
  return static_cast<CqvAccLib::qvDataType>(value);
}

// For operations that do not look at their type.
constexpr auto kAnyType = Type(12345);

}  // namespace qv::test

#endif
