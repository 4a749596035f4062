// A linear recurrence in place of most folds of a long message.
//
// Q = x^89 + x^88 + x^41 + x^36 + x^16 + x^13 + x^5 + 1 is a multiple of P, and so is Q(x^n) for
// every power of two n: over bits, that is a power of Q. Hence a vector of n bits vanishes if the
// vectors 1, 48, 53, 73, 76, 84 and 89 places behind it take it in, added as it is. That loads the
// units for memory and sums and leaves those for products idle. So of four vectors the first three
// vanish this way, the fourth is folded meanwhile.
#ifndef QV_KERNELS_CHECKSUM_CRCRECURRENCE_H
#define QV_KERNELS_CHECKSUM_CRCRECURRENCE_H

#include "kernels/checksum/CrcFold.h"

namespace qv::crc {

constexpr int kDistanceCount = 7, kFarthest = 89;
constexpr int kDistances[kDistanceCount] = {1, 48, 53, 73, 76, 84, kFarthest};

consteval uint32_t RemainderOfQ() {
  uint32_t sum = PowerOfX(kFarthest);
  for (const int distance : kDistances) sum ^= PowerOfX(kFarthest - distance);
  return sum;
}
static_assert(RemainderOfQ() == 0);

}  // namespace qv::crc

namespace qv::QV_LEVEL {

namespace {

constexpr ptrdiff_t kRecurrenceMin = 8192;  // what it leaves to be folded must be worth it

// Vectors of a step; those, in whole steps, that the last to vanish reach; those remembered.
constexpr ptrdiff_t kStep = 16, kWindow = 96, kRemembered = 128;
static_assert(kWindow >= crc::kFarthest && kRemembered >= crc::kFarthest + kStep);
constexpr ptrdiff_t kStepBytes = kStep * kVecBytes, kWindowBytes = kWindow * kVecBytes;

constexpr bool IsFolded(int number) { return (number & 3) == 3; }

// Where a vector is remembered.
constexpr ptrdiff_t PlaceOf(ptrdiff_t number) { return number % kRemembered * kVecBytes; }

// The step of the vectors from number `first` on, which lie at src. `vanished` has those remembered
// and, behind them, those of the first places once more, as a step may reach over the end. kLast is
// for the window, in which nothing vanishes or is folded: what stands there goes to `left`.
template <bool kLast>
QV_INLINE QV_CARRYLESS void StepRecurrence(Vec128* folded, Byte* vanished, ptrdiff_t first,
                                           const Byte* src, Byte* left) {
  const Vec128 factors = Load128(kFactors<kStepBytes>);
  const Byte* behind[crc::kDistanceCount];
#pragma GCC unroll 8
  for (int k = 0; k < crc::kDistanceCount; ++k)
    behind[k] = vanished + PlaceOf(first + kRemembered - crc::kDistances[k]);
  Byte* const next = vanished + PlaceOf(first);
  Vec gone = Zero();
#pragma GCC unroll 16
  for (int j = 0; j < kStep; ++j) {
    Vec v = Load(src + j * kVecBytes);
#pragma GCC unroll 8
    for (int k = 0; k < crc::kDistanceCount; ++k)
      if (const int distance = crc::kDistances[k]; !IsFolded(j - distance))
        v = Xor(v, distance == 1 ? gone : Load(behind[k] + j * kVecBytes));
    if (kLast) {
      Store(left + j * kVecBytes, v);
    } else if (IsFolded(j)) {
      folded[j / 2 - 1] = Fold128(folded[j / 2 - 1], factors, Lane<0>(v));
      folded[j / 2] = Fold128(folded[j / 2], factors, Lane<1>(v));
      continue;
    }
    gone = kLast ? Zero() : v;
    Store(next + j * kVecBytes, gone);
  }
  if (next == vanished)
    for (int j = 0; j < kStep; ++j)
      Store(vanished + (kRemembered + j) * kVecBytes, Load(vanished + j * kVecBytes));
}

inline QV_CARRYLESS uint32_t FeedRecurrence(uint32_t r, const Byte* src, ptrdiff_t length) {
  const Byte* const end = src + length;
  // Whole steps follow, with the register in the first.
  const ptrdiff_t front = (length - 16) % kStepBytes + 16;
  r = FeedFolded128(r, src, front);
  src += front;

  alignas(64) Byte vanished[(kRemembered + kStep) * kVecBytes], left[kStepBytes + kWindowBytes];
  for (int i = 0; i < kRemembered + kStep; ++i) Store(vanished + i * kVecBytes, Zero());
  for (int j = 0; j < kStep; ++j) Store(left + j * kVecBytes, Load(src + j * kVecBytes));
  Store128(left, Xor(Load128(left), FromBits32(r)));
  Vec128 folded[kStep / 2];
#pragma GCC unroll 8
  for (Vec128& x : folded) x = FromBits32(0);
  ptrdiff_t first = 0;
  StepRecurrence<false>(folded, vanished, first, left, nullptr);
  for (src += kStepBytes; end - src > kWindowBytes; src += kStepBytes)
    StepRecurrence<false>(folded, vanished, first += kStep, src, nullptr);

  // What is left of the last step, and the window after it, is a message of its own.
  for (int j = 0; j < kStep; ++j) Store(left + j * kVecBytes, Zero());
#pragma GCC unroll 8
  for (int i = 0; i < kStep / 2; ++i)
    Store128(left + (4 * (i / 2) + 3) * kVecBytes + 16 * (i % 2), folded[i]);
  for (Byte* to = left + kStepBytes; src != end; src += kStepBytes, to += kStepBytes)
    StepRecurrence<true>(folded, vanished, first += kStep, src, to);
  return FeedFolded128(0, left, sizeof left);
}

}  // namespace

}  // namespace qv::QV_LEVEL

#endif
