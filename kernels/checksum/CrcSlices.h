// The tables of slicing by eight, one copy for all levels.
#ifndef QV_KERNELS_CHECKSUM_CRCSLICES_H
#define QV_KERNELS_CHECKSUM_CRCSLICES_H

#include <stdint.h>

#include "dispatch/Hidden.h"

namespace qv {

struct CrcSliceTables {
  uint32_t after[8][256];  // after[k][b]: the register that a byte b and then k zero bytes leave
};

extern QV_HIDDEN const CrcSliceTables CrcSlices;

}  // namespace qv

#endif
