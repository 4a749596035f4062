// The operations that are the same intrinsics at every width, for one vector type. X86.h
// includes this for Vec128 and, where that is another type, for Vec: both have the same words.
//
// QV_V is the type, QV_V_FLOATS that of single-precision vectors of its width; QV_V_OP(add_epi8) is
// _mm_add_epi8, _mm256_add_epi8 or _mm512_add_epi8, QV_V_BITS_OP(and_) is _mm_and_si128 and so on.
// No include guard: it is meant to be read twice.

namespace qv::QV_LEVEL {

QV_INLINE QV_V And(QV_V a, QV_V b) { return QV_V_BITS_OP(and_)(a, b); }
QV_INLINE QV_V Or(QV_V a, QV_V b) { return QV_V_BITS_OP(or_)(a, b); }
QV_INLINE QV_V Xor(QV_V a, QV_V b) { return QV_V_BITS_OP(xor_)(a, b); }
// All bits the other way. GCC 12 makes an exclusive or with ones an AVX-512 operation on three
// vectors, of which the first is whatever the result's register held: a wait for nothing.
#if defined(__AVX512VL__)
QV_INLINE QV_V Complement(QV_V v) { return QV_V_OP(ternarylogic_epi64)(v, v, v, 0x55); }
#else
QV_INLINE QV_V Complement(QV_V v) { return Xor(v, QV_V_OP(set1_epi8)(-1)); }
#endif
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
QV_INLINE QV_V AddSaturatedSigned16(QV_V a, QV_V b) { return QV_V_OP(adds_epi16)(a, b); }
// Averages: (a + b + 1) / 2 of bytes, or of unsigned 16-bit lanes, truncated.
QV_INLINE QV_V AverageUp8(QV_V a, QV_V b) { return QV_V_OP(avg_epu8)(a, b); }
QV_INLINE QV_V AverageUp16(QV_V a, QV_V b) { return QV_V_OP(avg_epu16)(a, b); }

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
template <int n> QV_INLINE QV_V ShiftRightSigned16(QV_V v) { return QV_V_OP(srai_epi16)(v, n); }
template <int n> QV_INLINE QV_V ShiftLeft32(QV_V v) { return QV_V_OP(slli_epi32)(v, n); }
template <int n> QV_INLINE QV_V ShiftRight32(QV_V v) { return QV_V_OP(srli_epi32)(v, n); }
template <int n> QV_INLINE QV_V ShiftRightSigned32(QV_V v) { return QV_V_OP(srai_epi32)(v, n); }
QV_INLINE QV_V ShiftRightSigned32(QV_V v, int n) {
  return QV_V_OP(sra_epi32)(v, _mm_cvtsi32_si128(n));
}
template <int n> QV_INLINE QV_V ShiftLeft64(QV_V v) { return QV_V_OP(slli_epi64)(v, n); }
template <int n> QV_INLINE QV_V ShiftRight64(QV_V v) { return QV_V_OP(srli_epi64)(v, n); }

// Within each 128-bit lane: interleave the low or high halves of two vectors; PackUnsigned16,
// PackSigned16 and PackSigned32 narrow with saturation, low halves from `a`.
// Pack(InterleaveLow(x, zero), InterleaveHigh(x, zero)) is x at every vector width.
QV_INLINE QV_V InterleaveLow8(QV_V a, QV_V b) { return QV_V_OP(unpacklo_epi8)(a, b); }
QV_INLINE QV_V InterleaveHigh8(QV_V a, QV_V b) { return QV_V_OP(unpackhi_epi8)(a, b); }
QV_INLINE QV_V InterleaveLow16(QV_V a, QV_V b) { return QV_V_OP(unpacklo_epi16)(a, b); }
QV_INLINE QV_V InterleaveHigh16(QV_V a, QV_V b) { return QV_V_OP(unpackhi_epi16)(a, b); }
QV_INLINE QV_V InterleaveLow32(QV_V a, QV_V b) { return QV_V_OP(unpacklo_epi32)(a, b); }
QV_INLINE QV_V InterleaveHigh32(QV_V a, QV_V b) { return QV_V_OP(unpackhi_epi32)(a, b); }
QV_INLINE QV_V InterleaveLow64(QV_V a, QV_V b) { return QV_V_OP(unpacklo_epi64)(a, b); }
QV_INLINE QV_V InterleaveHigh64(QV_V a, QV_V b) { return QV_V_OP(unpackhi_epi64)(a, b); }
QV_INLINE QV_V PackUnsigned16(QV_V a, QV_V b) { return QV_V_OP(packus_epi16)(a, b); }
QV_INLINE QV_V PackSigned16(QV_V a, QV_V b) { return QV_V_OP(packs_epi16)(a, b); }
QV_INLINE QV_V PackSigned32(QV_V a, QV_V b) { return QV_V_OP(packs_epi32)(a, b); }

// Within each 128-bit lane: 32-bit lanes 0 and 2, or 1 and 3, of `a` and then of `b`; and the sums
// of both, a0 + a1, a2 + a3, b0 + b1, b2 + b3.
QV_INLINE QV_V EvenLanes32(QV_V a, QV_V b) {
  return reinterpret_cast<QV_V>(QV_V_OP(shuffle_ps)(
      reinterpret_cast<QV_V_FLOATS>(a), reinterpret_cast<QV_V_FLOATS>(b), 0x88));
}
QV_INLINE QV_V OddLanes32(QV_V a, QV_V b) {
  return reinterpret_cast<QV_V>(QV_V_OP(shuffle_ps)(
      reinterpret_cast<QV_V_FLOATS>(a), reinterpret_cast<QV_V_FLOATS>(b), 0xDD));
}
// Lanes 1 and 3 of `a`, then 0 and 2 of `b`.
QV_INLINE QV_V OddThenEven32(QV_V a, QV_V b) {
  return reinterpret_cast<QV_V>(QV_V_OP(shuffle_ps)(
      reinterpret_cast<QV_V_FLOATS>(a), reinterpret_cast<QV_V_FLOATS>(b), 0x8D));
}
QV_INLINE QV_V AddNeighbours32(QV_V a, QV_V b) {
  return Add32(EvenLanes32(a, b), OddLanes32(a, b));
}

#if defined(__SSE4_1__)
QV_INLINE QV_V Min32(QV_V a, QV_V b) { return QV_V_OP(min_epi32)(a, b); }
QV_INLINE QV_V Max32(QV_V a, QV_V b) { return QV_V_OP(max_epi32)(a, b); }
QV_INLINE QV_V MulLow32(QV_V a, QV_V b) { return QV_V_OP(mullo_epi32)(a, b); }
#else
QV_INLINE QV_V Min32(QV_V a, QV_V b) { return Select(QV_V_OP(cmpgt_epi32)(a, b), b, a); }
QV_INLINE QV_V Max32(QV_V a, QV_V b) { return Select(QV_V_OP(cmpgt_epi32)(a, b), a, b); }
QV_INLINE QV_V MulLow32(QV_V a, QV_V b) {
  const QV_V even = MulEven32(a, b), odd = MulEven32(ShiftRight64<32>(a), ShiftRight64<32>(b));
  return InterleaveLow32(QV_V_OP(shuffle_epi32)(even, 8), QV_V_OP(shuffle_epi32)(odd, 8));
}
#endif
// `v` brought into 0 .. high.
QV_INLINE QV_V Clamp32(QV_V v, QV_V high) {
  return Min32(Max32(v, QV_V_BITS_OP(setzero_)()), high);
}

// kHasByteShuffle. ShuffleBytes picks within each 128-bit lane; an index byte with its top bit set
// gives 0.
#if defined(__SSSE3__)
QV_INLINE QV_V ShuffleBytes(QV_V v, QV_V index) { return QV_V_OP(shuffle_epi8)(v, index); }
#else
QV_V ShuffleBytes(QV_V v, QV_V index);
#endif

// MulAddBytes: the saturated sums of neighbouring products of unsigned bytes of `a` and signed ones
// of `b`, in 16-bit lanes.
#if defined(__SSSE3__)
QV_INLINE QV_V MulAddBytes(QV_V a, QV_V b) { return QV_V_OP(maddubs_epi16)(a, b); }
#else
QV_INLINE QV_V MulAddBytes(QV_V a, QV_V b) {
  const QV_V even = MulLow16(And(a, QV_V_OP(set1_epi16)(255)),
                             ShiftRightSigned16<8>(ShiftLeft16<8>(b)));
  const QV_V odd = MulLow16(ShiftRight16<8>(a), ShiftRightSigned16<8>(b));
  return AddSaturatedSigned16(even, odd);
}
#endif

// Sums of neighbouring bytes as 16-bit lanes; and (a * b + 2^14) >> 15 of signed 16-bit lanes, not
// for -32768 * -32768.
#if defined(__SSSE3__)
QV_INLINE QV_V AddBytePairs(QV_V v) { return MulAddBytes(v, QV_V_OP(set1_epi8)(1)); }
QV_INLINE QV_V MulRounded15(QV_V a, QV_V b) { return QV_V_OP(mulhrs_epi16)(a, b); }
#else
QV_INLINE QV_V AddBytePairs(QV_V v) {
  return Add16(And(v, QV_V_OP(set1_epi16)(255)), ShiftRight16<8>(v));
}
// From the halves of the product: (high * 2^16 + low + 2^14) >> 15 with low unsigned.
QV_INLINE QV_V MulRounded15(QV_V a, QV_V b) {
  const QV_V low = ShiftRight16<14>(MulLow16(a, b));
  return Add16(ShiftLeft16<1>(MulHighSigned16(a, b)),
               ShiftRight16<1>(Add16(low, QV_V_OP(set1_epi16)(1))));
}
#endif

}  // namespace qv::QV_LEVEL
