// A host that loads the library while it runs: a hundred times, and on a thread that is bound to
// one processor, which is not the library's concern. Prints how many threads it gets.
//
//   loadhost LIBRARY
#include <dlfcn.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/ThreadCount.h"

namespace {

using Dup = IppStatus(int type, const unsigned char* src, int srcStep, unsigned char* dst,
                      int dstStep, IppiSize size);

void Require(bool condition, const char* what) {
  if (condition) return;
  std::printf("FAILED: %s\n", what);
  std::exit(1);
}

// Loads the library, and has it do enough for all of its threads.
void* LoadAndCall(const char* path) {
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  Require(library, "dlopen");
  Dup* dup;
  *reinterpret_cast<void**>(&dup) =
      dlsym(library, "_ZN9CqvAccLib5qvDupENS_10qvDataTypeEPKhiPhi8IppiSize");
  Require(dup, "qvDup");
  static std::vector<unsigned char> source(1 << 22, 7), copied(3 << 22);
  for (int i = 0; i < 10; ++i)
    Require(dup(2, source.data(), 2048, copied.data(), 3 * 2048, {2048, 2048}) == StatusOk,
            "a call");
  Require(copied.front() == 7 && copied.back() == 7, "the bytes");
  return library;
}

}  // namespace

int main(int, char** argv) {
  const auto team = [] {
    usleep(200000);  // a thread takes its name when it has begun
    return qv::test::ThreadsOfProcess("qvBandTeam");
  };
  const pid_t child = fork();
  if (child == 0) {
    LoadAndCall(argv[1]);
    _exit(team());
  }
  int status = 0;
  Require(waitpid(child, &status, 0) == child && WIFEXITED(status), "a child that loads it");
  const int expected = WEXITSTATUS(status);

  std::thread([&] {
    cpu_set_t all, one;
    Require(sched_getaffinity(0, sizeof all, &all) == 0, "sched_getaffinity");
    int cpu = 0;
    while (!CPU_ISSET(cpu, &all)) ++cpu;
    CPU_ZERO(&one);
    CPU_SET(cpu, &one);
    Require(sched_setaffinity(0, sizeof one, &one) == 0, "sched_setaffinity");
    LoadAndCall(argv[1]);
    Require(team() == expected, "fewer threads, as a bound thread loaded it");
  }).join();
  for (int i = 0; i < 100; ++i) dlclose(LoadAndCall(argv[1]));
  Require(team() == expected, "threads of a library that is gone");
  std::printf("%d threads of the team\n", expected);
}
