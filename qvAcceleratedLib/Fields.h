// Frames of two fields taken apart and put together.
#ifndef QV_QVACCELERATEDLIB_FIELDS_H
#define QV_QVACCELERATEDLIB_FIELDS_H

#include "dispatch/Hidden.h"
#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv {

// Which field of a frame is the first in time: that of rows 0, 2, 4 ... or that of the others.
enum FieldOrder : int { TopFieldFirst = 0, BottomFieldFirst = 1 };

// qv_deinterlace_bob and qv_weave (qv.h). Widths are in bytes.
QV_HIDDEN IppStatus DeinterlaceBob(const unsigned char* src, int srcStep, unsigned char* first,
                                   int firstStep, unsigned char* second, int secondStep,
                                   IppiSize size, int fieldOrder, int centreWeight);
QV_HIDDEN IppStatus Weave(const unsigned char* first, int firstStep, const unsigned char* second,
                          int secondStep, unsigned char* dst, int dstStep, IppiSize size,
                          int fieldOrder);

}  // namespace qv

#endif
