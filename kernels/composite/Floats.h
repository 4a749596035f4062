// Single-precision vectors for the over merge. Every operation is rounded by itself.
#ifndef QV_KERNELS_COMPOSITE_FLOATS_H
#define QV_KERNELS_COMPOSITE_FLOATS_H

namespace qv::QV_LEVEL {

constexpr int kFloats = kVecBytes / 4;

#if defined(__AVX512F__)

using Floats = __m512;
QV_INLINE Floats SplatFloat(float x) { return _mm512_set1_ps(x); }
QV_INLINE Floats AddFloat(Floats a, Floats b) { return _mm512_add_ps(a, b); }
QV_INLINE Floats SubFloat(Floats a, Floats b) { return _mm512_sub_ps(a, b); }
QV_INLINE Floats MulFloat(Floats a, Floats b) { return _mm512_mul_ps(a, b); }
QV_INLINE Floats DivFloat(Floats a, Floats b) { return _mm512_div_ps(a, b); }
QV_INLINE Vec NearestInts(Floats x) { return _mm512_cvtps_epi32(x); }

#elif defined(__AVX2__)

using Floats = __m256;
QV_INLINE Floats SplatFloat(float x) { return _mm256_set1_ps(x); }
QV_INLINE Floats AddFloat(Floats a, Floats b) { return _mm256_add_ps(a, b); }
QV_INLINE Floats SubFloat(Floats a, Floats b) { return _mm256_sub_ps(a, b); }
QV_INLINE Floats MulFloat(Floats a, Floats b) { return _mm256_mul_ps(a, b); }
QV_INLINE Floats DivFloat(Floats a, Floats b) { return _mm256_div_ps(a, b); }
QV_INLINE Floats ToFloats(Vec x) { return _mm256_cvtepi32_ps(x); }
QV_INLINE Vec NearestInts(Floats x) { return _mm256_cvtps_epi32(x); }

#else

using Floats = __m128;
QV_INLINE Floats SplatFloat(float x) { return _mm_set1_ps(x); }
QV_INLINE Floats AddFloat(Floats a, Floats b) { return _mm_add_ps(a, b); }
QV_INLINE Floats SubFloat(Floats a, Floats b) { return _mm_sub_ps(a, b); }
QV_INLINE Floats MulFloat(Floats a, Floats b) { return _mm_mul_ps(a, b); }
QV_INLINE Floats DivFloat(Floats a, Floats b) { return _mm_div_ps(a, b); }
QV_INLINE Floats ToFloats(Vec x) { return _mm_cvtepi32_ps(x); }
QV_INLINE Vec NearestInts(Floats x) { return _mm_cvtps_epi32(x); }

#endif

// x / 255, rounded, of integers from 0 to 256: x / 255 = p + p / 65535 with p = x * 257 / 65536,
// which is exact. The second term is so small that its own rounding never shows in the sum; all 257
// values are those of a division.
constexpr float k257Over65536 = 257.0f / 65536.0f;
QV_INLINE Floats AddOver65535(Floats p) {
#if defined(__AVX512F__)
  return _mm512_fmadd_ps(p, SplatFloat(1.0f / 65535.0f), p);
#else
  return AddFloat(p, MulFloat(p, SplatFloat(1.0f / 65535.0f)));
#endif
}
QV_INLINE Floats Over255(Floats x) { return AddOver65535(MulFloat(x, SplatFloat(k257Over65536))); }

// What the alphas of a pixel make of its colours: (F * foreground + background * B) / divisor.
struct OverWeights {
  Floats foreground, background, divisor;
};

// Of alphas over 255; the merged one comes with the 1 added before.
QV_INLINE OverWeights WeightsOf(Floats fgAlpha, Floats bgAlpha, Floats divisor) {
  return {fgAlpha, MulFloat(SubFloat(SplatFloat(1.0f), fgAlpha), bgAlpha), divisor};
}

}  // namespace qv::QV_LEVEL

#endif
