// Folding by matrices over bits, without carry-less multiplication.
//
// A byte that stands 4096 bits before another, that is in the same place of the eighth vector
// before it, is a polynomial of degree below 8 times x^4096. Modulo P this equals
//   c0 * x^(512 * 4) + c1 * x^(512 * 3) + c2 * x^512 + c3
// with some c of degrees below 8: 32 coefficients for the 32 of a remainder. So a vector vanishes
// if those 4, 5, 7 and 8 vectors after it take in the c of its bytes. Each c is a linear function
// of the byte, its product with an 8 x 8 matrix over bits, and the same function for all bytes.
#ifndef QV_KERNELS_CHECKSUM_CRCMATRICES_H
#define QV_KERNELS_CHECKSUM_CRCMATRICES_H

#include "kernels/checksum/CrcPolynomial.h"
#include "kernels/level/Carryless.h"

namespace qv::crc {

// Vectors from one that vanishes to those that take it in; not all such numbers have a solution.
constexpr int kTargets[4] = {4, 5, 7, 8};

struct TargetMatrices {
  uint64_t of[4];  // as MulBitMatrices takes them
};

// Writes x^(4096 + 7 - i), which bit i of the byte stands for, as a sum of the 32 powers that the
// bits of the targets stand for. These are independent modulo P, or this would not compile.
consteval TargetMatrices SolveForTargets() {
  struct Sum {
    uint32_t value, powers;  // of the powers with these numbers: 8 * target + bit
  };
  Sum basis[32] = {};  // of basis[i] the top bit is bit i
  const auto reduce = [&](Sum s) {
    for (int i = 31; i >= 0; --i)
      if (s.value >> i & 1 && basis[i].value != 0)
        s = {s.value ^ basis[i].value, s.powers ^ basis[i].powers};
    return s;
  };
  for (int k = 0; k < 32; ++k) {
    const Sum s = reduce({PowerOfX(512 * (8 - kTargets[k / 8]) + 7 - k % 8), 1u << k});
    basis[31 - __builtin_clz(s.value)] = s;  // not of 0
  }
  TargetMatrices matrices = {};
  for (int i = 0; i < 8; ++i) {
    const Sum s = reduce({PowerOfX(4096 + 7 - i), 0});
    for (int k = 0; k < 32; ++k)
      if (s.powers >> k & 1) matrices.of[k / 8] |= uint64_t{1} << (8 * (7 - k % 8) + i);
  }
  return matrices;
}

}  // namespace qv::crc

namespace qv::QV_LEVEL {

namespace {

// Adds to the targets of v[0] what makes it vanish.
QV_INLINE QV_CARRYLESS_WIDE void FoldByMatrices(Vec* v) {
  static constexpr crc::TargetMatrices kMatrices = crc::SolveForTargets();
#pragma GCC unroll 4
  for (int k = 0; k < 4; ++k) {
    const Vec matrix = Splat64(static_cast<int64_t>(kMatrices.of[k]));
    v[crc::kTargets[k]] = Xor(v[crc::kTargets[k]], MulBitMatrices(v[0], matrix));
  }
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
