#include "demo/Measure.h"

#include <algorithm>
#include <chrono>

#include "io/Status.h"

namespace qvtool::demo {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int kFewestRuns = 5;
constexpr int kMostRuns = 41;
constexpr auto kEnough = 150ms;

void MakeCalls(const Panel& panel) {
  for (const Call& call : panel.calls) Check(call.text.c_str(), call.make());
}

}  // namespace

Timing Measure(const Panel& panel) {
  if (panel.prepare) panel.prepare();
  MakeCalls(panel);  // touches the memory and wakes the threads
  std::vector<double> milliseconds;
  Clock::duration spent{};
  while (static_cast<int>(milliseconds.size()) < kFewestRuns ||
         (static_cast<int>(milliseconds.size()) < kMostRuns && spent < kEnough)) {
    if (panel.prepare) panel.prepare();
    const auto begin = Clock::now();
    MakeCalls(panel);
    const auto took = Clock::now() - begin;
    spent += took;
    milliseconds.push_back(std::chrono::duration<double, std::milli>(took).count());
  }
  return {*std::min_element(milliseconds.begin(), milliseconds.end()),
          static_cast<int>(milliseconds.size())};
}

}  // namespace qvtool::demo
