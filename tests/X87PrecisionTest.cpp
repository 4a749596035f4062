// 32-bit builds compute planning in x87 registers, whose setting belongs to the host.
#include <gtest/gtest.h>
#include <omp.h>

#include <vector>

#include "qvAcceleratedLib/BandSplit.h"
#include "tests/support/Levels.h"

#if defined(__i386__)

namespace qv {
namespace {

unsigned ControlWord() {
  unsigned short word;
  __asm__ volatile("fnstcw %0" : "=m"(word));
  return word;
}

void SetControlWord(unsigned value) {
  const auto word = static_cast<unsigned short>(value);
  __asm__ volatile("fldcw %0" : : "m"(word));
}

class UseControlWord {
 public:
  explicit UseControlWord(unsigned word) : old_(ControlWord()) { SetControlWord(word); }
  ~UseControlWord() {
    __asm__ volatile("fnclex");
    SetControlWord(old_);
  }

 private:
  unsigned old_;
};

// 1 divided by 3 and what it takes to trap and to set flags: rounded to 53 bits or not.
double X87Third() {
  const float one = 1, three = 3;
  double third;
  long double exact;
  __asm__ volatile("flds %1\n\tfdivs %2\n\tfstpt %0" : "=m"(exact) : "m"(one), "m"(three));
  third = static_cast<double>(exact);
  return static_cast<long double>(third) == exact ? third : 0;
}

constexpr unsigned kHostWords[] = {
    0x037F,  // 64 bits, as Linux starts every thread
    0x027F,  // 53 bits, as Windows does
    0x007F,  // 24 bits, as graphics libraries have left it
    0x0F7F,  // towards zero
    0x0372,  // traps on invalid operations, zero divisions and overflows, as Pascal hosts have it
    0x0340,  // traps on everything, inexact results included
};

TEST(X87Precision, IsThatOfDoublesInEveryBandWhateverTheHostHasSet) {
  for (const unsigned word : kHostWords) {
    for (const int count : {1, 4}) {
      std::vector<unsigned> words(4, 0x027F);
      std::vector<double> thirds(4, 1.0 / 3);
      const UseControlWord host(word);
      RunBands(Bands{count, 1, count}, [&](int i) {
        thirds[static_cast<std::size_t>(i)] = X87Third();
        words[static_cast<std::size_t>(i)] = ControlWord();
        return StatusOk;
      });
      EXPECT_EQ(ControlWord() & 0x0F3F, word & 0x0F3F);
      SetControlWord(0x037F);  // the expectations are no host
      for (const unsigned w : words) EXPECT_EQ(w & 0x0F3F, 0x023Fu) << std::hex << word;
      for (const double third : thirds) EXPECT_EQ(third, 1.0 / 3) << std::hex << word;
    }
  }
}

TEST(X87Precision, KeepsTheHostsFlags) {
  unsigned short before, after;
  const UseControlWord host(0x0340);
  __asm__ volatile("fnclex\n\tfnstsw %0" : "=m"(before));
  RunBands(Bands{1, 1, 1}, [](int) { return X87Third() > 0 ? StatusOk : StatusSizeErr; });
  __asm__ volatile("fnstsw %0" : "=m"(after));
  EXPECT_EQ(before & 0x3F, after & 0x3F);
}

}  // namespace
}  // namespace qv

#endif
