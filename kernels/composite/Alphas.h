// Alphas, one byte a pixel, beside the colours of pixels of one and of three bytes.
#ifndef QV_KERNELS_COMPOSITE_ALPHAS_H
#define QV_KERNELS_COMPOSITE_ALPHAS_H

namespace qv::QV_LEVEL {

// ---- With byte shuffles -------------------------------------------------------------------------

// Picks the alphas of vector j of the colours of kVecBytes pixels. A shuffle stays within 128-bit
// lanes, and its index counts from the first byte of its lane: of three bytes a pixel on two lanes,
// the first vector comes from the low one alone, the second from both in place, the third from the
// high one.
template <int kChannels, int j>
QV_INLINE Vec PickAlphas(Vec alpha, const ByteTable& index) {
  if constexpr (kHasBytePermute) return PermuteBytes(alpha, Load(index.b));
  if constexpr (kChannels == 3 && j == 0) alpha = LowLaneTwice(alpha);
  if constexpr (kChannels == 3 && j == 2) alpha = HighLaneTwice(alpha);
  return ShuffleBytes(alpha, Load(index.b));
}

// ---- Without ------------------------------------------------------------------------------------

// Eight 16-bit lanes, each three times; this is third j.
template <int j>
QV_INLINE Vec TripleWords(Vec w) {
  if constexpr (j == 0)
    return ShuffleHigh16<1, 1, 2, 2>(ShuffleLow16<0, 0, 0, 1>(ShuffleLanes32<0, 1, 0, 1>(w)));
  if constexpr (j == 1) return ShuffleHigh16<0, 0, 0, 1>(ShuffleLow16<2, 3, 3, 3>(w));
  return ShuffleHigh16<2, 3, 3, 3>(ShuffleLow16<1, 1, 2, 2>(ShuffleLanes32<2, 3, 2, 3>(w)));
}

// ---- With or without ----------------------------------------------------------------------------

// The alphas of vector j of the colours of kVecBytes pixels, one a byte.
template <int kChannels, int j>
QV_INLINE Vec AlphasOf(Vec alpha) {
  if constexpr (kChannels == 1) return alpha;
  if constexpr (kHasByteShuffle) {
    static constexpr ByteTable kIndex = MakeByteTable([](int i) {
      const int pixel = (kVecBytes * j + i) / kChannels;
      return kHasBytePermute ? pixel : pixel % 16;
    });
    return PickAlphas<kChannels, j>(alpha, kIndex);
  }
  const Vec low = InterleaveLow8(alpha, Zero()), high = InterleaveHigh8(alpha, Zero());
  if constexpr (j == 0) return PackUnsigned16(TripleWords<0>(low), TripleWords<1>(low));
  if constexpr (j == 1) return PackUnsigned16(TripleWords<2>(low), TripleWords<0>(high));
  return PackUnsigned16(TripleWords<1>(high), TripleWords<2>(high));
}

// ---- For products in 16-bit lanes ---------------------------------------------------------------

// The alphas of a vector of colour bytes, each in both bytes of a 16-bit lane: with byte permutes
// those of its even bytes and of its odd ones, without those of InterleaveLow8 and InterleaveHigh8.
struct TwinAlphas {
  Vec first, second;
};

// Where the twins of vector j of the colours of kVecBytes pixels are found.
template <int kChannels>
constexpr ByteTable TwinIndex(int j, int part) {
  ByteTable table{};
  for (int i = 0; i < kVecBytes; ++i) {
    const int byte = kHasBytePermute ? i - i % 2 + part : i - i % 16 + 8 * part + i % 16 / 2;
    const int from = (kVecBytes * j + byte) / kChannels;
    table.b[i] = static_cast<Byte>(kHasBytePermute ? from : from % 16);
  }
  return table;
}

template <int kChannels, int j>
QV_INLINE TwinAlphas TwinsOf(Vec alpha) {
  if constexpr (kHasBytePermute || (kHasByteShuffle && kChannels == 3)) {
    static constexpr ByteTable kFirst = TwinIndex<kChannels>(j, 0),
                               kSecond = TwinIndex<kChannels>(j, 1);
    return {PickAlphas<kChannels, j>(alpha, kFirst), PickAlphas<kChannels, j>(alpha, kSecond)};
  }
  const Vec a = AlphasOf<kChannels, j>(alpha);
  return {InterleaveLow8(a, a), InterleaveHigh8(a, a)};
}

}  // namespace qv::QV_LEVEL

#endif
