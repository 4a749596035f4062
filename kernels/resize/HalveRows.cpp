// Area averaging by exactly two on both axes.
#include "kernels/resize/Filter.h"
#include "kernels/level/Level.h"

namespace qv::QV_LEVEL {

namespace {

// Two source rows that make a row, and where the next two are from there.
struct RowPair {
  const Byte *upper, *lower;
  ptrdiff_t ahead;

  // Of the next two rows; two streams are more than a processor sees coming by itself.
  QV_INLINE void Fetch(ptrdiff_t first, ptrdiff_t bytes) const {
    for (ptrdiff_t k = first; k < first + bytes; k += 64) {
      __builtin_prefetch(upper + ahead + k);
      __builtin_prefetch(lower + ahead + k);
    }
  }
};

template <int kChannels>
QV_INLINE void HalvePlain(const Byte* upper, const Byte* lower, Byte* dst, ptrdiff_t width) {
  for (ptrdiff_t x = 0; x < width; ++x)
    for (int c = 0; c < kChannels; ++c) {
      const ptrdiff_t left = 2 * kChannels * x + c, right = left + kChannels;
      dst[kChannels * x + c] = static_cast<Byte>(
          (upper[left] + upper[right] + lower[left] + lower[right] + 2) >> 2);
    }
}

#if QV_HAS_VECTORS

// Means of the byte pairs of two rows, as words. A multiplication rounds where vectors are wide;
// with 128 bits the pairs keep the multipliers busy.
QV_INLINE Vec MeanWords(Vec upper, Vec lower) {
  const Vec sum = Add16(AddBytePairs(upper), AddBytePairs(lower));
  if constexpr (kLanes128 > 1) return MulRounded15(sum, Splat16(1 << 13));
  return ShiftRight16<2>(Add16(sum, Splat16(2)));
}

QV_INLINE Vec HalveVector(const Byte* upper, const Byte* lower) {
  return PackBytesInOrder(MeanWords(Load(upper), Load(lower)),
                          MeanWords(Load(upper + kVecBytes), Load(lower + kVecBytes)));
}

QV_INLINE void HalveGrey(const RowPair& rows, Byte* dst, ptrdiff_t width) {
  if (!CoverWithBlocks<kVecBytes>(width, [&](ptrdiff_t x) {
        Store(dst + x, HalveVector(rows.upper + 2 * x, rows.lower + 2 * x));
      }))
    HalvePlain<1>(rows.upper, rows.lower, dst, width);
}

QV_INLINE void HalveTriples(const RowPair& rows, Byte* dst, ptrdiff_t width) {
  const Byte *const upper = rows.upper, *const lower = rows.lower;
  ptrdiff_t x = 0;
  if constexpr (kHasBytePermute) {
    // Ten destination pixels from 60 bytes: word j is made of the two bytes 6 * (j / 3) + j % 3 and
    // three further. Two such vectors are 60 bytes of the destination.
    static constexpr ByteTable kSides =
        MakeByteTable([](int i) { return (6 * (i / 6) + i / 2 % 3 + (i & 1) * 3) & 63; });
    static constexpr ByteTable kJoin =
        MakeByteTable([](int i) { return i < 30 ? 2 * i : 64 + 2 * (i - 30); });
    const Vec sides = Load(kSides.b), join = Load(kJoin.b);
    const auto halve = [&](Vec a, Vec b, Vec c, Vec d) __attribute__((always_inline)) {
      return PermuteBytes2(MeanWords(PermuteBytes(a, sides), PermuteBytes(b, sides)), join,
                           MeanWords(PermuteBytes(c, sides), PermuteBytes(d, sides)));
    };
    // A block stores 64 bytes, 22 pixels' worth, of which the next block redoes four.
    for (; x + 22 <= width; x += 20) {
      rows.Fetch(6 * x, 120);
      Store(dst + 3 * x, halve(Load(upper + 6 * x), Load(lower + 6 * x), Load(upper + 6 * x + 60),
                               Load(lower + 6 * x + 60)));
    }
    for (; x < width; x += 20) {
      const unsigned long long low = FirstOf64(6 * (width - x), 0),
                               high = FirstOf64(6 * (width - x), 60);
      const ptrdiff_t left = 3 * (width - x);
      StorePart(dst + 3 * x,
                halve(LoadPart(upper + 6 * x, low), LoadPart(lower + 6 * x, low),
                      LoadPart(upper + 6 * x + 60, high), LoadPart(lower + 6 * x + 60, high)),
                FirstOf64(left < 60 ? left : 60, 0));
    }
    return;
  } else if constexpr (kHasByteShuffle) {
    // Two destination pixels from twelve bytes: word j is made of byte 6 * (j / 3) + j % 3 and the
    // one three further.
    constexpr auto side = [](int i) { return 6 * (i / 6) + i / 2 % 3 + i % 2 * 3; };
    // Four are two such pairs, the second one from the 16 bytes that end with it.
    static constexpr auto kFirst = MakeByteTable([=](int i) { return side(i % 16) % 16; });
    static constexpr auto kSecond = MakeByteTable([=](int i) { return (side(i % 16) + 4) % 16; });
    constexpr auto sixes = [](int k) { return k < 6 ? k : k + 2; };
    static constexpr ByteTable kTwelve[4] = {MakeTwelve(0, sixes), MakeTwelve(1, sixes),
                                             MakeTwelve(2, sixes), MakeTwelve(3, sixes)};
    const auto fourPixels = [=](int i, ptrdiff_t first, ptrdiff_t apart) {
      if (i == 0) rows.Fetch(6 * first, 6 * kVecBytes);
      const auto mean = [=](ptrdiff_t from, const ByteTable& sides) QV_INLINE_LAMBDA {
        const auto load = [=](const Byte* row) QV_INLINE_LAMBDA {
          return ShuffleBytes(LoadLanes(row + from, 6 * apart), Load(&sides));
        };
        return MeanWords(load(upper), load(lower));
      };
      const ptrdiff_t from = 6 * (first + 4 * i);
      const Vec means = PackUnsigned16(mean(from, kFirst), mean(from + 8, kSecond));
      return ShuffleBytes(means, Load(&kTwelve[i]));
    };
    if (CoverWithLanes<false>(dst, width, false, fourPixels)) return;
    // Fewer than a lane has: eight bytes are stored, of which the next two pixels redo two.
    const Vec128 sides = LowLane(Load(&kFirst)), two = LowLane(Splat16(2));
    const auto sums = [&](const Byte* row) __attribute__((always_inline)) {
      return AddBytePairs(ShuffleBytes(Load128(row + 6 * x), sides));
    };
    for (; x + 3 <= width; x += 2) {
      const Vec128 mean = ShiftRight16<2>(Add16(Add16(sums(upper), sums(lower)), two));
      Store64(dst + 3 * x, PackUnsigned16(mean, mean));
    }
  }
  HalvePlain<3>(upper + 6 * x, lower + 6 * x, dst + 3 * x, width - x);
}

#endif

template <int kChannels>
QV_INLINE void HalveRow(const RowPair& rows, Byte* dst, ptrdiff_t width) {
#if QV_HAS_VECTORS
  if constexpr (kChannels == 1)
    HalveGrey(rows, dst, width);
  else
    HalveTriples(rows, dst, width);
#else
  HalvePlain<kChannels>(rows.upper, rows.lower, dst, width);
#endif
}

template <int kChannels>
QV_INLINE IppStatus HalveRows(const Byte* src, int srcStep, Byte* dst, int dstStep,
                              IppiSize size) {
  for (ptrdiff_t y = 0; y < size.height; ++y) {
    const Byte* const upper = RowAt(src, srcStep, 2 * y);
    const ptrdiff_t ahead = y + 1 < size.height ? 2 * ptrdiff_t{srcStep} : 0;
    HalveRow<kChannels>({upper, RowAt(upper, srcStep, 1), ahead}, RowAt(dst, dstStep, y),
                        size.width);
  }
  return StatusOk;
}

}  // namespace

IppStatus HalveRows_8u_C1(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  return HalveRows<1>(src, srcStep, dst, dstStep, size);
}

IppStatus HalveRows_8u_C3(const Byte* src, int srcStep, Byte* dst, int dstStep, IppiSize size) {
  return HalveRows<3>(src, srcStep, dst, dstStep, size);
}

}  // namespace qv::QV_LEVEL
