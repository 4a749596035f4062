// The team of threads among whatever a host does: many threads, forks, signals, no thread to be
// had.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

#include "qvAcceleratedLib/BandSplit.h"
#include "support/Levels.h"
#include "support/Random.h"
#include "tests/support/Operations.h"
#include "tests/support/ThreadCount.h"

#if defined(__linux__)
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#if defined(__SANITIZE_THREAD__)
#define QV_TEST_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define QV_TEST_TSAN 1
#endif
#endif

namespace qv::test {
namespace {

// How many calls of a run in four bands came out otherwise.
int Differences(const std::vector<Outcome>& expected) {
  const std::vector<Outcome> outcomes = RunAll();
  int differences = 0;
  for (std::size_t i = 0; i < outcomes.size(); ++i) {
    if (outcomes[i] == expected[i]) continue;
    ++differences;
    std::fprintf(stderr, "%s differs\n", Operations()[i].name.c_str());
  }
  return differences;
}

// Calls that fail would not show much.
TEST(Calls, Succeed) {
  for (const int budget : {1, 4}) {
    const UseBudget use(budget);
    const std::vector<Outcome> outcomes = RunAll();
    for (std::size_t i = 0; i < outcomes.size(); ++i)
      EXPECT_EQ(outcomes[i].status, StatusOk) << Operations()[i].name << ' ' << budget;
  }
}

// 16 threads at a time for QV_TEST_SECONDS (a second unless set), each with some calls in an order
// of its own, after which another thread takes its place.
TEST(Threads, MayCallAllOperationsAtOnce) {
  constexpr int kBudget = 4, kHostThreads = 16;
  const UseBudget budget(kBudget);
#if defined(__linux__)
  const int before = ThreadsOfProcess("qvBandTeam");
#endif
  const std::vector<Outcome> expected = RunAll();
  const char* const text = std::getenv("QV_TEST_SECONDS");
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::seconds(text ? std::atoi(text) : 1);
  std::atomic<long> calls{0}, differences{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kHostThreads; ++t)
    threads.emplace_back([&, t] {
      Random random(static_cast<std::uint64_t>(t));
      while (std::chrono::steady_clock::now() < end)
        std::thread([&] {
          Runner runner;
          for (int i = 0; i < 50; ++i) {
            const auto call = static_cast<std::size_t>(random.Next() % Operations().size());
            if (runner.Run(Operations()[call]) != expected[call]) ++differences;
            ++calls;
          }
        }).join();
    });
  for (std::thread& thread : threads) thread.join();
  std::printf("%ld calls of %zu kinds on 16 threads\n", calls.load(), Operations().size());
  EXPECT_EQ(differences, 0);
#if defined(__linux__)
  // Earlier tests may have had a larger budget.
  EXPECT_LE(ThreadsOfProcess("qvBandTeam"), std::max(before, kBudget - 1));
#endif
}

// As a user has it: short calls stay on their thread, long ones are shared.
TEST(Threads, AsMeasuredGiveTheSameBytes) {
  std::vector<Outcome> expected;
  {
    const UseBudget budget(4);
    expected = RunAll();
  }
  const UseBudget budget(4, Sharing::Measured);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Differences(expected), 0);

  // The last of two bands lies below the projected region, also where both are done in one piece.
  const std::vector<unsigned char> source(200 * 400);
  std::vector<unsigned char> scaled(100 * 402);
  for (const Sharing sharing : {Sharing::Measured, Sharing::Always}) {
    const UseBudget two(2, sharing);
    EXPECT_EQ(CqvAccLib::qvResize(CqvAccLib::OneChannel, source.data(), {200, 400}, 200,
                                  {0, 0, 200, 400}, scaled.data(), 100, {100, 402}, .5, .5, 2),
              StatusNothingToDoWarning);
  }
}

// Bands that wait for each other find a thread each; a band that calls again stays on its thread.
TEST(Threads, RunTheBandsOfACallSideBySide) {
  const UseBudget budget(4);
  std::atomic<int> arrived{0}, strangers{0};
  const IppStatus status = RunBands(Bands{4, 65, 260}, {260, 0}, [&](Band) {
    for (++arrived; arrived < 4;) std::this_thread::yield();
    const auto self = std::this_thread::get_id();
    return RunBands(Bands{4, 65, 260}, {260, 1}, [&](Band inner) {
      strangers += std::this_thread::get_id() != self;
      return inner.first == 195 ? StatusOddSizeWarning : StatusSizeErr;
    });
  });
  EXPECT_EQ(status, StatusOddSizeWarning);
  EXPECT_EQ(strangers, 0);
}

#if defined(__linux__)
TEST(Threads, AnAffinityMaskThatShrinksChangesNoByte) {
  const UseBudget budget(4);
  const std::vector<Outcome> expected = RunAll();
  cpu_set_t old, one;
  ASSERT_EQ(sched_getaffinity(0, sizeof old, &old), 0);
  int cpu = 0;
  while (!CPU_ISSET(cpu, &old)) ++cpu;
  CPU_ZERO(&one);
  CPU_SET(cpu, &one);
  ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
  const int differences = Differences(expected);
  ASSERT_EQ(sched_setaffinity(0, sizeof old, &old), 0);
  EXPECT_EQ(differences, 0);
}
#endif

// The thread sanitizer does not follow a child that makes threads.
#if defined(__linux__) && !defined(QV_TEST_TSAN)

// Runs the check in a forked child; whether it returned true, and in time.
template <class Check>
bool HoldsInChild(const Check& check) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);  // ends a child that waits for threads it has not
    _exit(check() ? 0 : 1);
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int TeamThreads() { return ThreadsOfProcess("qvBandTeam"); }

TEST(Threads, AForkedChildHasATeamOfItsOwn) {
  const UseBudget budget(4);
  const std::vector<Outcome> expected = RunAll();  // makes the team
  const auto holds = [&] { return Differences(expected) == 0 && TeamThreads() == 3; };
  EXPECT_TRUE(HoldsInChild(holds));
  EXPECT_TRUE(HoldsInChild([&] { return holds() && HoldsInChild(holds); }));  // grandchildren, too
  EXPECT_EQ(Differences(expected), 0);
}

TEST(Threads, MayCallWhileAnotherOneForks) {
  const UseBudget budget(4);
  const std::vector<Outcome> expected = RunAll();
  std::atomic<bool> done{false};
  std::atomic<int> differences{0};
  std::thread caller([&] {
    while (!done) differences += Differences(expected);
  });
  for (int i = 0; i < 20; ++i)
    EXPECT_TRUE(HoldsInChild([&] {
      Runner runner;
      const auto first = static_cast<std::size_t>(i);
      return runner.Run(Operations()[first]) == expected[first] && TeamThreads() <= 3;
    }));
  done = true;
  caller.join();
  EXPECT_EQ(differences, 0);
}

// Where the system has no thread to give, the calling thread does it all, without a word.
TEST(Threads, AreDoneWithoutWhereThereAreNone) {
  const UseBudget budget(4);
  const std::vector<Outcome> expected = RunAll();
  const auto alone = [&] {
    if (freopen("/dev/full", "w", stderr) == nullptr) return false;
    return Differences(expected) == 0 && TeamThreads() == 0 && !ferror(stderr);
  };
#if !defined(__SANITIZE_ADDRESS__)  // which needs terabytes of address space
  EXPECT_TRUE(HoldsInChild([&] {
    Runner runner;
    {
      // What the test itself needs it has before there is no more.
      const UseBudget withoutThreads(4, Sharing::OnOneThread);
      for (const Operation& operation : Operations()) runner.Run(operation);
    }
    long pages = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (!file || std::fscanf(file, "%ld", &pages) != 1) return false;
    // Less than a thread's stack; the C library may have kept one, though.
    const rlim_t room = static_cast<rlim_t>(pages) * static_cast<rlim_t>(getpagesize());
    const rlimit limit = {room + (256 << 10), room + (256 << 10)};
    if (setrlimit(RLIMIT_AS, &limit) != 0) return false;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const Outcome outcome = runner.Run(Operations()[i]);
      // What asks for work memory may be refused it.
      if (outcome.status == StatusMemAllocErr || outcome.status == StatusNullPtrErr) continue;
      if (outcome != expected[i]) return false;
    }
    return true;
  }));
#endif
  EXPECT_TRUE(HoldsInChild([&] {
    const rlimit limit = {1, 1};
    // Root is not limited.
    return setrlimit(RLIMIT_NPROC, &limit) == 0 && (geteuid() != 0 || setuid(65534) == 0) &&
           alone();
  }));
}

// A signal for the process waits until the host takes it, on a thread of its own.
TEST(Threads, OfTheTeamTakeNoSignals) {
  const UseBudget budget(2);
  char name[16] = {};
  std::atomic<int> arrived{0};
  RunBands(Bands{2, 65, 130}, {130, 0}, [&](Band) {
    for (++arrived; arrived < 2;) std::this_thread::yield();
    if (gettid() != getpid()) prctl(PR_GET_NAME, name);
    return StatusOk;
  });
  EXPECT_STREQ(name, "qvBandTeam");

  static std::atomic<int> taken;
  taken = 0;
  struct sigaction action = {}, oldAction;
  action.sa_handler = [](int) { ++taken; };
  ASSERT_EQ(sigaction(SIGUSR1, &action, &oldAction), 0);
  sigset_t blocked, old;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &blocked, &old);
  kill(getpid(), SIGUSR1);
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(taken, 0);
  pthread_sigmask(SIG_SETMASK, &old, nullptr);
  EXPECT_EQ(taken, 1);
  sigaction(SIGUSR1, &oldAction, nullptr);
}

// Between calls nobody uses a processor.
TEST(Threads, SleepWhenThereIsNothingToDo) {
  const UseBudget budget(4);
  RunAll();
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
  const auto used = [] {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_usec + usage.ru_stime.tv_usec +
           1000000 * (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec);
  };
  const auto before = used();
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  EXPECT_LT(used() - before, 10000);
}

#endif

}  // namespace
}  // namespace qv::test
