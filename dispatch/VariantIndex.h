// Which implementation of the kernels this processor gets, and what its rows choose by. All values
// are written while the library is loaded; until then kernels run their generic rows. A host may
// lower the first three later, one after the other and while calls run: whatever the mixture, the
// processor can do it, and what a kernel writes is the same. Bytes never depend on LastCacheBytes,
// QuickGathers, QuickDivision and LongMoveBytes.
#ifndef QV_DISPATCH_VARIANTINDEX_H
#define QV_DISPATCH_VARIANTINDEX_H

#include <stddef.h>
#include <stdint.h>

#include "dispatch/Hidden.h"

namespace qv {

// Slot of every dispatch table: 0 generic, 1 SSE, 2 SSE2, 3 SSE3, 4 SSSE3. Initially 0.
extern QV_HIDDEN int VariantIndex;

// Vectors wider than slot 4 stands for: 0 none, 1 AVX2, 2 AVX-512 with F, BW, VL, DQ and VBMI.
// Always 0 unless VariantIndex is 4.
extern QV_HIDDEN int WideLevel;

// Carry-less multiplication, for folding a CRC: 0 none, 1 PCLMULQDQ on 16-byte vectors (SSE4.1 is
// there as well), 2 VPCLMULQDQ on 64-byte vectors, with GFNI (WideLevel 2 is there as well), 3 the
// same where GFNI's products with matrices are the quicker ones. Always 0 unless VariantIndex is 4.
extern QV_HIDDEN int CarrylessLevel;

// One of these three as it is at the moment.
static inline int Current(const int& value) { return __atomic_load_n(&value, __ATOMIC_RELAXED); }

// Whether there is MXCSR to set: 1 or 0. Slot 1 does not say so, being also that of two classes of
// processors without SSE.
extern QV_HIDDEN int HasSse;

// Size of the last level of cache, and what is taken for it where the processor does not tell.
constexpr ptrdiff_t kUnknownCacheBytes = ptrdiff_t{32} << 20;
extern QV_HIDDEN ptrdiff_t LastCacheBytes;

// Whether a gather beats as many loads of single elements. False on processors without AVX2.
extern QV_HIDDEN bool QuickGathers;

// Whether dividing three vectors of floats by a fourth beats multiplying them by its reciprocal in
// two terms. False on processors without AVX-512.
extern QV_HIDDEN bool QuickDivision;

// Bytes from which on a copy is best done by one repeated move, if source and destination lie alike
// in their cache lines.
constexpr ptrdiff_t kNoLongMoves = PTRDIFF_MAX;
extern QV_HIDDEN ptrdiff_t LongMoveBytes;

}  // namespace qv

#endif
