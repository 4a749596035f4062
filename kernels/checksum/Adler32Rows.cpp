// Adler-32.
#include "kernels/checksum/Checksum.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

constexpr uint32_t kModulus = 65521;

// A fresh remainder of both sums is due after this many bytes: n = 5552 is the largest n for which
// b + n * a + 255 * n * (n + 1) / 2 stays below 2^32 when a and b start from 65535.
constexpr ptrdiff_t kBlock = 5552;

struct Sums {
  uint32_t a, b;
};

QV_INLINE Sums FeedPlain(Sums s, const Byte* src, ptrdiff_t length) {
  while (length > 0) {
    const ptrdiff_t n = length < kBlock ? length : kBlock;
    for (ptrdiff_t i = 0; i < n; ++i) {
      s.a += src[i];
      s.b += s.a;
    }
    s.a %= kModulus;
    s.b %= kModulus;
    src += n;
    length -= n;
  }
  return s;
}

}  // namespace

IppStatus Adler32_8u(const Byte* src, int length, unsigned int* adler) {
  const Sums start = {*adler & 0xFFFF, *adler >> 16};
  if (!src) {
    *adler = 0;
    return StatusSizeErr;
  }
  if (length < 1) return StatusOk;
  const Sums s = FeedPlain(start, src, length);
  *adler = s.b << 16 | s.a;
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
