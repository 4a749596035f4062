#include "bench/Bench.h"
#include "bench/ResizeAccuracy.h"
#include "bench/WarpAccuracy.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>

#include "qvAcceleratedLib/Settings.h"
#include "tests/support/Levels.h"
#include "tests/support/Random.h"

#if defined(QV_BENCH_OPENCV)
#include <opencv2/core.hpp>
#endif

namespace bench {

namespace {

std::vector<std::function<void(Suite&)>>& Families() {
  static std::vector<std::function<void(Suite&)>> families;
  return families;
}

unsigned char* NewBuffer(std::size_t size, std::uint64_t seed) {
  size = (size + 4095) / 4096 * 4096;
  auto* const buffer = static_cast<unsigned char*>(std::aligned_alloc(4096, size));
  if (!buffer) std::abort();
  qv::test::Random(seed).Fill(buffer, size);
  return buffer;
}

}  // namespace

Family::Family(std::function<void(Suite&)> registerJobs) {
  Families().push_back(std::move(registerJobs));
}

Buffers Suite::Frame(IppiSize size) {
  static std::map<std::pair<int, int>, Buffers> frames;
  Buffers& b = frames[{size.width, size.height}];
  if (b.src) return b;
  const std::size_t spare = static_cast<std::size_t>(size.width) * 4 * 4;
  std::uint64_t seed = 1;
  for (unsigned char** p : {&b.src, &b.src2, &b.src3, &b.dst, &b.dst2, &b.dst3})
    *p = NewBuffer(Pixels(size) * 4 + 2 * spare, seed++) + (spare + 63) / 64 * 64;
  return b;
}

void Suite::Ours(const std::string& job, IppiSize size, double movedBytes,
                 std::function<void()> work, const std::string& label) {
  Add(job, size, "ours", 1, false, movedBytes, work, label);
  Add(job, size, "ours", 2, false, movedBytes, work, label);
  Add(job, size, "plain", 1, true, movedBytes, std::move(work), label);
}

void Suite::Peer(const std::string& job, IppiSize size, const std::string& name,
                 std::function<void()> work, const std::string& label) {
  Add(job, size, name, 1, false, 0, std::move(work), label);
}

// The name of a benchmark is "job|contender|size|threads"; scripts/performance.py takes it apart.
void Suite::Add(const std::string& job, IppiSize size, const std::string& contender, int threads,
                bool plain, double movedBytes, std::function<void()> work,
                const std::string& label) {
  const std::string frame =
      label.empty() ? std::to_string(size.width) + "x" + std::to_string(size.height) : label;
  const double pixels = static_cast<double>(Pixels(size));
  benchmark::RegisterBenchmark(
      (job + "|" + contender + "|" + frame + "|" + std::to_string(threads)).c_str(),
      [=](benchmark::State& state) {
        const qv::test::UseBudget budget(threads);
        const qv::test::UseLevel level(plain ? qv::test::AvailableLevels().front()
                                             : qv::test::AvailableLevels().back());
        for (auto _ : state) {
          work();
          benchmark::ClobberMemory();
        }
        state.counters["pixels"] = pixels;
        state.counters["moved"] = movedBytes;
      })
      ->UseRealTime()
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace bench

int main(int argc, char** argv) {
#if defined(QV_BENCH_OPENCV)
  cv::setNumThreads(1);  // peers run on one thread, like the figures they stand beside
#endif
  if (argc == 2 && std::string(argv[1]) == "--accuracy") {
    bench::PrintResizeAccuracy();
    bench::PrintWarpAccuracy();
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::AddCustomContext("levels", qv::test::AvailableLevels().back().name);
  benchmark::AddCustomContext("version", QVACCELERATEDLIB_VERSION);
  bench::Suite suite;
  for (const auto& family : bench::Families()) family(suite);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
