// A host with an OpenMP runtime of its own: what it calls inside its parallel regions, active or
// not, stays on the threads that call, and outside of them the runtime's settings change nothing.
#include <omp.h>

#include <cstdio>

#include "tests/hosts/Mirrored.h"
#include "tests/support/ThreadCount.h"

namespace {

constexpr IppiSize kSize = {1920, 1080};  // long enough for the team, were there no region

// Many calls without a pause: a call that is short alone would stay on its thread anyway.
bool Mirrors(hosts::Images& images) {
  for (int i = 0; i < 40; ++i)
    if (images.Call(CqvAccLib::qvMirror) != StatusOk) return false;
  return images.IsMirrored();
}

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
  hosts::Images images(kSize);
  for (const int threads : {1, 2, 8}) {
    int right = 0, came = 0;
#pragma omp parallel num_threads(threads) reduction(+ : right, came)
    {
      hosts::Images own(kSize);
      right += Mirrors(own);
      ++came;
    }
    Require(right == came && came == threads, "bytes inside a region", threads);
    // The runtime keeps its threads.
    Require(Threads() == threads, "threads of its own in a region", threads);
  }
  bool right = false;
#pragma omp parallel if (0)
  right = Mirrors(images);
  Require(right, "bytes inside a region that is off", 0);
  Require(Threads() == 8, "threads made in a region that is off", 0);

  // Outside: the team.
  Require(Mirrors(images), "bytes outside", 0);
  if (failures == 0) std::printf("%d threads of the team\n", Threads() - 8);
  return failures != 0;
}
