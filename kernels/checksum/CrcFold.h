// CRC-32 by folding with carry-less multiplication.
//
// A message M of n bits, register r XORed into its first 32 bits, leaves M * x^32 mod P in the
// register. Folding replaces the front of M, a polynomial A that stands d bits before some later
// bits B of equal width, by (A * x^d mod P) + B: shorter, with the same remainder. Constants are in
// CrcPolynomial.h, with the order of bits.
#ifndef QV_KERNELS_CHECKSUM_CRCFOLD_H
#define QV_KERNELS_CHECKSUM_CRCFOLD_H

#include "kernels/checksum/CrcMatrices.h"
#include "kernels/checksum/CrcPolynomial.h"
#include "kernels/level/Ahead.h"
#include "kernels/level/Carryless.h"

namespace qv::QV_LEVEL {

namespace {

constexpr int kFold128Min = 16;
constexpr int kFold512Min = 32;
constexpr int kAlignMin = 4096;

// ---- 128-bit vectors ---------------------------------------------------------------------------

// The factors that move a 128-bit polynomial up by `bytes` bytes: its low 64 bits in memory order
// stand 64 places higher than the others.
template <int bytes>
alignas(16) constexpr int64_t kFactors[2] = {crc::MoveUp<8 * bytes + 64>(),
                                             crc::MoveUp<8 * bytes>()};

// a moved up by the distance of the factors, added to b.
QV_INLINE QV_CARRYLESS Vec128 Fold128(Vec128 a, Vec128 factors, Vec128 b) {
  return Xor(Xor(MulCarryless<0, 0>(a, factors), MulCarryless<1, 1>(a, factors)), b);
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
QV_INLINE QV_CARRYLESS uint32_t Remainder128(Vec128 m) {
  alignas(16) static constexpr int64_t kRaise[2] = {crc::MoveUpRaised(96), 0};
  alignas(16) static constexpr int64_t kDivision[2] = {crc::Reciprocal(), crc::PolynomialRaised()};
  const Vec128 division = Load128(kDivision);
  const Vec128 sum = Xor(MulCarryless<0, 0>(m, Load128(kRaise)), ShiftBytesDown<8>(m));
  const Vec128 q = MulCarryless<0, 0>(sum, division);
  return LowBits32(ShiftBytesDown<8>(Xor(sum, MulCarryless<0, 1>(q, division))));
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
QV_INLINE QV_CARRYLESS Vec128 Append128(Vec128 x, const Byte* end, ptrdiff_t n) {
  const Vec128 up = Load128(kMoves + n);  // by 16 - n
  const Vec128 fresh =
      ShuffleBytes(ShuffleBytes(Load128(end - 16), Load128(kMoves + 32 - n)), up);
  return Fold128(ShuffleBytes(x, up), Load128(kFactors<16>),
                Or(ShuffleBytes(x, Load128(kMoves + 16 + n)), fresh));
}

// Folds the front half of `count` neighbouring vectors onto the other.
template <int count>
QV_INLINE QV_CARRYLESS void HalveFold128(Vec128* x) {
  const Vec128 factors = Load128(kFactors<8 * count>);
#pragma GCC unroll 8
  for (int i = 0; i < count / 2; ++i) x[i] = Fold128(x[i], factors, x[i + count / 2]);
}

// Folds `count` neighbouring vectors onto as many that follow them in memory.
template <int count>
QV_INLINE QV_CARRYLESS void StepFold128(Vec128* x, const Byte* src) {
  const Vec128 factors = Load128(kFactors<16 * count>);
#pragma GCC unroll 8
  for (int i = 0; i < count; ++i) x[i] = Fold128(x[i], factors, Load128(src + 16 * i));
}

inline QV_CARRYLESS uint32_t FeedFolded128(uint32_t r, const Byte* src, ptrdiff_t length) {
  const Byte* const end = src + length;
  // A chain of folds waits for two operations each time; eight chains hide that.
  constexpr int kChains = 8;
  Vec128 x[kChains];
  x[0] = Xor(Load128(src), FromBits32(r));
  if (length >= 16 * kChains) {
#pragma GCC unroll 8
    for (int i = 1; i < kChains; ++i) x[i] = Load128(src + 16 * i);
    for (src += 16 * kChains; end - src >= 16 * kChains; src += 16 * kChains)
      StepFold128<kChains>(x, src);
    HalveFold128<8>(x);
    if (end - src >= 64) StepFold128<4>(x, src), src += 64;
    HalveFold128<4>(x);
    if (end - src >= 32) StepFold128<2>(x, src), src += 32;
    HalveFold128<2>(x);
  } else {
    src += 16;
  }
  for (; end - src >= 16; src += 16) StepFold128<1>(x, src);
  if (src != end) x[0] = Append128(x[0], end, end - src);
  return Remainder128(x[0]);
}

// ---- 512-bit vectors ---------------------------------------------------------------------------

// As Fold128, of each of the four 128-bit polynomials of a vector.
QV_INLINE QV_CARRYLESS_WIDE Vec Fold512(Vec a, Vec factors, Vec b) {
  return Xor(MulCarryless<0, 0>(a, factors), MulCarryless<1, 1>(a, factors), b);
}

// As Append128, n from 1 to 63; 64 bytes before `end` are readable.
QV_INLINE QV_CARRYLESS_WIDE Vec Append512(Vec x, const Byte* end, ptrdiff_t n) {
  const unsigned long long fresh = ~0ull << (64 - n);
  const Vec turn = Add8(Load(&kByteNumbers), Splat8(static_cast<int>(n)));
  const Vec front = PermuteBytesPart(fresh, x, turn);
  const Vec rest = PermuteBytesOver(Load(end - 64), ~fresh, x, turn);
  return Fold512(front, LoadSplat128(kFactors<64>), rest);
}

// Folds eight neighbouring vectors onto the eight that follow them in memory. kByMatrices shares
// the work between two units: while one multiplies three vectors, the other makes five vanish.
constexpr int kBlockBytes = 512;
constexpr bool kMultiplied[8] = {true, false, true, false, true, false, false, false};

template <bool kByMatrices>
QV_INLINE QV_CARRYLESS_WIDE void StepFold512(Vec* x, const Byte* src) {
  const Vec factors = LoadSplat128(kFactors<kBlockBytes>);
  Vec v[16];
#pragma GCC unroll 16
  for (int i = 0; i < 16; ++i) v[i] = i < 8 ? x[i] : Load(src + 64 * (i - 8));
#pragma GCC unroll 8
  for (int i = 0; i < 8; ++i)
    if (kByMatrices && !kMultiplied[i])
      FoldByMatrices(v + i);
    else
      v[i + 8] = Fold512(v[i], factors, v[i + 8]);
#pragma GCC unroll 8
  for (int i = 0; i < 8; ++i) x[i] = v[i + 8];
}

// Folds the front of a message, `start` added to its first 16 bytes, onto the last eight vectors of
// it that leave fewer than 512 bytes, and returns the place of what is left.
template <bool kByMatrices>
QV_INLINE QV_CARRYLESS_WIDE const Byte* FoldBlocks(Vec* x, Vec128 start, const Byte* src,
                                                   ptrdiff_t length) {
  const Byte* const end = src + length;
  x[0] = Xor(Load(src), FromLaneAlone(start));
  // Loads across cache lines would slow a long loop down.
  if (const ptrdiff_t lead = -reinterpret_cast<intptr_t>(src) & 63;
      lead != 0 && length >= kAlignMin) {
    x[0] = Append512(x[0], src + 64 + lead, lead);
    src += lead;
  }
#pragma GCC unroll 8
  for (int i = 1; i < 8; ++i) x[i] = Load(src + 64 * i);
  for (src += kBlockBytes; end - src >= kBlockBytes; src += kBlockBytes) {
    if (length >= kLongMessage) Prefetch<kBlockBytes>(src + kPageBytes);
    StepFold512<kByMatrices>(x, src);
  }
  return src;
}

// Factors that move the 16-byte parts of up to 2 KiB up to the last of them, in the order of the
// parts; the last one's move it by nothing. Behind them are zeros, for vectors of fewer parts.
constexpr ptrdiff_t kNearBytes = 2048;
alignas(64) constexpr auto kNearFactors = crc::NearFactors<kNearBytes / 16>();

QV_INLINE const int64_t* FactorsOfLast(ptrdiff_t bytes) {
  return kNearFactors.of + 2 * (kNearBytes / 16 - bytes / 16);
}

// Every part of what the blocks leave is moved to the last part at once, each by a factor of its
// own, which takes as many products as folding one onto another and waits less. So does the
// register: a call that continues another has done all else when the other's result is there.
template <bool kByMatrices>
QV_CARRYLESS_WIDE uint32_t FeedFolded512(uint32_t r, const Byte* src, ptrdiff_t length) {
  const Byte* const end = src + length;
  const bool near = length < kNearBytes + 16;
  const Vec128 start = FromBits32(r), nothing = FromBits32(0);
  Vec sum = Zero();
  if (length >= 2 * kBlockBytes) {
    Vec x[8];
    src = FoldBlocks<kByMatrices>(x, near ? nothing : start, src, length);
    const int64_t* const factors = FactorsOfLast(end - src + kBlockBytes);
#pragma GCC unroll 8
    for (int i = 7; i >= 0; --i) sum = Fold512(x[i], Load(factors + 8 * i), sum);
  }
  const int64_t* factors = FactorsOfLast(end - src);
  for (; end - src >= 64; src += 64, factors += 8) sum = Fold512(Load(src), Load(factors), sum);
  const ptrdiff_t rest = end - src;
  if (rest >= 16) sum = Fold512(LoadPart(src, (1ull << (rest & 48)) - 1), Load(factors), sum);
  Vec128 last = Xor(Xor(Lane<0>(sum), Lane<1>(sum)), Xor(Lane<2>(sum), Lane<3>(sum)));
  if (near) last = Xor(last, MulCarryless<0, 0>(start, Load128(FactorsOfLast(length))));
  if (rest % 16 != 0) last = Append128(last, end, rest % 16);
  return Remainder128(last);
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
