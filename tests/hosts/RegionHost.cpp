// A host with an OpenMP runtime of its own: what it calls inside its parallel regions, active or not, stays
// on the threads that call, and outside of them the runtime's settings change nothing.
#include <omp.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/ThreadCount.h"

namespace {

constexpr IppiSize kSize = {1920, 1080};  // long enough for the team, were there no region
constexpr std::size_t kBytes = std::size_t{1920} * 1080;

struct Images {
  std::vector<unsigned char> source = std::vector<unsigned char>(kBytes), mirrored = source;
  Images() {
    for (std::size_t i = 0; i < kBytes; ++i) source[i] = static_cast<unsigned char>(i * 7 + i / 251);
  }
  // Many calls without a pause: a call that is short alone would stay on its thread anyway.
  bool Mirror() {
    for (int i = 0; i < 40; ++i)
      if (CqvAccLib::qvMirror(CqvAccLib::OneChannel, source.data(), kSize.width, mirrored.data(),
                              kSize.width, kSize, AxisHorizontal) != StatusOk)
        return false;
    for (int y = 0; y < kSize.height; ++y)
      if (std::memcmp(&mirrored[static_cast<std::size_t>(y) * 1920],
                      &source[static_cast<std::size_t>(kSize.height - 1 - y) * 1920], 1920) != 0)
        return false;
    return true;
  }
};

int failures = 0;

// What an emulator brings along.
const int kOtherThreads = qv::test::ThreadsOfProcess() - 1;
int Threads() { return qv::test::ThreadsOfProcess() - kOtherThreads; }

void Require(bool condition, const char* what, int number) {
  if (condition) return;
  std::printf("FAILED: %s (%d)\n", what, number);
  ++failures;
}

}  // namespace

// Prints how many threads the library makes outside of regions, which is its budget less one.
int main() {
  Images images;
  for (const int threads : {1, 2, 8}) {
    int right = 0, came = 0;
#pragma omp parallel num_threads(threads) reduction(+ : right, came)
    {
      Images own;
      right += own.Mirror();
      ++came;
    }
    Require(right == came && came == threads, "bytes inside a region", threads);
    // The runtime keeps its threads.
    Require(Threads() == threads, "threads of its own made in a region", threads);
  }
  bool right = false;
#pragma omp parallel if (0)
  right = images.Mirror();
  Require(right, "bytes inside a region that is off", 0);
  Require(Threads() == 8, "threads made in a region that is off", 0);

  // Outside: the team.
  Require(images.Mirror(), "bytes outside", 0);
  if (failures == 0) std::printf("%d threads of the team\n", Threads() - 8);
  return failures != 0;
}
