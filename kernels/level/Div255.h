// Fractions of bytes: floor(x * c / 255).
#ifndef QV_KERNELS_LEVEL_DIV255_H
#define QV_KERNELS_LEVEL_DIV255_H

#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

// floor(p / 255) of a product of bytes: p / 255 = (p + p / 256 + p / 65536 + ...) / 256, and the 1
// makes up for the terms cut off.
QV_INLINE int Div255(int p) { return (p + (p >> 8) + 1) >> 8; }

#if QV_HAS_VECTORS

// For c up to 254, MulHighUnsigned16(x, Fraction255(c)) is floor(x * c / 255) of bytes x in 16-bit
// lanes: the high half of p = x * (257 * c + 1). With x * c = 255 k + r, p = 65535 k + 257 r + x is
// at least 65536 k, as k <= x, and below 65536 (k + 1), as 257 r + x <= 257 * 254 + 255.
QV_INLINE Vec Fraction255(int c) { return Splat16(257 * c + 1); }

#endif

}  // namespace qv::QV_LEVEL

#endif
