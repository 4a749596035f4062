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

#if defined(__aarch64__)

struct Control {
  unsigned main = 0;  // FPCR, and FPSR's flags: they have no bit in common
  bool operator==(const Control&) const = default;
};
constexpr unsigned kFlags = 0x9F;

Control Current() {
  uint64_t control, status;
  __asm__ volatile("mrs %0, fpcr\n\tmrs %1, fpsr" : "=r"(control), "=r"(status));
  return {static_cast<unsigned>(control | status)};
}

void Set(Control c) {
  const uint64_t control = c.main & ~kFlags, status = c.main & kFlags;
  __asm__ volatile("msr fpcr, %0\n\tmsr fpsr, %1" : : "r"(control), "r"(status));
}

constexpr Control kHosts[] = {
    {0x01000000},  // flush to zero
    {0x02000000},  // no payloads of NaN
    {0x00400000},  // up
    {0x00800000},  // down
    {0x00C00000},  // towards zero
    {0x00009F00},  // traps on everything, on processors that can
    {0x0040009F},  // up, with all flags raised
};

#else

struct Control {
  unsigned main = 0x1F80;  // MXCSR
  unsigned x87 = 0x037F;
  bool operator==(const Control&) const = default;
};
constexpr unsigned kFlags = 0;  // of MXCSR they are cleared

// 32-bit tests are built for SSE2, the least that the test machines have.
Control Current() {
  Control c;
  unsigned short word;
  __asm__ volatile("stmxcsr %0\n\tfnstcw %1" : "=m"(c.main), "=m"(word));
  c.x87 = word;
  return c;
}

void Set(Control c) {
  const auto word = static_cast<unsigned short>(c.x87);
  __asm__ volatile("fnclex\n\tldmxcsr %0\n\tfldcw %1" : : "m"(c.main), "m"(word));
}

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

#endif

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
        for (const Control& asked : kHosts) {
          Outcome outcome;
          Control host, after;
          runner.Prepare(operation);
          {
            const UseControl use(asked);
            host = Current();  // without traps that the processor does not have
            outcome = runner.Call(operation);
            after = Current();
          }
          EXPECT_TRUE(outcome == expected) << operation.name << ' ' << level.name << " budget "
                                           << budget << std::hex << ' ' << host.main;
          EXPECT_TRUE(after == host) << operation.name << ' ' << std::hex << after.main << ' '
                                     << host.main;
        }
      }
    }
}

TEST(FloatEnvironment, IsTheSameInEveryBand) {
  for (const Control& host : kHosts)
    for (const int count : {1, 4}) {
      std::vector<Control> controls(4);
      {
        const UseControl use(host);
        const UseBudget budget(4);
        RunFloatBands(Bands{count, 1, count}, {count, 0}, [&](Band band) {
          controls[static_cast<std::size_t>(band.first)] = Current();
          return StatusOk;
        });
      }
      for (const Control& control : controls)
        EXPECT_EQ(control.main & ~kFlags, Control().main) << std::hex << host.main;
    }
}

#if defined(__i386__)

// 1 divided by 3 in an x87 register: to a double's 53 bits or to others.
double X87Third() {
  const float one = 1, three = 3;
  long double exact;
  __asm__ volatile("flds %1\n\tfdivs %2\n\tfstpt %0" : "=m"(exact) : "m"(one), "m"(three));
  const auto third = static_cast<double>(exact);
  return static_cast<long double>(third) == exact ? third : 0;
}

TEST(FloatEnvironment, HasDoublesInX87Registers) {
  for (const Control& host : kHosts) {
    const UseControl use(host);
    unsigned short before, after;
    Control inside;
    double third = 0;
    __asm__ volatile("fnstsw %0" : "=m"(before));
    RunFloatBands(Bands{1, 1, 1}, {1, 0}, [&](Band) {
      third = X87Third();
      inside = Current();
      return StatusOk;
    });
    __asm__ volatile("fnstsw %0" : "=m"(after));
    EXPECT_EQ(third, 1.0 / 3) << std::hex << host.x87;
    EXPECT_EQ(inside.x87 & 0x0F3F, 0x023Fu) << std::hex << host.x87;
    EXPECT_EQ(before & 0x3F, after & 0x3F) << std::hex << host.x87;  // the host's flags
  }
}

#endif

}  // namespace
}  // namespace qv::test
