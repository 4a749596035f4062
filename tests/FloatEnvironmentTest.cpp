// Rounding, denormal numbers, traps and precision are the host's to set: no byte depends on them,
// and the host finds them as it left them.
#include <gtest/gtest.h>
#include <omp.h>

#include <vector>

#include "qvAcceleratedLib/BandSplit.h"
#include "tests/support/Levels.h"
#include "tests/support/Operations.h"

namespace qv {
namespace {

#if defined(__i386__)
constexpr bool kX87Doubles = true;
#else
constexpr bool kX87Doubles = false;
#endif

struct Control {
  unsigned sse = 0x1F80;    // MXCSR
  unsigned x87 = 0x037F;
  bool operator==(const Control&) const = default;
};

// 32-bit tests are built for SSE2, the least that the test machines have.
Control Current() {
  Control c;
  unsigned short word;
  __asm__ volatile("stmxcsr %0\n\tfnstcw %1" : "=m"(c.sse), "=m"(word));
  c.x87 = word;
  return c;
}

void Set(Control c) {
  const auto word = static_cast<unsigned short>(c.x87);
  __asm__ volatile("fnclex\n\tldmxcsr %0\n\tfldcw %1" : : "m"(c.sse), "m"(word));
}

// On the calling thread and on all threads of its team.
class UseControl {
 public:
  explicit UseControl(Control c) : old_(Current()) { SetAll(c); }
  ~UseControl() { SetAll(old_); }

 private:
  static void SetAll(Control c) {
#pragma omp parallel
    Set(c);
  }
  Control old_;
};

constexpr Control kHosts[] = {
    {0x9F80, 0x037F},  // flush to zero, as audio hosts and -ffast-math have it
    {0x1FC0, 0x037F},  // denormals are zero
    {0x9FC0, 0x027F},  // both; 53 bits, as Windows starts its threads
    {0x3F80, 0x077F},  // down
    {0x5F80, 0x0B7F},  // up
    {0x7F80, 0x0F7F},  // towards zero
    {0x1F80, 0x007F},  // 24 bits, as graphics libraries have left it
    {0x1900, 0x0372},  // traps on invalid operations and zero divisions, as Pascal hosts have it
    {0x0000, 0x0340},  // traps on everything, inexact results included
    {0x5FBF, 0x037F},  // up, with all flags raised
};

TEST(FloatEnvironment, OfTheHostChangesNoByteOfAnyOperation) {
  const test::Level& best = test::AvailableLevels().back();
  for (const test::Level& level : test::AvailableLevels())
    for (const int budget : {1, 4}) {
      if (budget == 4 && level.name != best.name) continue;
      const test::UseLevel useLevel(level);
      const test::UseBudget useBudget(budget);
      const std::vector<test::Outcome> expected = test::RunAll();
      test::Frames frames;
      for (const Control& host : kHosts) {
        std::vector<test::Outcome> outcomes;
        std::vector<Control> after;
        {
          const UseControl use(host);
          for (const test::OperationCall& call : test::AllCalls()) {
            outcomes.push_back(test::RunCall(call, frames));
            after.push_back(Current());
          }
        }
        for (std::size_t i = 0; i < outcomes.size(); ++i) {
          const char* const name = test::AllCalls()[i].name.c_str();
          EXPECT_TRUE(outcomes[i] == expected[i]) << name << ' ' << level.name << " budget "
                                                  << budget << std::hex << ' ' << host.sse << ' '
                                                  << host.x87;
          EXPECT_TRUE(after[i] == host) << name << ' ' << std::hex << after[i].sse << ' '
                                        << after[i].x87;
        }
      }
    }
}

// 1 divided by 3 in an x87 register: to a double's 53 bits or to others.
double X87Third() {
  const float one = 1, three = 3;
  long double exact;
  __asm__ volatile("flds %1\n\tfdivs %2\n\tfstpt %0" : "=m"(exact) : "m"(one), "m"(three));
  const auto third = static_cast<double>(exact);
  return static_cast<long double>(third) == exact ? third : 0;
}

TEST(FloatEnvironment, IsTheSameInEveryBand) {
  for (const Control& host : kHosts)
    for (const int count : {1, 4}) {
      std::vector<Control> controls(4);
      std::vector<double> thirds(4, 1.0 / 3);
      {
        const UseControl use(host);
        RunFloatBands(Bands{count, 1, count}, [&](int i) {
          const auto at = static_cast<std::size_t>(i);
          controls[at] = Current();
          if (kX87Doubles) thirds[at] = X87Third();
          return StatusOk;
        });
      }
      for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        EXPECT_EQ(controls[at].sse, 0x1F80u) << std::hex << host.sse;
        if (kX87Doubles) {
          EXPECT_EQ(controls[at].x87 & 0x0F3F, 0x023Fu) << std::hex << host.x87;
        }
        EXPECT_EQ(thirds[at], 1.0 / 3) << std::hex << host.x87;
      }
    }
}

#if defined(__i386__)

TEST(FloatEnvironment, KeepsTheHostsX87Flags) {
  unsigned short before, after;
  const UseControl use({0x1F80, 0x0340});
  __asm__ volatile("fnstsw %0" : "=m"(before));
  RunFloatBands(Bands{1, 1, 1}, [](int) { return X87Third() > 0 ? StatusOk : StatusSizeErr; });
  __asm__ volatile("fnstsw %0" : "=m"(after));
  EXPECT_EQ(before & 0x3F, after & 0x3F);
}

#endif

}  // namespace
}  // namespace qv
