// Rows shorter than a vector, 1 to kVecBytes - 1 bytes, for operations that work on each byte by
// itself. Nothing else is touched. Levels without masks load such a row as two halves that may
// overlap: in an order of their own, some bytes twice. StoreShort puts each back where LoadShort
// found it.
#ifndef QV_KERNELS_LEVEL_SHORTROWS_H
#define QV_KERNELS_LEVEL_SHORTROWS_H

namespace qv::QV_LEVEL {

// Of 1 to 16 bytes.
QV_INLINE Vec16 LoadShort16(const Byte* p, ptrdiff_t n) {
  const auto eight = [](const Byte* at) {
    return _mm_loadl_epi64(reinterpret_cast<const Vec16*>(at));
  };
  const auto four = [](const Byte* at) {
    int word;
    memcpy(&word, at, 4);
    return _mm_cvtsi32_si128(word);
  };
  if (n >= 8) return _mm_unpacklo_epi64(eight(p), eight(p + n - 8));
  if (n >= 4) return _mm_unpacklo_epi32(four(p), four(p + n - 4));
  return _mm_cvtsi32_si128(p[0] | p[n / 2] << 8 | p[n - 1] << 16);
}

QV_INLINE void StoreShort16(Byte* p, Vec16 v, ptrdiff_t n) {
  if (n >= 8) {
    _mm_storel_epi64(reinterpret_cast<Vec16*>(p), v);
    _mm_storel_epi64(reinterpret_cast<Vec16*>(p + n - 8), _mm_unpackhi_epi64(v, v));
    return;
  }
  const int low = _mm_cvtsi128_si32(v), high = _mm_cvtsi128_si32(_mm_srli_epi64(v, 32));
  if (n >= 4) {
    memcpy(p, &low, 4);
    memcpy(p + n - 4, &high, 4);
  } else {
    p[0] = static_cast<Byte>(low);
    p[n / 2] = static_cast<Byte>(low >> 8);
    p[n - 1] = static_cast<Byte>(low >> 16);
  }
}

QV_INLINE Vec LoadShort(const Byte* p, ptrdiff_t n) {
  if constexpr (kHasMaskedBytes) return LoadPart(p, FirstOf64(n, 0));
  if (kVecBytes > 16 && n > 16) return LoadLanes([=](int i) { return p + i * (n - 16); });
  return FromLane(LoadShort16(p, n));
}

QV_INLINE void StoreShort(Byte* p, Vec v, ptrdiff_t n) {
  if constexpr (kHasMaskedBytes) {
    StorePart(p, v, FirstOf64(n, 0));
  } else if (kVecBytes > 16 && n > 16) {
    StoreLanes(v, [=](int i) { return p + i * (n - 16); });
  } else {
    StoreShort16(p, LowLane(v), n);
  }
}

}  // namespace qv::QV_LEVEL

#endif
