// Rounding, denormal numbers, traps and precision are the host's to set: no byte depends on them,
// and the host finds them as it left them.
#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "qvAcceleratedLib/BandSplit.h"
#include "support/Levels.h"
#include "tests/support/Operations.h"

namespace qv::test {
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

// On the calling thread and on three threads of the team.
class UseControl {
 public:
  explicit UseControl(Control c) : old_(Current()) { SetAll(c); }
  ~UseControl() { SetAll(old_); }

 private:
  static void SetAll(Control c) {
    const UseBudget budget(4);
    std::atomic<int> arrived{0};
    RunBands(Bands{4, 1, 4}, {4, 0}, [&](Band) {
      for (++arrived; arrived < 4;) std::this_thread::yield();
      Set(c);
      return StatusOk;
    });
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

// All operations, and calls whose numbers are computed with more care than usual: factors and
// angles that no double holds, denormal ones, matrices of several kinds. Status codes count as
// well.
std::vector<Operation> OperationsOnNumbers() {
  std::vector<Operation> list = Operations();
  const auto add = [&](std::string name, auto call) {
    list.push_back({name,
                    [](IppiSize s) {
                      return std::vector<Shape>{{3 * s.width, s.height, false},
                                                {3 * s.width, s.height, true}};
                    },
                    call});
  };
  constexpr auto type = CqvAccLib::ThreeChannels;
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  constexpr double kFactors[][2] = {{0.7, 0.73}, {0.5, 0.5},    {1.05, 0.99},
                                    {1.9, 1.7},  {1e-310, 0.1}, {kNone, 0.5}};
  for (const auto& f : kFactors)
    for (const int method : {1, 2, 4, 8, 16})
      add("qvResize by " + std::to_string(f[0]), [=](const Plane* p, IppiSize s) {
        return CqvAccLib::qvResize(type, p[0].data, s, p[0].step, {7, 3, s.width, s.height - 9},
                                   p[1].data, p[1].step, s, f[0], f[1], method);
      });
  for (const double angle : {0.3, 30.0, 450.0})
    for (const double shift : {12.1, 1e-310})
      add("qvRotate by " + std::to_string(angle), [=](const Plane* p, IppiSize s) {
        const IppiRect all = {0, 0, s.width, s.height};
        return CqvAccLib::qvRotate(type, p[0].data, s, p[0].step, {7, 3, s.width, s.height},
                                   p[1].data, p[1].step, all, angle, shift, 150, 2);
      });
  static constexpr double kMatrices[][3][3] = {
      {{0.875, 0.125, 3.5}, {-0.0625, 0.9375, 7}, {0.00012, -0.00024, 1}},
      {{1.1, -0.3, 31}, {0.2, 0.9, -12.3}, {0, 0, 1}}};
  for (const auto& matrix : kMatrices)
    for (const int method : {1, 2, 4})
      add("qvWarpPerspective by " + std::to_string(matrix[0][0]), [=](const Plane* p, IppiSize s) {
        const IppiRect all = {0, 0, s.width, s.height};
        return CqvAccLib::qvWarpPerspective(type, p[0].data, s, p[0].step, {7, 3, 99, s.height},
                                            p[1].data, p[1].step, all, matrix, method);
      });
  return list;
}

TEST(FloatEnvironment, OfTheHostChangesNoByteOfAnyOperation) {
  const std::vector<Operation> operations = OperationsOnNumbers();
  const Level& best = AvailableLevels().back();
  Runner runner;
  for (const Level& level : AvailableLevels())
    for (const int budget : {1, 4}) {
      if (budget == 4 && level.name != best.name) continue;
      const UseLevel useLevel(level);
      const UseBudget useBudget(budget);
      for (const Operation& operation : operations) {
        const Outcome expected = runner.Run(operation);
        for (const Control& host : kHosts) {
          Outcome outcome;
          Control after;
          runner.Prepare(operation);
          {
            const UseControl use(host);
            outcome = runner.Call(operation);
            after = Current();
          }
          EXPECT_TRUE(outcome == expected) << operation.name << ' ' << level.name << " budget "
                                           << budget << std::hex << ' ' << host.sse << ' '
                                           << host.x87;
          EXPECT_TRUE(after == host) << operation.name << ' ' << std::hex << after.sse << ' '
                                     << after.x87;
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
        const UseBudget budget(4);
        RunFloatBands(Bands{count, 1, count}, {count, 0}, [&](Band band) {
          const auto at = static_cast<std::size_t>(band.first);
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
  RunFloatBands(Bands{1, 1, 1}, {1, 0},
                [](Band) { return X87Third() > 0 ? StatusOk : StatusSizeErr; });
  __asm__ volatile("fnstsw %0" : "=m"(after));
  EXPECT_EQ(before & 0x3F, after & 0x3F);
}

#endif

}  // namespace
}  // namespace qv::test
