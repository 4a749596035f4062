// Calls from many threads, from inside parallel regions, from forked children, and on whatever team
// the host's settings leave.
#include <gtest/gtest.h>
#include <omp.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

#include "tests/support/Levels.h"
#include "tests/support/Operations.h"
#include "tests/support/Random.h"

#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif
#if defined(__linux__)
#include <sched.h>
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

// 16 threads for QV_TEST_SECONDS (a second unless set), each with calls in an order of its own.
TEST(Threads, MayCallAllOperationsAtOnce) {
  const UseBudget budget(4);
  const std::vector<Outcome> expected = RunAll();
  const char* const text = std::getenv("QV_TEST_SECONDS");
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::seconds(text ? std::atoi(text) : 1);
  std::atomic<long> calls{0}, differences{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 16; ++t)
    threads.emplace_back([&, t] {
      Random random(static_cast<std::uint64_t>(t));
      Runner runner;
      while (std::chrono::steady_clock::now() < end) {
        const auto i = static_cast<std::size_t>(random.Next() % Operations().size());
        if (runner.Run(Operations()[i]) != expected[i]) ++differences;
        ++calls;
      }
    });
  for (std::thread& thread : threads) thread.join();
  std::printf("%ld calls of %zu kinds on 16 threads\n", calls.load(), Operations().size());
  EXPECT_EQ(differences, 0);
}

TEST(Threads, InsideParallelRegionsTheBytesAreTheSame) {
  const UseBudget budget(4);
  const std::vector<Outcome> expected = RunAll();
  const int levels = omp_get_max_active_levels();
  for (const int nested : {1, 4}) {
    omp_set_max_active_levels(nested);
    std::atomic<int> differences{0};
#pragma omp parallel num_threads(3)
    differences += Differences(expected);
    EXPECT_EQ(differences, 0) << nested;
  }
  omp_set_max_active_levels(levels);
}

TEST(Threads, TeamsOfAnySizeGiveTheSameBytes) {
  const UseBudget budget(4);
  const std::vector<Outcome> expected = RunAll();
  const int threads = omp_get_max_threads(), dynamic = omp_get_dynamic();
  for (const int team : {1, 2, 3, 9}) {
    omp_set_dynamic(team == 3);
    omp_set_num_threads(team);
    EXPECT_EQ(Differences(expected), 0) << team;
  }
  omp_set_num_threads(threads);
  omp_set_dynamic(dynamic);
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
#if !defined(_WIN32) && !defined(QV_TEST_TSAN)

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

TEST(Threads, AForkedChildOfAProcessWithATeamCompletesItsCalls) {
  const UseBudget budget(4);
  const std::vector<Outcome> expected = RunAll();  // makes the team
  EXPECT_TRUE(HoldsInChild([&] { return Differences(expected) == 0; }));
  EXPECT_TRUE(HoldsInChild([&] {  // grandchildren, too
    return HoldsInChild([&] { return Differences(expected) == 0; });
  }));
  // A child's new threads have teams as those of any process.
  EXPECT_TRUE(HoldsInChild([&] {
    int differences = 1;
    std::thread([&] { differences = Differences(expected); }).join();
    return differences == 0 && Differences(expected) == 0;
  }));
  EXPECT_EQ(Differences(expected), 0);
}

#endif

}  // namespace
}  // namespace qv::test
