// The vectors of a level, after its own header: words made of others, and the declarations of those
// that each level, or only some, define for themselves.
#ifndef QV_KERNELS_LEVEL_VECTORS_H
#define QV_KERNELS_LEVEL_VECTORS_H

namespace qv::QV_LEVEL {

constexpr int kLanes32 = kVecBytes / 4, kLanes128 = kVecBytes / 16;

// In each 32-bit lane the low 16 bits of `a`, and above them those of `b`.
QV_INLINE Vec Pair16(Vec a, Vec b) { return Or(And(a, Splat32(0xFFFF)), ShiftLeft32<16>(b)); }

// Exclusive or of three.
Vec Xor(Vec a, Vec b, Vec c);

// Stores kLanes32 bytes: the low ones of 32-bit lanes, or signed 32-bit lanes limited to a byte.
void StoreLowBytes32(void* p, Vec v);
void StoreLimited32(void* p, Vec v);

// Half a vector from each of two addresses, and the low half to one; as many bytes as a vector has
// lanes of 16 bits, or of 32, each to the low end of its lane; the 128 bits at p to every lane.
Vec LoadHalves(const void* low, const void* high);
void StoreLowHalf(void* p, Vec v);
void StreamStoreLowHalf(void* p, Vec v);  // of 64 bits not past the caches
Vec LoadBytesAs16(const void* p);
Vec LoadBytesAs32(const void* p);
Vec LoadSplat128(const void* p);

// Bytes from the 16-bit lanes of `a` and then of `b`, with saturation, all in order.
Vec PackBytesInOrder(Vec a, Vec b);
// Whether any signed 32-bit lane is below 0; whether any bit is set.
bool AnyNegative32(Vec v);
bool AnyBits(Vec v);

// Within each 128-bit lane: 32-bit lanes i0 to i3 in this order; lane i in all four places; 16-bit
// lanes of the low half in this order, or of the high one, while the other half stays.
template <int i0, int i1, int i2, int i3> Vec ShuffleLanes32(Vec v);
template <int i> QV_INLINE Vec SplatInLanes32(Vec v) { return ShuffleLanes32<i, i, i, i>(v); }
template <int i0, int i1, int i2, int i3> Vec ShuffleLow16(Vec v);
template <int i0, int i1, int i2, int i3> Vec ShuffleHigh16(Vec v);

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
// 128-bit lanes 0, 2, ... or 1, 3, ... of those of `a` and then of `b`.
Vec JoinEvenLanes(Vec a, Vec b);
Vec JoinOddLanes(Vec a, Vec b);
// The low halves of `a` and `b`, or the high ones (of four lanes).
Vec JoinLowHalves(Vec a, Vec b);
Vec JoinHighHalves(Vec a, Vec b);
// Three vectors' 128-bit lanes in turns: a0 b0 c0 a1 b1 c1 (not defined for four lanes).
void LanesInTurns(Vec& a, Vec& b, Vec& c);

// Four vectors of twelve bytes a lane become three without gaps: `a`, `b` and `c`. The twelve begin
// at byte kTwelveAt[0] of the lanes of `a` and so on, and go on at byte 0 after byte 15 (not
// defined for four lanes).
constexpr int kTwelveAt[4] = {0, 12, 8, 4};
void JoinTwelves(Vec& a, Vec& b, Vec& c, Vec d);

// 128-bit lane `lane`; the lowest one; and a vector whose other lanes hold anything, or 0.
template <int lane> Vec128 Lane(Vec v);
QV_INLINE Vec128 LowLane(Vec v) { return Lane<0>(v); }
Vec FromLane(Vec128 v);
Vec FromLaneAlone(Vec128 v);

// 128-bit lane i is stored at the address at(i).
template <class At> QV_INLINE void StoreLanes(Vec v, At at) {
  Store128(at(0), Lane<0>(v));
  if constexpr (kLanes128 > 1) Store128(at(1), Lane<1>(v));
  if constexpr (kLanes128 > 2) {
    Store128(at(2), Lane<2>(v));
    Store128(at(3), Lane<3>(v));
  }
}

// BuildLanes (by level): 128-bit lane i of the result is lane(i). LoadLanes: is loaded from the
// address at(i).
template <class At> QV_INLINE Vec LoadLanes(At at) {
  return BuildLanes([=](int i) { return Load128(at(i)); });
}
// From p, p + apart, ...
QV_INLINE Vec LoadLanes(const Byte* p, ptrdiff_t apart) {
  return LoadLanes([=](int i) { return p + i * apart; });
}
// The same from pieces of 64 bits, from at(0), at(1), ...
template <class At> QV_INLINE Vec LoadPieces64(At at) {
  return BuildLanes(
      [=](int i) { return InterleaveLow64(Load64(at(2 * i)), Load64(at(2 * i + 1))); });
}

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

// kHasFusedMultiply. a * b + c and c - a * b, rounded once.
Floats FusedMulAdd(Floats a, Floats b, Floats c);
Floats FusedNegMulAdd(Floats a, Floats b, Floats c);

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
