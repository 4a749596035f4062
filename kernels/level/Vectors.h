// The vectors of a level, after its own header: the operations that are the same intrinsics under
// each level's prefix, and the declarations of those that only some levels define.
//
// QV_OP(add_epi8) is _mm_add_epi8, _mm256_add_epi8 or _mm512_add_epi8; QV_BITS_OP(loadu_) is
// _mm_loadu_si128 and so on.
#ifndef QV_KERNELS_LEVEL_VECTORS_H
#define QV_KERNELS_LEVEL_VECTORS_H

namespace qv::QV_LEVEL {

QV_INLINE Vec Load(const void* p) { return QV_BITS_OP(loadu_)(static_cast<const Vec*>(p)); }
QV_INLINE void Store(void* p, Vec v) { QV_BITS_OP(storeu_)(static_cast<Vec*>(p), v); }
// Past the caches; p is a multiple of kVecBytes. Ends with StreamFence before the kernel returns.
QV_INLINE void StreamStore(void* p, Vec v) { QV_BITS_OP(stream_)(static_cast<Vec*>(p), v); }
QV_INLINE void StreamFence() { _mm_sfence(); }

QV_INLINE Vec Zero() { return QV_BITS_OP(setzero_)(); }
QV_INLINE Vec Splat8(int x) { return QV_OP(set1_epi8)(static_cast<char>(x)); }
QV_INLINE Vec Splat16(int x) { return QV_OP(set1_epi16)(static_cast<short>(x)); }
QV_INLINE Vec Splat32(int x) { return QV_OP(set1_epi32)(x); }

QV_INLINE Vec And(Vec a, Vec b) { return QV_BITS_OP(and_)(a, b); }
QV_INLINE Vec Or(Vec a, Vec b) { return QV_BITS_OP(or_)(a, b); }
QV_INLINE Vec Xor(Vec a, Vec b) { return QV_BITS_OP(xor_)(a, b); }

QV_INLINE Vec Add8(Vec a, Vec b) { return QV_OP(add_epi8)(a, b); }
QV_INLINE Vec Add16(Vec a, Vec b) { return QV_OP(add_epi16)(a, b); }
QV_INLINE Vec Add32(Vec a, Vec b) { return QV_OP(add_epi32)(a, b); }
QV_INLINE Vec Add64(Vec a, Vec b) { return QV_OP(add_epi64)(a, b); }
QV_INLINE Vec Sub8(Vec a, Vec b) { return QV_OP(sub_epi8)(a, b); }
QV_INLINE Vec Sub16(Vec a, Vec b) { return QV_OP(sub_epi16)(a, b); }
QV_INLINE Vec Sub32(Vec a, Vec b) { return QV_OP(sub_epi32)(a, b); }
QV_INLINE Vec AddSaturated8(Vec a, Vec b) { return QV_OP(adds_epu8)(a, b); }
QV_INLINE Vec SubSaturated8(Vec a, Vec b) { return QV_OP(subs_epu8)(a, b); }
// Averages: (a + b + 1) / 2 of bytes, truncated.
QV_INLINE Vec AverageUp8(Vec a, Vec b) { return QV_OP(avg_epu8)(a, b); }

QV_INLINE Vec MulLow16(Vec a, Vec b) { return QV_OP(mullo_epi16)(a, b); }
QV_INLINE Vec MulHighUnsigned16(Vec a, Vec b) { return QV_OP(mulhi_epu16)(a, b); }
QV_INLINE Vec MulHighSigned16(Vec a, Vec b) { return QV_OP(mulhi_epi16)(a, b); }
// 32-bit sums of the products of neighbouring signed 16-bit lanes.
QV_INLINE Vec MulAddPairs16(Vec a, Vec b) { return QV_OP(madd_epi16)(a, b); }
// In each 64-bit lane the product of the low 32 bits, unsigned.
QV_INLINE Vec MulEven32(Vec a, Vec b) { return QV_OP(mul_epu32)(a, b); }
// In each 64-bit lane the sum of its eight bytes.
QV_INLINE Vec SumOctets(Vec v) { return QV_OP(sad_epu8)(v, Zero()); }

template <int n> QV_INLINE Vec ShiftLeft16(Vec v) { return QV_OP(slli_epi16)(v, n); }
template <int n> QV_INLINE Vec ShiftRight16(Vec v) { return QV_OP(srli_epi16)(v, n); }
template <int n> QV_INLINE Vec ShiftLeft32(Vec v) { return QV_OP(slli_epi32)(v, n); }
template <int n> QV_INLINE Vec ShiftRight32(Vec v) { return QV_OP(srli_epi32)(v, n); }
template <int n> QV_INLINE Vec ShiftRightSigned32(Vec v) { return QV_OP(srai_epi32)(v, n); }
template <int n> QV_INLINE Vec ShiftLeft64(Vec v) { return QV_OP(slli_epi64)(v, n); }
template <int n> QV_INLINE Vec ShiftRight64(Vec v) { return QV_OP(srli_epi64)(v, n); }

// Within each 16-byte lane: interleave the low or high halves of two vectors; PackUnsigned16 and
// PackSigned32 narrow with saturation, low halves from `a`. Pack(InterleaveLow(x, zero),
// InterleaveHigh(x, zero)) is x at every vector width.
QV_INLINE Vec InterleaveLow8(Vec a, Vec b) { return QV_OP(unpacklo_epi8)(a, b); }
QV_INLINE Vec InterleaveHigh8(Vec a, Vec b) { return QV_OP(unpackhi_epi8)(a, b); }
QV_INLINE Vec InterleaveLow16(Vec a, Vec b) { return QV_OP(unpacklo_epi16)(a, b); }
QV_INLINE Vec InterleaveHigh16(Vec a, Vec b) { return QV_OP(unpackhi_epi16)(a, b); }
QV_INLINE Vec InterleaveLow32(Vec a, Vec b) { return QV_OP(unpacklo_epi32)(a, b); }
QV_INLINE Vec InterleaveHigh32(Vec a, Vec b) { return QV_OP(unpackhi_epi32)(a, b); }
QV_INLINE Vec InterleaveLow64(Vec a, Vec b) { return QV_OP(unpacklo_epi64)(a, b); }
QV_INLINE Vec InterleaveHigh64(Vec a, Vec b) { return QV_OP(unpackhi_epi64)(a, b); }
QV_INLINE Vec PackUnsigned16(Vec a, Vec b) { return QV_OP(packus_epi16)(a, b); }
QV_INLINE Vec PackSigned32(Vec a, Vec b) { return QV_OP(packs_epi32)(a, b); }

// All bytes in reverse order; both 16-byte lanes of a vector as the lowest, or as the highest, of
// them (of one lane: itself; not defined for four).
Vec ReverseBytes(Vec v);
Vec LowLaneTwice(Vec v);
Vec HighLaneTwice(Vec v);
// The vector's low half as the low halves of all 16-byte lanes, its high half as the high ones:
// InterleaveLow8 and InterleaveHigh8 of two such vectors are those of the whole vectors.
Vec DealHalves(Vec v);

// Single 16-byte vectors, for three-byte pixels (five in 15 bytes) at every width.
using Vec16 = __m128i;
QV_INLINE Vec16 Load16(const void* p) { return _mm_loadu_si128(static_cast<const Vec16*>(p)); }
QV_INLINE void Store16(void* p, Vec16 v) { _mm_storeu_si128(static_cast<Vec16*>(p), v); }
QV_INLINE Vec16 Load4(const void* p) {
  int bits;
  memcpy(&bits, p, sizeof bits);
  return _mm_cvtsi32_si128(bits);
}
QV_INLINE Vec16 Load8(const void* p) { return _mm_loadl_epi64(static_cast<const Vec16*>(p)); }

// BuildLanes (by level): 16-byte lane i of the result is lane(i). LoadLanes: is loaded from the
// address at(i).
template <class At> QV_INLINE Vec LoadLanes(At at) {
  return BuildLanes([=](int i) { return Load16(at(i)); });
}
// The same from pieces of 4 bytes, from at(0), at(1), ..., or of 8.
template <class At> QV_INLINE Vec LoadPieces4(At at) {
  return BuildLanes([=](int i) {
    const Vec16 low = _mm_unpacklo_epi32(Load4(at(4 * i)), Load4(at(4 * i + 1)));
    return _mm_unpacklo_epi64(
        low, _mm_unpacklo_epi32(Load4(at(4 * i + 2)), Load4(at(4 * i + 3))));
  });
}
template <class At> QV_INLINE Vec LoadPieces8(At at) {
  return BuildLanes(
      [=](int i) { return _mm_unpacklo_epi64(Load8(at(2 * i)), Load8(at(2 * i + 1))); });
}

// kHasByteShuffle. ShuffleBytes picks within each 16-byte lane; an index byte with its top bit set
// gives 0. MulAddBytes: the saturated sums of neighbouring products of unsigned bytes of `a` and
// signed ones of `b`, in 16-bit lanes.
#if defined(__SSSE3__)
QV_INLINE Vec ShuffleBytes(Vec v, Vec index) { return QV_OP(shuffle_epi8)(v, index); }
QV_INLINE Vec16 ShuffleBytes16(Vec16 v, Vec16 index) { return _mm_shuffle_epi8(v, index); }
QV_INLINE Vec MulAddBytes(Vec a, Vec b) { return QV_OP(maddubs_epi16)(a, b); }
#else
Vec ShuffleBytes(Vec v, Vec index);
Vec16 ShuffleBytes16(Vec16 v, Vec16 index);
Vec MulAddBytes(Vec a, Vec b);
#endif

// kHasBytePermute: across the whole vector, by the low six bits of each index byte (seven for two
// vectors). PermuteBytesOver is PermuteBytes(v, index) in the bytes whose mask bit is set, `base`
// in the others.
Vec PermuteBytes(Vec v, Vec index);
Vec PermuteBytes2(Vec low, Vec index, Vec high);
Vec PermuteBytesOver(Vec base, unsigned long long mask, Vec v, Vec index);
// Of 64-byte vectors: 16-byte lanes 0 and 2, or 1 and 3, of `a` and then of `b`.
Vec JoinEvenLanes(Vec a, Vec b);
Vec JoinOddLanes(Vec a, Vec b);

// kHasGather. Gather32: 4 bytes for each 32-bit lane, from base + offset. Gather64<h>: 8 bytes for
// lanes 2 h and 2 h + 1 of each 16-byte lane of `offset`.
Vec Gather32(const void* base, Vec offset);
template <int kHalf> Vec Gather64(const void* base, Vec offset);

// kHasMaskedBytes. Of LoadPart and StorePart: bytes whose mask bit is clear are neither read nor
// written (and load as 0). Select: `b` in the bytes whose mask bit is set, `a` in the others.
// TopBits: the mask of the bytes above 127.
Vec LoadPart(const void* p, unsigned long long mask);
void StorePart(void* p, Vec v, unsigned long long mask);
Vec Select(unsigned long long mask, Vec a, Vec b);
unsigned long long TopBits(Vec v);

}  // namespace qv::QV_LEVEL

#endif
