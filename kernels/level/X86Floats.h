// Single-precision vectors, one value in each 32-bit lane, and what their lanes need as integers.
// Every operation is rounded by itself.
#ifndef QV_KERNELS_LEVEL_X86FLOATS_H
#define QV_KERNELS_LEVEL_X86FLOATS_H

namespace qv::QV_LEVEL {

QV_INLINE Floats LoadFloats(const float* p) { return QV_OP(loadu_ps)(p); }
QV_INLINE Floats SplatFloat(float x) { return QV_OP(set1_ps)(x); }
QV_INLINE Floats AddFloat(Floats a, Floats b) { return QV_OP(add_ps)(a, b); }
QV_INLINE Floats SubFloat(Floats a, Floats b) { return QV_OP(sub_ps)(a, b); }
QV_INLINE Floats MulFloat(Floats a, Floats b) { return QV_OP(mul_ps)(a, b); }
QV_INLINE Floats DivFloat(Floats a, Floats b) { return QV_OP(div_ps)(a, b); }

QV_INLINE Floats ToFloats(Vec x) { return QV_OP(cvtepi32_ps)(x); }
QV_INLINE Vec NearestInts(Floats x) { return QV_OP(cvtps_epi32)(x); }
QV_INLINE Vec TruncatedInts(Floats x) { return QV_OP(cvttps_epi32)(x); }

// The bits as they are.
QV_INLINE Floats AsFloats(Vec v) { return reinterpret_cast<Floats>(v); }
QV_INLINE Vec AsInts(Floats x) { return reinterpret_cast<Vec>(x); }

// Within each 128-bit lane, lanes i0 to i3 of it in this order.
template <int i0, int i1, int i2, int i3> QV_INLINE Floats ShuffleFloats(Floats x) {
  return QV_OP(shuffle_ps)(x, x, i0 + 4 * i1 + 16 * i2 + 64 * i3);
}

}  // namespace qv::QV_LEVEL

#endif
