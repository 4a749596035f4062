// Two vectors taken apart into bytes of even and of odd places.
#ifndef QV_KERNELS_LEVEL_EVENODD_H
#define QV_KERNELS_LEVEL_EVENODD_H

namespace qv::QV_LEVEL {

// Bytes 0, 2, 4, ... or 1, 3, 5, ... of two vectors that follow each other.
QV_INLINE Vec EvenBytes(Vec low, Vec high) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index = MakeByteTable([](int i) { return 2 * i; });
    return PermuteBytes2(low, Load(index.b), high);
  }
  return PackBytesInOrder(And(low, Splat16(0xff)), And(high, Splat16(0xff)));
}

QV_INLINE Vec OddBytes(Vec low, Vec high) {
  if constexpr (kHasBytePermute) {
    static constexpr ByteTable index = MakeByteTable([](int i) { return 2 * i + 1; });
    return PermuteBytes2(low, Load(index.b), high);
  }
  return PackBytesInOrder(ShiftRight16<8>(low), ShiftRight16<8>(high));
}

}  // namespace qv::QV_LEVEL

#endif
