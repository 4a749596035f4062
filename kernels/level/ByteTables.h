// Sets of a vector's bytes: tables that the compiler computes, and masks of up to 64 bytes.
#ifndef QV_KERNELS_LEVEL_BYTETABLES_H
#define QV_KERNELS_LEVEL_BYTETABLES_H

namespace qv::QV_LEVEL {

// A table of bytes that a vector of indices is loaded from: byte i is function(i).
struct ByteTable {
  Byte b[kVecBytes];
};

template <class Function>
constexpr ByteTable MakeByteTable(Function function) {
  ByteTable table{};
  for (int i = 0; i < kVecBytes; ++i) table.b[i] = static_cast<Byte>(function(i));
  return table;
}

// Every byte's own number: the index that leaves a vector as it is.
constexpr ByteTable kByteNumbers = MakeByteTable([](int i) { return i; });

// The first `count` bytes of 64 that start at byte `first`; 0 to 64 of them.
QV_INLINE unsigned long long FirstOf64(ptrdiff_t count, ptrdiff_t first) {
  const ptrdiff_t n = count - first;
  return n >= 64 ? ~0ull : n <= 0 ? 0 : (1ull << n) - 1;
}

// The bytes first, first + 3, ... of 64.
constexpr unsigned long long EveryThird(int first) {
  unsigned long long mask = 0;
  for (int j = first; j < 64; j += 3) mask |= 1ull << j;
  return mask;
}

// Three-byte pixels without gaps from four-byte ones without their fourth bytes: byte i comes from
// this one.
constexpr int WithoutFourths(int i) { return i / 3 * 4 + i % 3; }

}  // namespace qv::QV_LEVEL

#endif
