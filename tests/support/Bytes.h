// What most tests of the public interface begin with: buffers of noise, and types by their number.
#ifndef QV_TESTS_SUPPORT_BYTES_H
#define QV_TESTS_SUPPORT_BYTES_H

#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Random.h"

namespace qv::test {

using Bytes = std::vector<unsigned char>;

inline Bytes Noise(std::size_t n) {
  Bytes bytes(n);
  Random(n).Fill(bytes.data(), n);
  return bytes;
}

// Any number, known as a type or not.
inline CqvAccLib::qvDataType Type(int value) { return static_cast<CqvAccLib::qvDataType>(value); }

}  // namespace qv::test

#endif
