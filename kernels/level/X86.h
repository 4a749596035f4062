// What x86 levels have in common: the operations of X86Operations.h and X86Floats.h, and how
// vectors are loaded, stored and filled.
//
// Each level's header defines, before it includes this one, Vec, Floats and the prefix of its
// intrinsics: QV_OP(set1_epi8) is _mm_set1_epi8, _mm256_set1_epi8 or _mm512_set1_epi8;
// QV_BITS_OP(loadu_) is _mm_loadu_si128 and so on.
#ifndef QV_KERNELS_LEVEL_X86_H
#define QV_KERNELS_LEVEL_X86_H

namespace qv::QV_LEVEL {

// A single 128-bit vector, for three-byte pixels (five in 15 bytes) at every width.
using Vec128 = __m128i;

}  // namespace qv::QV_LEVEL

#define QV_V Vec128
#define QV_V_FLOATS __m128
#define QV_V_OP(name) _mm_##name
#define QV_V_BITS_OP(name) _mm_##name##si128
#include "kernels/level/X86Operations.h"
#undef QV_V
#undef QV_V_FLOATS
#undef QV_V_OP
#undef QV_V_BITS_OP

#if QV_VEC_BITS > 128
#define QV_V Vec
#define QV_V_FLOATS Floats
#define QV_V_OP QV_OP
#define QV_V_BITS_OP QV_BITS_OP
#include "kernels/level/X86Operations.h"
#undef QV_V
#undef QV_V_FLOATS
#undef QV_V_OP
#undef QV_V_BITS_OP
#endif

#include "kernels/level/X86Floats.h"

namespace qv::QV_LEVEL {

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
// Copies by a repeated move of bytes; for callers that have looked at LongMoveBytes.
QV_INLINE void MoveBytes(void* to, const void* from, size_t bytes) {
  asm volatile("rep movsb" : "+D"(to), "+S"(from), "+c"(bytes) : : "memory");
}

QV_INLINE Vec Zero() { return QV_BITS_OP(setzero_)(); }
QV_INLINE Vec Splat8(int x) { return QV_OP(set1_epi8)(static_cast<char>(x)); }
QV_INLINE Vec Splat16(int x) { return QV_OP(set1_epi16)(static_cast<short>(x)); }
QV_INLINE Vec Splat32(int x) { return QV_OP(set1_epi32)(x); }
QV_INLINE Vec Splat64(long long x) { return Vec{} + x; }  // the type is one of 64-bit integers

template <int i0, int i1, int i2, int i3> QV_INLINE Vec ShuffleLow16(Vec v) {
  return QV_OP(shufflelo_epi16)(v, i0 + 4 * i1 + 16 * i2 + 64 * i3);
}
template <int i0, int i1, int i2, int i3> QV_INLINE Vec ShuffleHigh16(Vec v) {
  return QV_OP(shufflehi_epi16)(v, i0 + 4 * i1 + 16 * i2 + 64 * i3);
}

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

// Each 128-bit lane, of a Vec as well, moved up or down by n bytes; zeros follow.
template <int n> QV_INLINE Vec128 ShiftBytesUp(Vec128 v) { return _mm_slli_si128(v, n); }
template <int n> QV_INLINE Vec128 ShiftBytesDown(Vec128 v) { return _mm_srli_si128(v, n); }

}  // namespace qv::QV_LEVEL

#endif
