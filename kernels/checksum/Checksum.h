// Entry points of the checksum kernels. Each forwards to the code of this processor's level; all
// levels give the same value.
#ifndef QV_KERNELS_CHECKSUM_CHECKSUM_H
#define QV_KERNELS_CHECKSUM_CHECKSUM_H

#include "dispatch/Dispatched.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

using ChecksumKernel = Dispatched<IppStatus(
    const unsigned char* src, int length, unsigned int* crc)>;

// Continues the CRC-32 of ITU-T V.42 in *crc (0 before the first byte) over `length` bytes.
// StatusNullPtrErr if src or crc is null, StatusSizeErr for a length below 1; *crc is kept then.
extern QV_HIDDEN const ChecksumKernel Crc32_8u;

// Continues the Adler-32 of RFC 1950 in *adler (1 before the first byte) over `length` bytes; both
// halves of a result are below 65521 whatever the value started from. StatusSizeErr with *adler = 0
// if src is null, else StatusOk with *adler kept for a length below 1. adler must not be null.
extern QV_HIDDEN const ChecksumKernel Adler32_8u;

}  // namespace qv

#endif
