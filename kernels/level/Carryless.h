// Carry-less multiplication, of polynomials over bits: a feature of the processor beside the level,
// found by CarrylessLevel, so that functions that use it are compiled for it one by one.
// QV_CARRYLESS (CarrylessLevel 1 or more, kHasByteShuffle) marks those on a Vec128,
// QV_CARRYLESS_WIDE (2, kHasBytePermute) those on a Vec, which also multiply by matrices. A lambda
// would not inherit the mark. On processors other than x86 kHasCarryless says that there is none.
#ifndef QV_KERNELS_LEVEL_CARRYLESS_H
#define QV_KERNELS_LEVEL_CARRYLESS_H

#include "kernels/level/Level.h"

#if defined(__SSE2__)

#include <immintrin.h>

#define QV_CARRYLESS __attribute__((target("ssse3,pclmul")))
#define QV_CARRYLESS_WIDE \
  __attribute__((target("avx512f,avx512bw,avx512vl,avx512dq,avx512vbmi,pclmul,vpclmulqdq,gfni")))

namespace qv::QV_LEVEL {

constexpr bool kHasCarryless = true;

// The 128-bit product, in each 128-bit lane, of a 64-bit half of `a` and one of `b`: 0 is the low
// half, 1 the high one.
template <int kHalfOfA, int kHalfOfB>
QV_INLINE QV_CARRYLESS Vec128 MulCarryless(Vec128 a, Vec128 b) {
  return _mm_clmulepi64_si128(a, b, kHalfOfA + 16 * kHalfOfB);
}
#if defined(__AVX512VBMI__)
template <int kHalfOfA, int kHalfOfB>
QV_INLINE QV_CARRYLESS_WIDE Vec MulCarryless(Vec a, Vec b) {
  return _mm512_clmulepi64_epi128(a, b, kHalfOfA + 16 * kHalfOfB);
}

// Each byte, a vector of eight bits, times the 8 x 8 matrix over bits in the 64-bit lane that it
// stands in: bit i of a product is the parity of those bits of the byte that are set in byte 7 - i
// of the matrix.
QV_INLINE QV_CARRYLESS_WIDE Vec MulBitMatrices(Vec bytes, Vec matrices) {
  return _mm512_gf2p8affine_epi64_epi8(bytes, matrices, 0);
}
#else
#if defined(__AVX2__)
template <int kHalfOfA, int kHalfOfB> Vec MulCarryless(Vec a, Vec b);
#endif
Vec MulBitMatrices(Vec bytes, Vec matrices);
#endif

}  // namespace qv::QV_LEVEL

#else

#define QV_CARRYLESS
#define QV_CARRYLESS_WIDE

namespace qv::QV_LEVEL {

constexpr bool kHasCarryless = false;

template <int kHalfOfA, int kHalfOfB> Vec128 MulCarryless(Vec128 a, Vec128 b);
Vec MulBitMatrices(Vec bytes, Vec matrices);

}  // namespace qv::QV_LEVEL

#endif

#endif
