// Entry point of the deinterlacing kernel. It forwards to the rows of this processor's level; all
// levels write the same bytes.
#ifndef QV_KERNELS_DEINTERLACE_DEINTERLACE_H
#define QV_KERNELS_DEINTERLACE_DEINTERLACE_H

#include "dispatch/Dispatched.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Vertical three-tap filter over rows of bytes; the formula and the rows that each mode writes are
// those of CqvAccLib::qvDeinterlace. Rows are written from the first to the last one: where
// those of the destination overlap, a byte keeps what the last row that holds it writes.
// Checks, in this order: StatusNullPtrErr for a null pointer, StatusSizeErr for a height below 3 or
// a width below 1.
extern QV_HIDDEN const Dispatched<IppStatus(
    const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, int widthBytes,
    int height, unsigned centreWeight, unsigned mode)> Deinterlace_8u;

}  // namespace qv

#endif
