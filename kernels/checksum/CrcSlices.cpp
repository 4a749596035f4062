#include "kernels/checksum/CrcSlices.h"

#include "kernels/checksum/CrcPolynomial.h"

namespace qv {

static consteval CrcSliceTables MakeCrcSlices() {
  CrcSliceTables tables{};
  for (uint32_t b = 0; b < 256; ++b) {
    uint32_t r = b;
    for (int bit = 0; bit < 8; ++bit) r = crc::TimesX(r);
    tables.after[0][b] = r;
  }
  for (int k = 1; k < 8; ++k)
    for (uint32_t b = 0; b < 256; ++b) {
      const uint32_t r = tables.after[k - 1][b];
      tables.after[k][b] = (r >> 8) ^ tables.after[0][r & 255];
    }
  return tables;
}

constexpr CrcSliceTables kCrcSlices = MakeCrcSlices();
static_assert(kCrcSlices.after[0][128] == crc::kPolynomial);

const CrcSliceTables CrcSlices = kCrcSlices;

}  // namespace qv
