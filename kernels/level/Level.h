// The vocabulary of the level that this translation unit is built for. Row sources include this one
// header and write their code in namespace qv::QV_LEVEL.
//
// All levels give the same names: the vector types Vec of kVecBytes bytes, Vec128 and Floats, and
// operations on them. x86 levels take most of these from X86.h; Vectors.h has the words made of
// others and declares those that levels define for themselves; the other headers are an idea each.
// A level says what it has in constants (kHasByteShuffle, ...) for `if constexpr`; an operation
// that it lacks is declared without a definition, so that discarded branches compile and a branch
// that is not discarded fails to link. Only the generic level has no vectors at all: vector rows
// stand between `#if QV_HAS_VECTORS` and `#endif`.
//
// Everything here and in row sources stays inside the level's namespace, so that the linker can
// never replace one level's code by another's.
#ifndef QV_KERNELS_LEVEL_LEVEL_H
#define QV_KERNELS_LEVEL_LEVEL_H

#include "kernels/level/Common.h"

#define QV_QUOTED(text) #text
#define QV_HEADER_OF(name) QV_QUOTED(kernels/level/name.h)
#include QV_HEADER_OF(QV_LEVEL)

#if QV_HAS_VECTORS
#include "kernels/level/Vectors.h"

#include "kernels/level/Blocks.h"
#include "kernels/level/ByteTables.h"
#include "kernels/level/EvenOdd.h"
#include "kernels/level/Pixels.h"
#include "kernels/level/ShortRows.h"
#endif

#endif
