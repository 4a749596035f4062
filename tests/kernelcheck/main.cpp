// kernelcheck: every kernel at every level against the plain rows, on random guarded calls.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <string>

#include "dispatch/VariantIndex.h"
#include "tests/kernelcheck/Case.h"

namespace {

using namespace qv::test;

const char* const kUsage =
    "usage: kernelcheck [--kernel GLOB] [--level NAME] [--seed N] [--calls N] [--case N]\n"
    "                   [--bench [--size WxH] [--seconds S]] [--list]\n"
    "\n"
    "Runs each kernel on random calls at every level that this processor has, or at one of\n"
    "them, and compares each byte of the destinations and around them with the plain rows.\n"
    "  --calls   random calls per kernel (default 2000)\n"
    "  --case    only the call of this number, as a failure line prints it\n"
    "  --bench   time each kernel at each level instead, in ns per pixel\n";

struct Options {
  std::string kernel = "*", level;
  std::uint64_t seed = std::random_device{}();
  int calls = 2000, onlyCase = -1;
  bool bench = false, list = false;
  IppiSize size = {1920, 1080};
  double seconds = 0.4;
};

bool Matches(const char* glob, const char* text) {
  if (*glob == '*') return Matches(glob + 1, text) || (*text && Matches(glob, text + 1));
  if (!*glob) return !*text;
  return *glob == *text && Matches(glob + 1, text + 1);
}

Options ReadOptions(int argc, char** argv) {
  Options o;
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    const auto value = [&]() -> const char* {
      if (i + 1 == argc) {
        std::fprintf(stderr, "kernelcheck: %s wants a value\n", name.c_str());
        std::exit(2);
      }
      return argv[++i];
    };
    if (name == "--kernel") o.kernel = value();
    else if (name == "--level") o.level = value();
    else if (name == "--seed") o.seed = std::strtoull(value(), nullptr, 0);
    else if (name == "--calls") o.calls = std::atoi(value());
    else if (name == "--case") o.onlyCase = std::atoi(value());
    else if (name == "--seconds") o.seconds = std::atof(value());
    else if (name == "--bench") o.bench = true;
    else if (name == "--list") o.list = true;
    else if (name == "--size" && std::sscanf(value(), "%dx%d", &o.size.width, &o.size.height) == 2)
      continue;
    else {
      std::fputs(kUsage, name == "--help" ? stdout : stderr);
      std::exit(name == "--help" ? 0 : 2);
    }
  }
  return o;
}

// A check for every kernel there is: a kernel without one is a hole in the net.
bool EveryKernelIsChecked() {
  bool all = true;
#define QV_KERNEL(name, ...)                                                            \
  if (std::none_of(AllChecks().begin(), AllChecks().end(),                                 \
                   [](const Check& c) { return !std::strcmp(c.kernel, #name); })) {      \
    std::fprintf(stderr, "kernelcheck: no check for %s\n", #name);                       \
    all = false;                                                                           \
  }
#include "kernels/Kernels.def"
  return all;
}

int RunBench(const Options& o, Case& c, const std::vector<Check>& checks) {
  std::printf("ns per pixel, %d x %d, one thread\n", o.size.width, o.size.height);
  for (const Check& check : checks) {
    c.BeginBench(o.size, o.seconds);
    check.run(c);
    if (!c.failure.empty()) {
      std::printf("%-32s FAILED at %s: %s\n", check.kernel, c.failedLevel.c_str(),
                  c.failure.c_str());
      return 1;
    }
    std::printf("%-32s", check.kernel);
    for (const Timing& t : c.timings)
      std::printf("  %s %.4f", t.level.c_str(), t.nanosecondsPerPixel);
    std::printf("\n");
    std::fflush(stdout);
  }
  return 0;
}

int RunChecks(const Options& o, Case& c, const std::vector<Check>& checks) {
  int failures = 0;
  long long calls = 0;
  std::map<int, long long> statuses;
  for (const Check& check : checks) {
    std::uint64_t name = 0;
    for (const char* p = check.kernel; *p; ++p) name = name * 131 + static_cast<unsigned char>(*p);
    for (int i = 0; i < o.calls; ++i) {
      if (o.onlyCase >= 0 && i != o.onlyCase) continue;
      c.Begin(Random(o.seed ^ name).Next() + static_cast<std::uint64_t>(i));
      check.run(c);
      ++calls;
      ++statuses[c.plainResult];
      if (c.failure.empty()) continue;
      std::printf("FAILED: %s at %s: %s\n"
                  "  kernelcheck --kernel %s --level %s --seed %llu --case %d\n",
                  check.kernel, c.failedLevel.c_str(), c.failure.c_str(), check.kernel,
                  c.failedLevel.c_str(), static_cast<unsigned long long>(o.seed), i);
      ++failures;
      break;
    }
  }
  std::printf("%lld calls, statuses:", calls);
  for (const auto& [status, count] : statuses) std::printf(" %d (%lld)", status, count);
  std::printf("\n%zu kernels, %d failed\n", checks.size(), failures);
  return failures ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  const Options o = ReadOptions(argc, argv);
  std::printf("seed %llu\n", static_cast<unsigned long long>(o.seed));
  std::fflush(stdout);
  if (!EveryKernelIsChecked()) return 1;

  std::vector<Check> checks;
  for (const Check& check : AllChecks())
    if (Matches(o.kernel.c_str(), check.kernel)) checks.push_back(check);
  if (checks.empty()) {
    std::fprintf(stderr, "kernelcheck: no kernel matches %s\n", o.kernel.c_str());
    return 2;
  }
  if (o.list) {
    for (const Check& check : checks) std::printf("%s\n", check.kernel);
    return 0;
  }

  std::vector<Level> levels;
  for (const Level& level : AvailableLevels())
    if (o.level.empty() || o.level == level.name) levels.push_back(level);
  if (levels.empty()) {
    std::fprintf(stderr, "kernelcheck: this processor has no level %s\n", o.level.c_str());
    return 1;
  }
  std::printf("chosen: slot %d, wide %d, carry-less %d\n", qv::VariantIndex, qv::WideLevel,
              qv::CarrylessLevel);
  std::printf("last cache: %lld KiB, gathers: %s, division: %s, long moves: %s\n",
              static_cast<long long>(qv::LastCacheBytes / 1024),
              qv::QuickGathers ? "quick" : "slow", qv::QuickDivision ? "quick" : "slow",
              qv::LongMoveBytes == qv::kNoLongMoves ? "none" : "quick");
  std::printf("levels:");
  for (const Level& level : levels) std::printf(" %s", level.name);
  std::printf("\n");
  std::fflush(stdout);

  std::vector<std::unique_ptr<GuardedMemory>> memory;
  Case c(memory, levels);
  return o.bench ? RunBench(o, c, checks) : RunChecks(o, c, checks);
}
