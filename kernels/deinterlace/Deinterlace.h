// Entry points of the deinterlacing kernels. Each forwards to the rows of this processor's level;
// all levels write the same bytes.
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

// Rows `first` to first + rows - 1 of the frame that one field of a frame of `height` rows makes.
// The field's lines are the rows whose number is odd (parity 1) or even (0): they are copied.
// Between them, with `near` the line of the same pair of rows 2k and 2k + 1 and `far` the one on
// the other side,
//   dst = (near * (256 - farWeight) + far * farWeight + 128) / 256, truncated
// farWeight is 0 to 128. Where one of the two is missing, the other one is copied. Pointers are
// those of row 0; source and destination must not overlap. Checks nothing and returns StatusOk; a
// frame of parity 1 has two rows at least.
extern QV_HIDDEN const Dispatched<IppStatus(
    const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, int widthBytes,
    int height, int parity, int farWeight, int first, int rows)> FieldToFrame_8u;

}  // namespace qv

#endif
