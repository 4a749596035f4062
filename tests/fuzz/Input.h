// The arguments of one call, drawn from the bytes of a fuzzer.
#ifndef QV_TESTS_FUZZ_INPUT_H
#define QV_TESTS_FUZZ_INPUT_H

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>

namespace qv::test {

// Bytes that have run out read as 0, so that every input is a call. Small inputs give common calls:
// the first values of every choice are the plain ones. What was drawn is kept for the report.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

  unsigned Byte() { return next_ < end_ ? *next_++ : 0; }

  // True for the first `n` of 256 values from the top: rarely, if n is small.
  bool Rarely(const char* name, int n = 8) {
    const bool yes = Byte() >= 256u - static_cast<unsigned>(n);
    if (yes) Note(name, 1);
    return yes;
  }

  // From low to high, both included.
  int Between(const char* name, int low, int high) {
    const std::uint64_t span =
        static_cast<std::uint64_t>(static_cast<std::int64_t>(high) - low) + 1;
    const std::uint64_t bits = span <= 256 ? Byte() : Bits(span <= 65536 ? 2 : 4);
    return Note(name, static_cast<int>(low + static_cast<std::int64_t>(bits % span)));
  }

  template <class... Choices>
  int Pick(const char* name, Choices... choices) {
    const int all[] = {static_cast<int>(choices)...};
    return Note(name, all[Byte() % sizeof...(choices)]);
  }

  // Any int, the ends of the range and the powers of two above all.
  int Any(const char* name) {
    static constexpr int kEdges[] = {0,           -1,          INT_MAX,        INT_MIN, INT_MAX - 1,
                                     INT_MIN + 1, 1 << 30,     -(1 << 30),     65535,   65536,
                                     46341,       INT_MAX / 3, INT_MAX / 4 + 1};
    const unsigned choice = Byte();
    if (choice % 16 < sizeof kEdges / sizeof *kEdges) return Note(name, kEdges[choice % 16]);
    return Note(name, static_cast<int>(static_cast<std::uint32_t>(Bits(4))));
  }

  // One of the ordinary values or, now and then, anything.
  template <class... Choices>
  int Code(const char* name, Choices... choices) {
    const int all[] = {static_cast<int>(choices)...};
    const unsigned choice = Byte();
    return choice >= 240 ? Any(name) : Note(name, all[choice % sizeof...(choices)]);
  }

  // A width or a height: mostly a few vectors, now and then up to `most`, rarely anything.
  int Length(const char* name, int most = 700) {
    const unsigned choice = Byte();
    if (choice < 176) return Note(name, 1 + static_cast<int>(choice));
    if (choice < 248) return Between(name, 1, most);
    return Any(name);
  }

  // Any double: ordinary ones, and all that arithmetic stumbles over.
  double Real(const char* name) {
    using Limits = std::numeric_limits<double>;
    static constexpr double kEdges[] = {
        0.0,     -0.0,    1.0,    -1.0,   0.5,     2.0,    1e-7, 1e-300, 1e300, -1e300,
        0x1p31,  -0x1p31, 0x1p63, Limits::infinity(),      -Limits::infinity(),
        Limits::quiet_NaN(),      Limits::denorm_min(),    Limits::max(),
        Limits::lowest(),         Limits::epsilon()};
    constexpr unsigned kCount = sizeof kEdges / sizeof *kEdges;
    const unsigned choice = Byte();
    double value;
    if (choice < 128) {
      value = static_cast<std::int16_t>(Bits(2)) / 64.0;
    } else if (choice < 208) {
      value = kEdges[choice % kCount];
    } else {
      const std::uint64_t bits = Bits(8);
      std::memcpy(&value, &bits, sizeof value);
    }
    return Note(name, value);
  }

  int Note(const char* name, int value) {
    Keep(name, value, 0, false);
    return value;
  }
  double Note(const char* name, double value) {
    Keep(name, 0, value, true);
    return value;
  }

  // What was drawn, in order.
  void Print(std::FILE* file) const {
    for (int i = 0; i < count_; ++i) Print(file, notes_[i]);
  }
  // The same, from now on and at once: a crash leaves it behind.
  void PrintAsDrawn(std::FILE* file) { echo_ = file; }

 private:
  struct Noted {
    const char* name;
    int whole;
    double real;
    bool isReal;
  };

  std::uint64_t Bits(int bytes) {
    std::uint64_t bits = 0;
    for (int i = 0; i < bytes; ++i) bits |= static_cast<std::uint64_t>(Byte()) << (8 * i);
    return bits;
  }
  void Keep(const char* name, int whole, double real, bool isReal) {
    const Noted noted = {name, whole, real, isReal};
    if (echo_) Print(echo_, noted);
    if (count_ < kMost) notes_[count_++] = noted;
  }
  static void Print(std::FILE* file, const Noted& noted) {
    if (noted.isReal)
      std::fprintf(file, "  %s %.17g (%a)\n", noted.name, noted.real, noted.real);
    else
      std::fprintf(file, "  %s %d\n", noted.name, noted.whole);
  }

  static constexpr int kMost = 128;
  const std::uint8_t* next_;
  const std::uint8_t* end_;
  Noted notes_[kMost];
  int count_ = 0;
  std::FILE* echo_ = nullptr;
};

}  // namespace qv::test

#endif
