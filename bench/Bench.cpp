#include "bench/Bench.h"
#include "bench/ResizeAccuracy.h"
#include "bench/WarpAccuracy.h"
#include "bench/YuvAccuracy.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <thread>

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "support/Levels.h"
#include "support/Random.h"

#include "bench/Peers.h"

#if defined(QV_BENCH_SWSCALE)
extern "C" {
#include <libavutil/cpu.h>
}
#endif

namespace bench {

namespace {

std::vector<std::function<void(Suite&)>>& Families() {
  static std::vector<std::function<void(Suite&)>> families;
  return families;
}

// The level that --level limits the run to.
std::string limit;

// Loops that do nothing for as long as the program runs, one for each processor.
bool busy = false;

void StartBusyLoops() {
  busy = true;
  for (unsigned i = 0; i < std::thread::hardware_concurrency(); ++i)
    if (fork() == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      for (volatile unsigned n = 0;;) n = n + 1;
    }
}

const qv::test::Level& LevelOfOurs() {
  const auto& levels = qv::test::AvailableLevels();
  const auto named = std::find_if(levels.begin(), levels.end(),
                                  [](const auto& level) { return level.name == limit; });
  return named != levels.end() ? *named : levels.back();
}

// Peers that can be told use what an AVX2 processor has as well. OpenCV is told by the environment,
// before it is loaded.
void LimitPeers() {
#if defined(QV_BENCH_LIBYUV)
  libyuv::MaskCpuFlags((libyuv::kCpuHasAVX512BW - 1) & ~libyuv::kCpuHasGFNI);
#endif
#if defined(QV_BENCH_SWSCALE)
  av_force_cpu_flags(av_get_cpu_flags() & (AV_CPU_FLAG_AVX512 - 1));
#endif
}

unsigned char* NewBuffer(std::size_t size, std::uint64_t seed) {
  size = (size + 4095) / 4096 * 4096;
  auto* const buffer = static_cast<unsigned char*>(std::aligned_alloc(4096, size));
  if (!buffer) std::abort();
  qv::test::Random(seed).Fill(buffer, size);
  return buffer;
}

}  // namespace

bool IsLimited() { return !limit.empty(); }

Family::Family(std::function<void(Suite&)> registerJobs) {
  Families().push_back(std::move(registerJobs));
}

namespace {

void Repeat(benchmark::State& state, const std::function<void()>& work) {
  for (auto _ : state) {
    work();
    benchmark::ClobberMemory();
  }
}

}  // namespace

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
  Add(job, size, "ours", 0, false, movedBytes, work, label);
  if (!busy && !IsLimited()) Add(job, size, "plain", 1, true, movedBytes, std::move(work), label);
}

void Suite::Peer(const std::string& job, IppiSize size, const std::string& name,
                 std::function<void()> work, const std::string& label) {
  if (busy) return;
  Add(job, size, name, 1, false, 0, std::move(work), label);
}

std::string Text(IppiSize size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

// The name of a benchmark is "job|contender|size|threads"; scripts/performance.py takes it apart. 0
// threads are as many as the library takes by itself; on one it stays when it is called as here,
// from inside a parallel region of the host's.
void Suite::Add(const std::string& job, IppiSize size, const std::string& contender, int threads,
                bool plain, double movedBytes, std::function<void()> work,
                const std::string& label) {
  const std::string frame = label.empty() ? Text(size) : label;
  const double pixels = static_cast<double>(Pixels(size));
  benchmark::RegisterBenchmark(
      (job + "|" + contender + "|" + frame + "|" + std::to_string(threads)).c_str(),
      [=](benchmark::State& state) {
        const qv::test::UseLevel level(plain ? qv::test::AvailableLevels().front()
                                             : LevelOfOurs());
        if (threads == 1) {
#pragma omp parallel num_threads(1)
          Repeat(state, work);
        } else {
          Repeat(state, work);
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
    bench::PrintYuvAccuracy();
    return 0;
  }
  if (argc > 1 && std::string(argv[1]) == "--busy") {
    bench::StartBusyLoops();
    ++argv, --argc;
  } else if (argc > 2 && std::string(argv[1]) == "--level") {
    bench::limit = argv[2];
    if (bench::LevelOfOurs().name != bench::limit) {
      std::fprintf(stderr, "qvbench: this machine has no level %s\n", argv[2]);
      return 2;
    }
    bench::LimitPeers();
    argv += 2, argc -= 2;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::AddCustomContext("levels", bench::LevelOfOurs().name);
  benchmark::AddCustomContext("version", QVACCELERATEDLIB_VERSION);
  bench::Suite suite;
  for (const auto& family : bench::Families()) family(suite);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
