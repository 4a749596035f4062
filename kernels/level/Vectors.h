// The vectors of a level, after its own header: how they are loaded and stored, the operations of
// Operations.h, and the declarations of those that only some levels define.
//
// QV_OP(set1_epi8) is _mm_set1_epi8, _mm256_set1_epi8 or _mm512_set1_epi8; QV_BITS_OP(loadu_) is
// _mm_loadu_si128 and so on.
#ifndef QV_KERNELS_LEVEL_VECTORS_H
#define QV_KERNELS_LEVEL_VECTORS_H

namespace qv::QV_LEVEL {

// A single 128-bit vector, for three-byte pixels (five in 15 bytes) at every width.
using Vec128 = __m128i;

}  // namespace qv::QV_LEVEL

#define QV_V Vec128
#define QV_V_FLOATS __m128
#define QV_V_OP(name) _mm_##name
#define QV_V_BITS_OP(name) _mm_##name##si128
#include "kernels/level/Operations.h"
#undef QV_V
#undef QV_V_FLOATS
#undef QV_V_OP
#undef QV_V_BITS_OP

#if QV_VEC_BITS > 128
#define QV_V Vec
#define QV_V_FLOATS Floats
#define QV_V_OP QV_OP
#define QV_V_BITS_OP QV_BITS_OP
#include "kernels/level/Operations.h"
#undef QV_V
#undef QV_V_FLOATS
#undef QV_V_OP
#undef QV_V_BITS_OP
#endif

namespace qv::QV_LEVEL {

constexpr int kLanes32 = kVecBytes / 4, kLanes128 = kVecBytes / 16;

QV_INLINE Vec Load(const void* p) { return QV_BITS_OP(loadu_)(static_cast<const Vec*>(p)); }
// For a vector that several operations take: GCC 12 would load it again for each of them, and a
// load that crosses a cache line is two.
QV_INLINE Vec LoadOnce(const void* p) {
  Vec v = Load(p);
  asm("" : "+v"(v));
  return v;
}
QV_INLINE void Store(void* p, Vec v) { QV_BITS_OP(storeu_)(static_cast<Vec*>(p), v); }
// Past the caches; p is a multiple of kVecBytes. Ends with StreamFence before the kernel returns.
QV_INLINE void StreamStore(void* p, Vec v) { QV_BITS_OP(stream_)(static_cast<Vec*>(p), v); }
QV_INLINE void StreamFence() { _mm_sfence(); }

QV_INLINE Vec Zero() { return QV_BITS_OP(setzero_)(); }
QV_INLINE Vec Splat8(int x) { return QV_OP(set1_epi8)(static_cast<char>(x)); }
QV_INLINE Vec Splat16(int x) { return QV_OP(set1_epi16)(static_cast<short>(x)); }
QV_INLINE Vec Splat32(int x) { return QV_OP(set1_epi32)(x); }
QV_INLINE Vec Splat64(long long x) { return Vec{} + x; }  // the type is one of 64-bit integers
// In each 32-bit lane the low 16 bits of `a`, and above them those of `b`.
QV_INLINE Vec Pair16(Vec a, Vec b) { return Or(And(a, Splat32(0xFFFF)), ShiftLeft32<16>(b)); }

// a ^ b ^ c.
Vec Xor(Vec a, Vec b, Vec c);

// 128-bit lane i is stored at the address at(i).
template <class At> void StoreLanes(Vec v, At at);
// kLanes32 bytes: the low ones of 32-bit lanes, or the lanes as signed numbers, limited to a byte.
void StoreLowBytes32(void* p, Vec v);
void StoreLimited32(void* p, Vec v);

// Half a vector from each of two addresses, and the low half to one; as many bytes as a vector has
// lanes of 16 bits, or of 32, each to the low end of its lane; the 128 bits at p to every lane.
Vec LoadHalves(const void* low, const void* high);
void StoreLowHalf(void* p, Vec v);
Vec LoadBytesAs16(const void* p);
Vec LoadBytesAs32(const void* p);
Vec LoadSplat128(const void* p);

// Bytes from the 16-bit lanes of `a` and then of `b`, with saturation, all in order.
Vec PackBytesInOrder(Vec a, Vec b);
// Whether any signed 32-bit lane is below 0.
bool AnyNegative32(Vec v);

// Within each 128-bit lane: 32-bit lanes i0 to i3 in this order; lane i in all four places; 16-bit
// lanes of the low half in this order, or of the high one, while the other half stays.
template <int i0, int i1, int i2, int i3> Vec ShuffleLanes32(Vec v);
template <int i> QV_INLINE Vec SplatInLanes32(Vec v) { return ShuffleLanes32<i, i, i, i>(v); }
template <int i0, int i1, int i2, int i3> QV_INLINE Vec ShuffleLow16(Vec v) {
  return QV_OP(shufflelo_epi16)(v, i0 + 4 * i1 + 16 * i2 + 64 * i3);
}
template <int i0, int i1, int i2, int i3> QV_INLINE Vec ShuffleHigh16(Vec v) {
  return QV_OP(shufflehi_epi16)(v, i0 + 4 * i1 + 16 * i2 + 64 * i3);
}

// The high halves of 32-bit lanes: those of `even` in even 16-bit lanes, of `odd` in odd ones.
Vec HighHalves16(Vec even, Vec odd);

// All bytes in reverse order; both 128-bit lanes of a vector as the lowest, or as the highest, of
// them (of one lane: itself; not defined for four).
Vec ReverseBytes(Vec v);
Vec LowLaneTwice(Vec v);
Vec HighLaneTwice(Vec v);
// The vector's low half as the low halves of all 128-bit lanes, its high half as the high ones:
// InterleaveLow8 and InterleaveHigh8 of two such vectors are those of the whole vectors.
Vec DealHalves(Vec v);
// Three vectors' 128-bit lanes in turns: a0 b0 c0 a1 b1 c1 (not defined for four lanes).
void LanesInTurns(Vec& a, Vec& b, Vec& c);

// The same of a Vec128; of fewer bits the lowest, and the others are loaded as 0.
QV_INLINE Vec128 Load128(const void* p) { return _mm_loadu_si128(static_cast<const Vec128*>(p)); }
QV_INLINE Vec128 Load64(const void* p) { return _mm_loadl_epi64(static_cast<const Vec128*>(p)); }
QV_INLINE Vec128 FromBits32(uint32_t bits) { return _mm_cvtsi32_si128(static_cast<int>(bits)); }
QV_INLINE uint32_t LowBits32(Vec128 v) { return static_cast<uint32_t>(_mm_cvtsi128_si32(v)); }
QV_INLINE Vec128 Load32(const void* p) {
  uint32_t bits;
  memcpy(&bits, p, sizeof bits);
  return FromBits32(bits);
}
QV_INLINE void Store128(void* p, Vec128 v) { _mm_storeu_si128(static_cast<Vec128*>(p), v); }
QV_INLINE void Store64(void* p, Vec128 v) { _mm_storel_epi64(static_cast<Vec128*>(p), v); }
QV_INLINE void Store32(void* p, Vec128 v) {
  const uint32_t bits = LowBits32(v);
  memcpy(p, &bits, sizeof bits);
}
QV_INLINE void StreamStore128(void* p, Vec128 v) { _mm_stream_si128(static_cast<Vec128*>(p), v); }

// Each 128-bit lane, of a Vec as well, moved up or down by n bytes; zeros follow.
template <int n> QV_INLINE Vec128 ShiftBytesUp(Vec128 v) { return _mm_slli_si128(v, n); }
template <int n> QV_INLINE Vec128 ShiftBytesDown(Vec128 v) { return _mm_srli_si128(v, n); }

// BuildLanes (by level): 128-bit lane i of the result is lane(i). LoadLanes: is loaded from the
// address at(i).
template <class At> QV_INLINE Vec LoadLanes(At at) {
  return BuildLanes([=](int i) { return Load128(at(i)); });
}
// From p, p + apart, ...
QV_INLINE Vec LoadLanes(const Byte* p, ptrdiff_t apart) {
  return LoadLanes([=](int i) { return p + i * apart; });
}
// The same from pieces of 32 bits, from at(0), at(1), ..., or of 64.
template <class At> QV_INLINE Vec LoadPieces32(At at) {
  return BuildLanes([=](int i) {
    const Vec128 low = InterleaveLow32(Load32(at(4 * i)), Load32(at(4 * i + 1)));
    return InterleaveLow64(low, InterleaveLow32(Load32(at(4 * i + 2)), Load32(at(4 * i + 3))));
  });
}
template <class At> QV_INLINE Vec LoadPieces64(At at) {
  return BuildLanes(
      [=](int i) { return InterleaveLow64(Load64(at(2 * i)), Load64(at(2 * i + 1))); });
}

// 128-bit lane `lane`; the lowest one; and a vector whose other lanes hold anything, or 0.
template <int lane> Vec128 Lane(Vec v);
QV_INLINE Vec128 LowLane(Vec v) { return Lane<0>(v); }
Vec FromLane(Vec128 v);
Vec FromLaneAlone(Vec128 v);

// kHasLanePermute. 32-bit lane i is that whose number is in lane i of `index`.
Vec PermuteLanes32(Vec v, Vec index);

// kHasBytePermute: across the whole vector, by the low six bits of each index byte (seven for two
// vectors). PermuteBytesOver is PermuteBytes(v, index) in the bytes whose mask bit is set, `base`
// in the others; of PermuteBytesPart and PermuteBytesPart2 these are 0.
Vec PermuteBytes(Vec v, Vec index);
Vec PermuteBytes2(Vec low, Vec index, Vec high);
Vec PermuteBytesPart(unsigned long long mask, Vec v, Vec index);
Vec PermuteBytesPart2(unsigned long long mask, Vec low, Vec index, Vec high);
Vec PermuteBytesOver(Vec base, unsigned long long mask, Vec v, Vec index);
// Of 64-byte vectors: 128-bit lanes 0 and 2, or 1 and 3, of `a` and then of `b`.
Vec JoinEvenLanes(Vec a, Vec b);
Vec JoinOddLanes(Vec a, Vec b);

// kHasGather. Gather32: 32 bits for each 32-bit lane, from base + offset bytes. Gather64<h>: 64 for
// lanes 2 h and 2 h + 1 of each 128-bit lane of `offset`.
Vec Gather32(const void* base, Vec offset);
template <int kHalf> Vec Gather64(const void* base, Vec offset);

// kHasMaskedBytes. Of LoadPart and StorePart: bytes whose mask bit is clear are neither read nor
// written (and load as 0). Select: `a` in the bytes whose mask bit is set, `b` in the others.
// TopBits: the mask of the bytes above 127.
Vec LoadPart(const void* p, unsigned long long mask);
void StorePart(void* p, Vec v, unsigned long long mask);
Vec Select(unsigned long long mask, Vec a, Vec b);
unsigned long long TopBits(Vec v);
// SubPart16: a - b in the 16-bit lanes whose mask bit is set, `a` in the others.
Vec SubPart16(unsigned mask, Vec a, Vec b);

// The sum of all 64-bit lanes.
QV_INLINE uint64_t SumLanes64(Vec v) {
  Vec128 sum = LowLane(v);
  if constexpr (kLanes128 == 2) sum = Add64(sum, Lane<1>(v));
  if constexpr (kLanes128 == 4)
    sum = Add64(Add64(sum, Lane<1>(v)), Add64(Lane<2>(v), Lane<3>(v)));
  uint64_t total;
  Store64(&total, Add64(sum, InterleaveHigh64(sum, sum)));
  return total;
}

}  // namespace qv::QV_LEVEL

#endif
