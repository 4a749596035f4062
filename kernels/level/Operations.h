// The operations that are the same intrinsics at every width, for one vector type. Vectors.h
// includes this for Vec128 and, where that is another type, for Vec: both have the same words.
//
// QV_V is the type; QV_V_OP(add_epi8) is _mm_add_epi8, _mm256_add_epi8 or _mm512_add_epi8,
// QV_V_BITS_OP(and_) is _mm_and_si128 and so on. No include guard: it is meant to be read twice.

namespace qv::QV_LEVEL {

QV_INLINE QV_V And(QV_V a, QV_V b) { return QV_V_BITS_OP(and_)(a, b); }
QV_INLINE QV_V Or(QV_V a, QV_V b) { return QV_V_BITS_OP(or_)(a, b); }
QV_INLINE QV_V Xor(QV_V a, QV_V b) { return QV_V_BITS_OP(xor_)(a, b); }
// The bits of `b` that are clear in `mask`.
QV_INLINE QV_V AndNot(QV_V mask, QV_V b) { return QV_V_BITS_OP(andnot_)(mask, b); }

// The bits of `a` where those of `mask` are set, of `b` where they are clear.
QV_INLINE QV_V Select(QV_V mask, QV_V a, QV_V b) { return Or(And(mask, a), AndNot(mask, b)); }

QV_INLINE QV_V Add8(QV_V a, QV_V b) { return QV_V_OP(add_epi8)(a, b); }
QV_INLINE QV_V Add16(QV_V a, QV_V b) { return QV_V_OP(add_epi16)(a, b); }
QV_INLINE QV_V Add32(QV_V a, QV_V b) { return QV_V_OP(add_epi32)(a, b); }
QV_INLINE QV_V Add64(QV_V a, QV_V b) { return QV_V_OP(add_epi64)(a, b); }
QV_INLINE QV_V Sub8(QV_V a, QV_V b) { return QV_V_OP(sub_epi8)(a, b); }
QV_INLINE QV_V Sub16(QV_V a, QV_V b) { return QV_V_OP(sub_epi16)(a, b); }
QV_INLINE QV_V Sub32(QV_V a, QV_V b) { return QV_V_OP(sub_epi32)(a, b); }
QV_INLINE QV_V AddSaturated8(QV_V a, QV_V b) { return QV_V_OP(adds_epu8)(a, b); }
QV_INLINE QV_V SubSaturated8(QV_V a, QV_V b) { return QV_V_OP(subs_epu8)(a, b); }
// Averages: (a + b + 1) / 2 of bytes, truncated.
QV_INLINE QV_V AverageUp8(QV_V a, QV_V b) { return QV_V_OP(avg_epu8)(a, b); }

QV_INLINE QV_V MulLow16(QV_V a, QV_V b) { return QV_V_OP(mullo_epi16)(a, b); }
QV_INLINE QV_V MulHighUnsigned16(QV_V a, QV_V b) { return QV_V_OP(mulhi_epu16)(a, b); }
QV_INLINE QV_V MulHighSigned16(QV_V a, QV_V b) { return QV_V_OP(mulhi_epi16)(a, b); }
// 32-bit sums of the products of neighbouring signed 16-bit lanes.
QV_INLINE QV_V MulAddPairs16(QV_V a, QV_V b) { return QV_V_OP(madd_epi16)(a, b); }
// In each 64-bit lane the product of the low 32 bits, unsigned.
QV_INLINE QV_V MulEven32(QV_V a, QV_V b) { return QV_V_OP(mul_epu32)(a, b); }
// In each 64-bit lane the sum of its eight bytes.
QV_INLINE QV_V SumOctets(QV_V v) { return QV_V_OP(sad_epu8)(v, QV_V_BITS_OP(setzero_)()); }

template <int n> QV_INLINE QV_V ShiftLeft16(QV_V v) { return QV_V_OP(slli_epi16)(v, n); }
template <int n> QV_INLINE QV_V ShiftRight16(QV_V v) { return QV_V_OP(srli_epi16)(v, n); }
template <int n> QV_INLINE QV_V ShiftLeft32(QV_V v) { return QV_V_OP(slli_epi32)(v, n); }
template <int n> QV_INLINE QV_V ShiftRight32(QV_V v) { return QV_V_OP(srli_epi32)(v, n); }
template <int n> QV_INLINE QV_V ShiftRightSigned32(QV_V v) { return QV_V_OP(srai_epi32)(v, n); }
template <int n> QV_INLINE QV_V ShiftLeft64(QV_V v) { return QV_V_OP(slli_epi64)(v, n); }
template <int n> QV_INLINE QV_V ShiftRight64(QV_V v) { return QV_V_OP(srli_epi64)(v, n); }

// Within each 128-bit lane: interleave the low or high halves of two vectors; PackUnsigned16 and
// PackSigned32 narrow with saturation, low halves from `a`. Pack(InterleaveLow(x, zero),
// InterleaveHigh(x, zero)) is x at every vector width.
QV_INLINE QV_V InterleaveLow8(QV_V a, QV_V b) { return QV_V_OP(unpacklo_epi8)(a, b); }
QV_INLINE QV_V InterleaveHigh8(QV_V a, QV_V b) { return QV_V_OP(unpackhi_epi8)(a, b); }
QV_INLINE QV_V InterleaveLow16(QV_V a, QV_V b) { return QV_V_OP(unpacklo_epi16)(a, b); }
QV_INLINE QV_V InterleaveHigh16(QV_V a, QV_V b) { return QV_V_OP(unpackhi_epi16)(a, b); }
QV_INLINE QV_V InterleaveLow32(QV_V a, QV_V b) { return QV_V_OP(unpacklo_epi32)(a, b); }
QV_INLINE QV_V InterleaveHigh32(QV_V a, QV_V b) { return QV_V_OP(unpackhi_epi32)(a, b); }
QV_INLINE QV_V InterleaveLow64(QV_V a, QV_V b) { return QV_V_OP(unpacklo_epi64)(a, b); }
QV_INLINE QV_V InterleaveHigh64(QV_V a, QV_V b) { return QV_V_OP(unpackhi_epi64)(a, b); }
QV_INLINE QV_V PackUnsigned16(QV_V a, QV_V b) { return QV_V_OP(packus_epi16)(a, b); }
QV_INLINE QV_V PackSigned32(QV_V a, QV_V b) { return QV_V_OP(packs_epi32)(a, b); }

// kHasByteShuffle. ShuffleBytes picks within each 128-bit lane; an index byte with its top bit set
// gives 0. MulAddBytes: the saturated sums of neighbouring products of unsigned bytes of `a` and
// signed ones of `b`, in 16-bit lanes.
#if defined(__SSSE3__)
QV_INLINE QV_V ShuffleBytes(QV_V v, QV_V index) { return QV_V_OP(shuffle_epi8)(v, index); }
QV_INLINE QV_V MulAddBytes(QV_V a, QV_V b) { return QV_V_OP(maddubs_epi16)(a, b); }
#else
QV_V ShuffleBytes(QV_V v, QV_V index);
QV_V MulAddBytes(QV_V a, QV_V b);
#endif

}  // namespace qv::QV_LEVEL
