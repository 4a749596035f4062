// Keys' cubic convolution (1981), as resizing and warping sample with it. With the fraction f of a
// position and g = 1 - f, the taps -1, 0, 1 and 2 have the weights
//
//   a f g^2,  (a + 2) f^3 - (a + 3) f^2 + 1,  (a + 2) g^3 - (a + 3) g^2 + 1,  a g f^2
#ifndef QV_KERNELS_KEYSCUBIC_H
#define QV_KERNELS_KEYSCUBIC_H

namespace qv {

constexpr double kKeysA = -0.5;
static_assert(-1 <= kKeysA && kKeysA <= 0);  // else the weights change their signs elsewhere

// What a sample's negative weights add up to at least, and so its positive ones at most: the outer
// two make a f g, and the inner two the rest.
constexpr double kKeysLeast = kKeysA / 4;
constexpr double kKeysMost = 1 - kKeysLeast;

}  // namespace qv

#endif
