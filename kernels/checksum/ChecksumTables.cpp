#include "dispatch/DispatchTable.h"
#include "kernels/checksum/Checksum.h"

#define QV_KERNEL QV_DEFINE_TABLE
#include "kernels/checksum/Checksum.def"
#undef QV_KERNEL

namespace qv {

IppStatus Crc32_8u(const unsigned char* src, int length, unsigned int* crc) {
  return Crc32_8u_Table(src, length, crc);
}

IppStatus Adler32_8u(const unsigned char* src, int length, unsigned int* adler) {
  return Adler32_8u_Table(src, length, adler);
}

}  // namespace qv
