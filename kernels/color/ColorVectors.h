// What the vector rows of the colour conversions need beyond the vocabulary: sums in 16.16 fixed
// point made into bytes, and bytes into pixels B, G, R.
//
// A row is worked on in blocks of kVecBytes pixels, as two halves of kVecBytes / 2, whose 16-bit
// lanes are the pixels in order; but with AVX2 eights of pixels go to the two halves in turns, so
// that packing within 16-byte lanes puts them in order.
#ifndef QV_KERNELS_COLOR_COLORVECTORS_H
#define QV_KERNELS_COLOR_COLORVECTORS_H

#include "kernels/level/Level.h"

#if QV_HAS_VECTORS

namespace qv::QV_LEVEL {

constexpr int kBlockPixels = kVecBytes;

// Pixels from dst to the next multiple of a vector, 2 to kBlockPixels of them, if that is an even
// number, as it is at even addresses; else 0.
QV_INLINE ptrdiff_t EvenPixelsToAlign3(const Byte* dst) {
  const ptrdiff_t pixels = PixelsToAlign3(dst);
  return pixels % 2 == 0 ? pixels : 0;
}

// The colours of half a block, in signed 16-bit lanes, not yet limited to a byte.
struct Colours {
  Vec blue, green, red;
};

QV_INLINE Vec SplatPair16(int low, int high) {
  return Splat32(static_cast<int>((static_cast<unsigned>(high) << 16) |
                                  (static_cast<unsigned>(low) & 0xffff)));
}

// Places of three-byte pixels. The 48 bytes of a lane of 16 pixels are gathered from three vectors:
// blue and green of pixels 0 to 7, as eight bytes each (source 0), the same of pixels 8 to 15
// (source 1), and red of all 16 (source 2).
struct Place {
  int source, index;
};

constexpr Place PlaceInLane(int byte) {
  const int pixel = byte / 3, channel = byte % 3;
  if (channel == 2) return {2, pixel};
  return {pixel / 8, pixel % 8 + 8 * channel};
}

// The shuffle of `source` for 16 bytes of a lane's 48, from byte 16 * part.
struct LaneIndex {
  alignas(16) Byte at[16];
  constexpr LaneIndex(int part, int source) : at() {
    for (int i = 0; i < 16; ++i) {
      const Place place = PlaceInLane(16 * part + i);
      at[i] = place.source == source ? static_cast<Byte>(place.index) : 0x80;
    }
  }
};

QV_INLINE Vec FourTimesEvenBytes(Vec v) {
  if constexpr (kHasByteShuffle) return MulAddBytes(v, Splat16(4));
  return ShiftLeft16<2>(And(v, Splat16(0xff)));
}

#if defined(__AVX512VBMI__)

// The high halves of 32-bit lanes: those of `even` in even 16-bit lanes, those of `odd` in odd
// ones.
QV_INLINE Vec HighHalves(Vec even, Vec odd) {
  const Vec down = _mm512_broadcast_i32x4(
      _mm_setr_epi8(2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15));
  return _mm512_mask_shuffle_epi8(odd, 0x3333333333333333u, even, down);
}

// v less the odd 16-bit lanes of `lanes`, taken from its own.
QV_INLINE Vec SubOdd16(Vec v, Vec lanes) {
  return _mm512_mask_sub_epi16(v, 0xAAAAAAAAu, v, lanes);
}

QV_INLINE void LoadPacked(const Byte* src, Vec& first, Vec& second) {
  first = Load(src);
  second = Load(src + kVecBytes);
}

// Luma bytes of a block as 16-bit lanes.
QV_INLINE void LoadLuma(const Byte* src, Vec& first, Vec& second) {
  first = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(src)));
  second = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 32)));
}

// Half a block's worth of two chroma planes, as pairs of 16-bit lanes.
QV_INLINE void LoadChroma(const Byte* cb, const Byte* cr, Vec& first, Vec& second) {
  const Vec both = _mm512_inserti64x4(
      _mm512_castsi256_si512(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(cb))),
      _mm256_loadu_si256(reinterpret_cast<const __m256i*>(cr)), 1);
  static constexpr ByteTable low = MakeByteTable([](int i) { return i % 4 * 16 + i / 4; });
  static constexpr ByteTable high = MakeByteTable([](int i) { return i % 4 * 16 + i / 4 + 16; });
  constexpr unsigned long long even = 0x5555555555555555u;
  first = PermuteBytesOver(Zero(), even, both, Load(low.b));
  second = PermuteBytesOver(Zero(), even, both, Load(high.b));
}

// The same for 64 pixels, whose lanes are in order: source 0 has pixels 0 to 31 in lanes of eight,
// source 1 pixels 32 to 63, source 2 red of 8 l to 8 l + 7 and of 32 more in its lane l.
constexpr Place PlaceInBlock(int byte) {
  const int pixel = byte / 3, channel = byte % 3, lane = pixel % 32 / 8;
  if (channel == 2) return {2, 16 * lane + pixel / 32 * 8 + pixel % 8};
  return {pixel / 32, 16 * lane + 8 * channel + pixel % 8};
}

struct BlockIndex {
  alignas(64) Byte at[64];
  unsigned long long mask;
  constexpr BlockIndex(int part, int source) : at(), mask(0) {
    for (int i = 0; i < 64; ++i) {
      const Place place = PlaceInBlock(64 * part + i);
      if (place.source != source) continue;
      at[i] = static_cast<Byte>(place.index);
      mask |= 1ull << i;
    }
  }
};

template <int part, int source>
QV_INLINE Vec Gather(Vec v) {
  static constexpr BlockIndex index(part, source);
  return PermuteBytes(v, Load(index.at));
}

template <int part, int source>
QV_INLINE Vec Gather(Vec v, Vec others) {
  static constexpr BlockIndex index(part, source);
  return PermuteBytesOver(others, index.mask, v, Load(index.at));
}

struct BlockBytes {
  Vec part[3];
};

QV_INLINE BlockBytes Interleave(const Colours& first, const Colours& second) {
  const Vec low = PackUnsigned16(first.blue, first.green);
  const Vec high = PackUnsigned16(second.blue, second.green);
  const Vec red = PackUnsigned16(first.red, second.red);
  return {{Gather<0, 2>(red, Gather<0, 0>(low)),
           Gather<1, 2>(red, Gather<1, 1>(high, Gather<1, 0>(low))),
           Gather<2, 2>(red, Gather<2, 1>(high))}};
}

template <class Store>
QV_INLINE void StoreBGR(Byte* dst, const Colours& first, const Colours& second, Store store) {
  const BlockBytes bytes = Interleave(first, second);
  for (int i = 0; i < 3; ++i) store(dst + 64 * i, bytes.part[i]);
}

#else

QV_INLINE Vec HighHalves(Vec even, Vec odd) {
#if defined(__AVX2__)
  return _mm256_blend_epi16(ShiftRight32<16>(even), odd, 0xAA);
#else
  return Or(ShiftRight32<16>(even), And(odd, SplatPair16(0, -1)));
#endif
}

QV_INLINE Vec SubOdd16(Vec v, Vec lanes) { return Sub16(v, And(lanes, SplatPair16(0, -1))); }

#if defined(__AVX2__)

QV_INLINE void LoadPacked(const Byte* src, Vec& first, Vec& second) {
  first = LoadLanes([=](int i) { return src + 32 * i; });
  second = LoadLanes([=](int i) { return src + 16 + 32 * i; });
}

QV_INLINE Vec WidenBytes(const Byte* src) {
  return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src)));
}

#else

QV_INLINE void LoadPacked(const Byte* src, Vec& first, Vec& second) {
  first = Load(src);
  second = Load(src + kVecBytes);
}

QV_INLINE Vec WidenBytes(const Byte* src) {
  return InterleaveLow8(_mm_loadl_epi64(reinterpret_cast<const Vec*>(src)), Zero());
}

#endif

QV_INLINE void LoadChroma(const Byte* cb, const Byte* cr, Vec& first, Vec& second) {
  const Vec wideCb = WidenBytes(cb), wideCr = WidenBytes(cr);
  first = InterleaveLow16(wideCb, wideCr);
  second = InterleaveHigh16(wideCb, wideCr);
}

QV_INLINE void LoadLuma(const Byte* src, Vec& first, Vec& second) {
  const Vec all = Load(src);
  first = InterleaveLow8(all, Zero());
  second = InterleaveHigh8(all, Zero());
}

#if defined(__SSSE3__)

#if defined(__AVX2__)

QV_INLINE Vec SplatLane(const LaneIndex& index) {
  return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(index.at)));
}

template <class Store>
QV_INLINE void StoreParts(Byte* dst, Vec a, Vec b, Vec c, Store store) {
  store(dst, _mm256_permute2x128_si256(a, b, 0x20));
  store(dst + 32, _mm256_blend_epi32(c, a, 0xF0));
  store(dst + 64, _mm256_permute2x128_si256(b, c, 0x31));
}

#else

QV_INLINE Vec SplatLane(const LaneIndex& index) { return Load(index.at); }

template <class Store>
QV_INLINE void StoreParts(Byte* dst, Vec a, Vec b, Vec c, Store store) {
  store(dst, a);
  store(dst + 16, b);
  store(dst + 32, c);
}

#endif

template <int part, int source>
QV_INLINE Vec Gather(Vec v) {
  static constexpr LaneIndex index(part, source);
  return ShuffleBytes(v, SplatLane(index));
}

template <class Store>
QV_INLINE void StoreBGR(Byte* dst, const Colours& first, const Colours& second, Store store) {
  const Vec low = PackUnsigned16(first.blue, first.green);
  const Vec high = PackUnsigned16(second.blue, second.green);
  const Vec red = PackUnsigned16(first.red, second.red);
  StoreParts(dst, Or(Gather<0, 0>(low), Gather<0, 2>(red)),
             Or(Or(Gather<1, 0>(low), Gather<1, 1>(high)), Gather<1, 2>(red)),
             Or(Gather<2, 1>(high), Gather<2, 2>(red)), store);
}

#else  // SSE2

// Two pixels B, G, R, 0 in each half become six bytes, the lowest of the half.
QV_INLINE Vec Squeeze(Vec v) {
  const Vec left = _mm_set1_epi64x(0xffffff);
  return Or(And(v, left), _mm_srli_epi64(_mm_andnot_si128(left, v), 8));
}

// Six bytes at a time, the two stored too many being overwritten by the next six.
QV_INLINE void StorePixelPairs(Byte* dst, Vec v) {
  _mm_storel_epi64(reinterpret_cast<Vec*>(dst), v);
  _mm_storel_epi64(reinterpret_cast<Vec*>(dst + 6), _mm_unpackhi_epi64(v, v));
}

// Pieces of six bytes do not go past the caches.
template <class Store>
QV_INLINE void StoreBGR(Byte* dst, const Colours& first, const Colours& second, Store) {
  const Vec blue = PackUnsigned16(first.blue, second.blue);
  const Vec green = PackUnsigned16(first.green, second.green);
  const Vec red = PackUnsigned16(first.red, second.red);
  const Vec low = InterleaveLow8(blue, green), high = InterleaveHigh8(blue, green);
  const Vec redLow = InterleaveLow8(red, Zero()), redHigh = InterleaveHigh8(red, Zero());
  StorePixelPairs(dst, Squeeze(InterleaveLow16(low, redLow)));
  StorePixelPairs(dst + 12, Squeeze(InterleaveHigh16(low, redLow)));
  StorePixelPairs(dst + 24, Squeeze(InterleaveLow16(high, redHigh)));
  const Vec last = Squeeze(InterleaveHigh16(high, redHigh));
  _mm_storel_epi64(reinterpret_cast<Vec*>(dst + 36), last);
  // The last six bytes alone, for nothing comes behind them.
  const int four = _mm_cvtsi128_si32(_mm_srli_si128(last, 8));
  const short two = static_cast<short>(_mm_extract_epi16(last, 6));
  memcpy(dst + 42, &four, 4);
  memcpy(dst + 46, &two, 2);
}

#endif
#endif

}  // namespace qv::QV_LEVEL

#endif
#endif
