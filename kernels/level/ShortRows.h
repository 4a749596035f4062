// Rows shorter than a vector, 1 to kVecBytes - 1 bytes, for operations that work on each byte by
// itself. Nothing else is touched. Levels without masks load such a row as two halves that may
// overlap: in an order of their own, some bytes twice. StoreShort puts each back where LoadShort
// found it.
#ifndef QV_KERNELS_LEVEL_SHORTROWS_H
#define QV_KERNELS_LEVEL_SHORTROWS_H

namespace qv::QV_LEVEL {

// Of 1 to 16 bytes.
QV_INLINE Vec128 LoadShort128(const Byte* p, ptrdiff_t n) {
  if (n >= 8) return InterleaveLow64(Load64(p), Load64(p + n - 8));
  if (n >= 4) return InterleaveLow32(Load32(p), Load32(p + n - 4));
  return FromBits32(p[0] | uint32_t{p[n / 2]} << 8 | uint32_t{p[n - 1]} << 16);
}

QV_INLINE void StoreShort128(Byte* p, Vec128 v, ptrdiff_t n) {
  if (n >= 8) {
    Store64(p, v);
    Store64(p + n - 8, InterleaveHigh64(v, v));
  } else if (n >= 4) {
    Store32(p, v);
    Store32(p + n - 4, ShiftRight64<32>(v));
  } else {
    const uint32_t bits = LowBits32(v);
    p[0] = static_cast<Byte>(bits);
    p[n / 2] = static_cast<Byte>(bits >> 8);
    p[n - 1] = static_cast<Byte>(bits >> 16);
  }
}

QV_INLINE Vec LoadShort(const Byte* p, ptrdiff_t n) {
  if constexpr (kHasMaskedBytes) return LoadPart(p, FirstOf64(n, 0));
  if (kVecBytes > 16 && n > 16) return LoadLanes([=](int i) { return p + i * (n - 16); });
  return FromLane(LoadShort128(p, n));
}

QV_INLINE void StoreShort(Byte* p, Vec v, ptrdiff_t n) {
  if constexpr (kHasMaskedBytes) {
    StorePart(p, v, FirstOf64(n, 0));
  } else if (kVecBytes > 16 && n > 16) {
    StoreLanes(v, [=](int i) { return p + i * (n - 16); });
  } else {
    StoreShort128(p, LowLane(v), n);
  }
}

}  // namespace qv::QV_LEVEL

#endif
