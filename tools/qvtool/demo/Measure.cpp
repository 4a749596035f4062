#include "demo/Measure.h"

#include <algorithm>
#include <chrono>
#include <limits>

#include "io/Status.h"

namespace qvtool::demo {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int kFewestRuns = 5;
constexpr int kMostRuns = 41;
constexpr auto kEnough = 80ms;

void MakeCalls(const Panel& panel) {
  for (const Call& call : panel.calls) Check(call.text.c_str(), call.make());
}

}  // namespace

double Measure(const Panel& panel) {
  if (panel.prepare) panel.prepare();
  MakeCalls(panel);  // touches the memory and wakes the threads
  double fastest = std::numeric_limits<double>::infinity();
  Clock::duration spent{};
  for (int runs = 0; runs < kFewestRuns || (runs < kMostRuns && spent < kEnough); ++runs) {
    if (panel.prepare) panel.prepare();
    const auto begin = Clock::now();
    MakeCalls(panel);
    const auto took = Clock::now() - begin;
    spent += took;
    fastest = std::min(fastest, std::chrono::duration<double, std::milli>(took).count());
  }
  return fastest;
}

}  // namespace qvtool::demo
