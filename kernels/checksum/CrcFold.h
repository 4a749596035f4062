// CRC-32 by folding with carry-less multiplication.
//
// A message M of n bits, register r XORed into its first 32 bits, leaves M * x^32 mod P in the
// register. Folding replaces the front of M, a polynomial A that stands d bits before some later
// bits B of equal width, by (A * x^d mod P) + B: shorter, with the same remainder. Constants are in
// CrcPolynomial.h, with the order of bits.
//
// Carry-less multiplication is a feature beside the level, tested for by CarrylessLevel, so these
// functions alone are compiled with it. No lambdas in here: they would not inherit the attribute.
#ifndef QV_KERNELS_CHECKSUM_CRCFOLD_H
#define QV_KERNELS_CHECKSUM_CRCFOLD_H

#include <immintrin.h>

#include "kernels/checksum/CrcPolynomial.h"
#include "kernels/level/Common.h"

namespace qv::QV_LEVEL {

#define QV_FOLD16 __attribute__((target("ssse3,pclmul")))
#define QV_FOLD64 \
  __attribute__((target("avx512f,avx512bw,avx512vl,avx512dq,avx512vbmi,pclmul,vpclmulqdq")))

namespace {

constexpr int kFold16Min = 16;
constexpr int kFold64Min = 256;
constexpr int kAlignMin = 4096;

// ---- 16-byte vectors ----------------------------------------------------------------------------

// The factors that move a 128-bit polynomial up by `bytes` bytes: its low 64 bits in memory order
// stand 64 places higher than the others.
template <int bytes>
QV_INLINE QV_FOLD16 __m128i FactorsFor16() {
  constexpr int64_t first = crc::MoveUp<8 * bytes + 64>(), second = crc::MoveUp<8 * bytes>();
  return _mm_set_epi64x(second, first);
}

QV_INLINE QV_FOLD16 __m128i Load16(const Byte* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// a moved up by the distance of the factors, added to b.
QV_INLINE QV_FOLD16 __m128i Fold16(__m128i a, __m128i factors, __m128i b) {
  const __m128i first = _mm_clmulepi64_si128(a, factors, 0x00);
  const __m128i second = _mm_clmulepi64_si128(a, factors, 0x11);
  return _mm_xor_si128(_mm_xor_si128(first, second), b);
}

// The register after the message M that a 128-bit polynomial stands for: M * x^32 mod P.
//
// M = a * x^64 + b. Two steps:
//   T * x^32 + U = a * x^96 mod P + b * x^32, of degree below 96; U has degree below 32. Kept
//   raised by 32 places, so that T is the low 64-bit word of `sum` and U the 32 bits after it.
//   q = floor(T * x^32 / P) = floor(T * floor(x^96 / P) / x^64), as in Barrett's reduction: without
//   carries the discarded fraction of the reciprocal, of degree below 0, reaches no coefficient
//   of x^64 and above; nor does the reciprocal's own last coefficient, T being of degree below 64.
//   The remainder is T * x^32 + U - q * P, of which only the places below x^32 are not 0: U and the
//   low places of q * (P - x^32).
QV_INLINE QV_FOLD16 uint32_t Remainder16(__m128i m) {
  constexpr int64_t reciprocal = crc::Reciprocal(), polynomial = crc::PolynomialRaised(),
                    raise = crc::MoveUpRaised(96);
  const __m128i sum =
      _mm_xor_si128(_mm_clmulepi64_si128(m, _mm_set_epi64x(0, raise), 0x00), _mm_srli_si128(m, 8));
  const __m128i factors = _mm_set_epi64x(polynomial, reciprocal);
  const __m128i q = _mm_clmulepi64_si128(sum, factors, 0x00);
  const __m128i product = _mm_clmulepi64_si128(q, factors, 0x10);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(_mm_xor_si128(sum, product), 8)));
}

// Byte shuffles from a window of this table: from 16 - n a vector moves up by n bytes, from 16 + n
// down by n bytes; 0 comes in.
alignas(16) constexpr Byte kMoves[48] = {
    128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128,  //
    0,   1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,  13,  14,  15,   //
    128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128};

// A message of x and n more bytes that end at `end`, n from 1 to 15, as one polynomial of 16 bytes.
// The last 16 of its 16 + n bytes stay and the n before them fold onto them; at least 16 - n bytes
// before `end` - n are readable.
QV_INLINE QV_FOLD16 __m128i Append16(__m128i x, const Byte* end, ptrdiff_t n) {
  const __m128i down = Load16(kMoves + 16 + n);
  const __m128i front = _mm_shuffle_epi8(x, Load16(kMoves + n));
  const __m128i fresh = _mm_and_si128(Load16(end - 16), _mm_cmpgt_epi8(_mm_setzero_si128(), down));
  return Fold16(front, FactorsFor16<16>(), _mm_or_si128(_mm_shuffle_epi8(x, down), fresh));
}

// Folds the front half of `count` neighbouring vectors onto the other.
template <int count>
QV_INLINE QV_FOLD16 void HalveFold16(__m128i* x) {
  const __m128i factors = FactorsFor16<8 * count>();
#pragma GCC unroll 8
  for (int i = 0; i < count / 2; ++i) x[i] = Fold16(x[i], factors, x[i + count / 2]);
}

// Folds `count` neighbouring vectors onto as many that follow them in memory.
template <int count>
QV_INLINE QV_FOLD16 void StepFold16(__m128i* x, const Byte* src) {
  const __m128i factors = FactorsFor16<16 * count>();
#pragma GCC unroll 8
  for (int i = 0; i < count; ++i) x[i] = Fold16(x[i], factors, Load16(src + 16 * i));
}

[[maybe_unused]] QV_FOLD16 uint32_t FeedFolded16(uint32_t r, const Byte* src, ptrdiff_t length) {
  const Byte* const end = src + length;
  // A chain of folds waits for two operations each time; eight chains hide that.
  constexpr int kChains = 8;
  __m128i x[kChains];
  x[0] = _mm_xor_si128(Load16(src), _mm_cvtsi32_si128(static_cast<int>(r)));
  if (length >= 16 * kChains) {
#pragma GCC unroll 8
    for (int i = 1; i < kChains; ++i) x[i] = Load16(src + 16 * i);
    for (src += 16 * kChains; end - src >= 16 * kChains; src += 16 * kChains)
      StepFold16<kChains>(x, src);
    HalveFold16<8>(x);
    if (end - src >= 64) StepFold16<4>(x, src), src += 64;
    HalveFold16<4>(x);
    if (end - src >= 32) StepFold16<2>(x, src), src += 32;
    HalveFold16<2>(x);
  } else {
    src += 16;
  }
  for (; end - src >= 16; src += 16) StepFold16<1>(x, src);
  if (src != end) x[0] = Append16(x[0], end, end - src);
  return Remainder16(x[0]);
}

// ---- 64-byte vectors ----------------------------------------------------------------------------

// As FactorsFor16, for each of the four 128-bit polynomials of a vector.
template <int bytes>
QV_INLINE QV_FOLD64 __m512i FactorsFor64() {
  constexpr int64_t first = crc::MoveUp<8 * bytes + 64>(), second = crc::MoveUp<8 * bytes>();
  return _mm512_set4_epi64(second, first, second, first);
}

QV_INLINE QV_FOLD64 __m512i Fold64(__m512i a, __m512i factors, __m512i b) {
  const __m512i first = _mm512_clmulepi64_epi128(a, factors, 0x00);
  const __m512i second = _mm512_clmulepi64_epi128(a, factors, 0x11);
  return _mm512_ternarylogic_epi64(first, second, b, 0x96);  // the sum of all three
}

// The four polynomials of a vector, each moved up to its distance from the last one, as one.
QV_INLINE QV_FOLD64 __m128i Gather64(__m512i x) {
  constexpr int64_t first0 = crc::MoveUp(384 + 64), second0 = crc::MoveUp(384),
                    first1 = crc::MoveUp(256 + 64), second1 = crc::MoveUp(256),
                    first2 = crc::MoveUp(128 + 64), second2 = crc::MoveUp(128);
  const __m512i factors =
      _mm512_set_epi64(0, 0, second2, first2, second1, first1, second0, first0);
  const __m512i sum = Fold64(x, factors, _mm512_maskz_mov_epi64(0xC0, x));
  const __m256i half =
      _mm256_xor_si256(_mm512_castsi512_si256(sum), _mm512_extracti64x4_epi64(sum, 1));
  return _mm_xor_si128(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
}

// As Append16, n from 1 to 63; 64 bytes before `end` are readable.
QV_INLINE QV_FOLD64 __m512i Append64(__m512i x, const Byte* end, ptrdiff_t n) {
  alignas(64) static constexpr Byte kPlaces[64] = {
      0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21,
      22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43,
      44, 45, 46, 47, 48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63};
  const __mmask64 fresh = ~0ull << (64 - n);
  const __m512i turn =
      _mm512_add_epi8(_mm512_load_si512(kPlaces), _mm512_set1_epi8(static_cast<char>(n)));
  const __m512i front = _mm512_maskz_permutexvar_epi8(fresh, turn, x);
  const __m512i rest =
      _mm512_mask_permutexvar_epi8(_mm512_loadu_si512(end - 64), ~fresh, turn, x);
  return Fold64(front, FactorsFor64<64>(), rest);
}

template <int count>
QV_INLINE QV_FOLD64 void HalveFold64(__m512i* x) {
  const __m512i factors = FactorsFor64<32 * count>();
#pragma GCC unroll 8
  for (int i = 0; i < count / 2; ++i) x[i] = Fold64(x[i], factors, x[i + count / 2]);
}

template <int count>
QV_INLINE QV_FOLD64 void StepFold64(__m512i* x, const Byte* src) {
  const __m512i factors = FactorsFor64<64 * count>();
#pragma GCC unroll 8
  for (int i = 0; i < count; ++i)
    x[i] = Fold64(x[i], factors, _mm512_loadu_si512(src + 64 * i));
}

[[maybe_unused]] QV_FOLD64 uint32_t FeedFolded64(uint32_t r, const Byte* src, ptrdiff_t length) {
  const Byte* const end = src + length;
  constexpr int kChains = 8;
  __m512i x[kChains];
  x[0] = _mm512_xor_si512(_mm512_loadu_si512(src),
                          _mm512_zextsi128_si512(_mm_cvtsi32_si128(static_cast<int>(r))));
  // Loads across cache lines would slow a long loop down.
  if (const ptrdiff_t lead = -reinterpret_cast<intptr_t>(src) & 63;
      lead != 0 && length >= kAlignMin) {
    x[0] = Append64(x[0], src + 64 + lead, lead);
    src += lead;
  }
#pragma GCC unroll 8
  for (int i = 1; i < 4; ++i) x[i] = _mm512_loadu_si512(src + 64 * i);
  if (end - src >= 64 * kChains) {
#pragma GCC unroll 8
    for (int i = 4; i < kChains; ++i) x[i] = _mm512_loadu_si512(src + 64 * i);
    for (src += 64 * kChains; end - src >= 64 * kChains; src += 64 * kChains)
      StepFold64<kChains>(x, src);
    HalveFold64<8>(x);
  } else {
    src += 256;
  }
  if (end - src >= 256) StepFold64<4>(x, src), src += 256;
  HalveFold64<4>(x);
  if (end - src >= 128) StepFold64<2>(x, src), src += 128;
  HalveFold64<2>(x);
  if (end - src >= 64) StepFold64<1>(x, src), src += 64;
  if (src != end) x[0] = Append64(x[0], end, end - src);
  return Remainder16(Gather64(x[0]));
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
