// The vocabulary of the level that this translation unit is built for. Row sources include this one
// header and write their code in namespace qv::QV_LEVEL.
//
// All levels give the same names: a vector type Vec of kVecBytes bytes and operations on it, most
// of which Vectors.h and Operations.h define for all; Floats.h has those on single precision. A
// level says what it has in constants (kHasByteShuffle, ...) for `if constexpr`; an operation that
// a level lacks is declared there without a definition, so that discarded branches compile and a
// branch that is not discarded fails to link. Only the generic level has no vectors at all: vector
// rows stand between `#if QV_HAS_VECTORS` and `#endif`.
//
// Everything here and in row sources stays inside the level's namespace, so that the linker can
// never replace one level's code by another's.
#ifndef QV_KERNELS_LEVEL_LEVEL_H
#define QV_KERNELS_LEVEL_LEVEL_H

#include "kernels/level/Common.h"

#if defined(QV_LEVEL_generic)
#include "kernels/level/generic.h"
#elif defined(QV_LEVEL_sse2)
#include "kernels/level/sse2.h"
#elif defined(QV_LEVEL_ssse3)
#include "kernels/level/ssse3.h"
#elif defined(QV_LEVEL_avx2)
#include "kernels/level/avx2.h"
#elif defined(QV_LEVEL_avx512)
#include "kernels/level/avx512.h"
#else
#error "QV_LEVEL_<name> is not defined"
#endif

#if QV_HAS_VECTORS
#include "kernels/level/Vectors.h"

#include "kernels/level/Blocks.h"
#include "kernels/level/ByteTables.h"
#include "kernels/level/Pixels.h"
#include "kernels/level/ShortRows.h"
#endif

#endif
