// Benchmarks of the library beside its peers, on Google Benchmark.
//
// A family's file registers jobs; a job is one piece of work at one frame size, done by several
// contenders on the same buffers:
//
//   static const bench::Family transfer([](bench::Suite& s) {
//     for (const IppiSize size : bench::kFrames) {
//       const bench::Buffers b = s.Frame(size);
//       s.Ours("copy 1 byte", size, 2, [=] {
//         CqvAccLib::qvCopy(CqvAccLib::OneChannel, b.src, size.width, b.dst, size.width, size);
//       });
//       s.Peer("copy 1 byte", size, "memcpy", [=] { memcpy(b.dst, b.src, Pixels(size)); });
//     }
//   });
//
// A peer that does less, or rounds coarser, is named with a leading "~". Names of jobs are the
// rows of docs/performance.md.
#ifndef QV_BENCH_BENCH_H
#define QV_BENCH_BENCH_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"

namespace bench {

inline constexpr IppiSize kFrames[] = {{640, 360}, {1920, 1080}, {3840, 2160}};

inline std::size_t Pixels(IppiSize size) {
  return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

std::string Text(IppiSize size);  // "640x360"

// A size and the one that it is made.
struct Scaling {
  std::string Label() const { return Text(from) + " to " + Text(to); }

  IppiSize from, to;
};

// Work buffers of a frame size, shared by all jobs: random bytes, four bytes a pixel and some rows
// to spare on both sides, cache-line aligned.
struct Buffers {
  unsigned char* src;
  unsigned char* src2;
  unsigned char* src3;
  unsigned char* dst;
  unsigned char* dst2;
  unsigned char* dst3;
};

class Suite {
 public:
  Buffers Frame(IppiSize size);

  // Registers our own work as the library ships, and on one thread, on which the plain level runs
  // as well. `movedBytes` are the bytes read and written per pixel of `size`, for the memory limit.
  // `label` names the size in the table if it is not `size` itself ("640x360 to 1280x720").
  void Ours(const std::string& job, IppiSize size, double movedBytes, std::function<void()> work,
            const std::string& label = {});
  void Peer(const std::string& job, IppiSize size, const std::string& name,
            std::function<void()> work, const std::string& label = {});

 private:
  void Add(const std::string& job, IppiSize size, const std::string& contender, int threads,
           bool plain, double movedBytes, std::function<void()> work, const std::string& label);
};

// Whether --level limits the run to what an AVX2 processor has, or less.
bool IsLimited();

// Registers a family's jobs before the benchmarks run.
struct Family {
  explicit Family(std::function<void(Suite&)> registerJobs);
};

}  // namespace bench

#endif
