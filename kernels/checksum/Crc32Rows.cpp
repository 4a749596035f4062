// CRC-32.
#include "kernels/checksum/Checksum.h"
#include "kernels/checksum/CrcSlices.h"
#include "kernels/level/Level.h"

#if QV_HAS_VECTORS
#include "dispatch/VariantIndex.h"
#include "kernels/checksum/CrcRecurrence.h"
#endif

namespace qv::QV_LEVEL {

namespace {

QV_INLINE uint32_t FeedByte(uint32_t r, Byte b) {
  return (r >> 8) ^ CrcSlices.after[0][(r ^ b) & 255];
}

// Eight bytes a step (slicing by eight): the register's bytes join the first four of the eight, a
// table for each byte says what it leaves after the bytes that follow it, and the effects add up.
uint32_t FeedSliced(uint32_t r, const Byte* src, ptrdiff_t length) {
  const Byte* const end = src + length;
  if (length >= 15) {
    while (reinterpret_cast<uintptr_t>(src) % 8 != 0) r = FeedByte(r, *src++);
    for (; end - src >= 8; src += 8) {
      uint32_t low, high;
      memcpy(&low, src, 4);
      memcpy(&high, src + 4, 4);
      low ^= r;
      const auto& after = CrcSlices.after;
      r = after[7][low & 255] ^ after[6][(low >> 8) & 255] ^ after[5][(low >> 16) & 255] ^
          after[4][low >> 24] ^ after[3][high & 255] ^ after[2][(high >> 8) & 255] ^
          after[1][(high >> 16) & 255] ^ after[0][high >> 24];
    }
  }
  while (src != end) r = FeedByte(r, *src++);
  return r;
}

#if QV_HAS_VECTORS

QV_INLINE uint32_t Feed(uint32_t r, const Byte* src, ptrdiff_t length) {
  if constexpr (kHasCarryless && kHasBytePermute) {
    if (const int level = Current(CarrylessLevel); length >= kFold512Min) {
      if (level >= 3) return FeedFolded512<true>(r, src, length);
      if (level >= 2) return FeedFolded512<false>(r, src, length);
    }
  }
  if constexpr (kHasCarryless && kHasByteShuffle) {
    if (Current(CarrylessLevel) >= 1 && length >= kFold128Min) {
      // Vectors of 16 bytes would take in more of them than they are worth.
      if (kVecBytes == 32 && length >= kRecurrenceMin) return FeedRecurrence(r, src, length);
      return FeedFolded128(r, src, length);
    }
  }
  return FeedSliced(r, src, length);
}

#else

constexpr auto Feed = FeedSliced;

#endif

}  // namespace

IppStatus Crc32_8u(const Byte* src, int length, unsigned int* crc) {
  if (!src || !crc) return StatusNullPtrErr;
  if (length < 1) return StatusSizeErr;
  *crc = ~Feed(~*crc, src, length);
  return StatusOk;
}

}  // namespace qv::QV_LEVEL
