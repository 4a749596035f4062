#include "dispatch/VariantIndex.h"

namespace qv {

int VariantIndex = 0;
int WideLevel = 0;
int CarrylessLevel = 0;
int HasSse = 0;
ptrdiff_t LastCacheBytes = kUnknownCacheBytes;
bool QuickGathers = false;
bool QuickDivision = false;
ptrdiff_t LongMoveBytes = kNoLongMoves;

}  // namespace qv
