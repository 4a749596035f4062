// A small generator for tests: the same numbers on every platform.
#ifndef QV_SUPPORT_RANDOM_H
#define QV_SUPPORT_RANDOM_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qv::test {

class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 0x632BE59BD9B4E019u) {}

  std::uint64_t Next() {  // splitmix64
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }

  // From low to high, both included.
  int Between(int low, int high) {
    const auto span = static_cast<std::uint64_t>(static_cast<std::int64_t>(high) - low + 1);
    return static_cast<int>(low + static_cast<std::int64_t>(Next() % span));
  }

  double Between(double low, double high) {
    return low + (high - low) * static_cast<double>(Next() >> 11) * 0x1p-53;
  }

  // True once in n times.
  bool OneIn(int n) { return Next() % static_cast<unsigned>(n) == 0; }

  template <class... Choices>
  int Pick(Choices... choices) {
    const int all[] = {static_cast<int>(choices)...};
    return all[Next() % sizeof...(choices)];
  }

  void Fill(unsigned char* p, std::size_t n) {
    for (; n >= 8; p += 8, n -= 8) {
      const std::uint64_t bits = Next();
      std::memcpy(p, &bits, 8);
    }
    const std::uint64_t bits = Next();
    std::memcpy(p, &bits, n);
  }

 private:
  std::uint64_t state_;
};

}  // namespace qv::test

#endif
