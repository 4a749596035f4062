// Start-up: the thread budget, where it comes from, and what a loaded library has.
#include <gtest/gtest.h>
#include <limits.h>

#include "dispatch/ProcessorInfo.h"
#include "dispatch/VariantIndex.h"
#include "qvAcceleratedLib/HostCounts.h"
#include "qvAcceleratedLib/Settings.h"
#include "qvAcceleratedLib/Startup.h"

#if defined(__linux__)
#include <sched.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "qvAcceleratedLib/CpuQuota.h"
#endif

namespace qv {
namespace {

class Startup : public testing::Test {
 protected:
  ~Startup() override {
    ThreadBudget = budget_;
    HostProcessorInfo = info_;
    SelectProcessorVariant();
  }

 private:
  const int budget_ = ThreadBudget;
  const unsigned info_ = HostProcessorInfo;
};

int givenFirst, givenSecond;
int foundFirst, foundSecond;

void WriteCounts(int* first, int* second) {
  *first = givenFirst;
  *second = givenSecond;
}

void WriteNothing(int* first, int* second) {
  foundFirst = *first;
  foundSecond = *second;
}

unsigned SomeInfo() { return 0xF00D; }
unsigned NoInfo() { return 0; }

TEST_F(Startup, SetsTheBudgetToTheProduct) {
  struct {
    int before, first, second, after;
  } const cases[] = {
      {1, 2, 2, 4},    {1, 0, 0, 1},    {1, 0, 8, 1},   {1, 1, 1, 1},      {1, 64, 2, 128},
      {1, -1, 4, 1},   {1, -2, -3, 6},  {8, 2, 2, 8},   {8, 3, 3, 9},      {4, 2, 2, 4},
      {1, 65536, 65536, 1}, {1, INT_MAX, 2, 1},
  };
  for (const auto& c : cases) {
    ThreadBudget = c.before;
    givenFirst = c.first;
    givenSecond = c.second;
    LibraryStartup(WriteCounts, SomeInfo);
    EXPECT_EQ(ThreadBudget, c.after) << c.before << ", " << c.first << " x " << c.second;
  }

  ThreadBudget = 1;
  foundFirst = foundSecond = -1;
  LibraryStartup(WriteNothing, SomeInfo);
  EXPECT_EQ(foundFirst, 0);
  EXPECT_EQ(foundSecond, 0);
  EXPECT_EQ(ThreadBudget, 1);
}

TEST_F(Startup, StoresTheProcessorInformation) {
  HostProcessorInfo = 1;
  LibraryStartup(WriteNothing, NoInfo);
  EXPECT_EQ(HostProcessorInfo, 0u);
  LibraryStartup(WriteNothing, SomeInfo);
  EXPECT_EQ(HostProcessorInfo, 0xF00Du);
  LibraryStartup();
  EXPECT_EQ(HostProcessorInfo != 0, ProcessorInfoOf(ReadCpuidLeaves()).hasSse2 != 0);
}

TEST_F(Startup, ChoosesTheVariantOfThisProcessor) {
  const CpuidLeaves leaves = ReadCpuidLeaves();
  VariantIndex = WideLevel = CarrylessLevel = -1;
  LibraryStartup(WriteNothing, NoInfo);
  EXPECT_EQ(VariantIndex, VariantIndexOf(DetectCpuCode(leaves)));
  EXPECT_EQ(WideLevel, VariantIndex == 4 ? WideLevelOf(leaves) : 0);
  EXPECT_EQ(CarrylessLevel, VariantIndex == 4 ? CarrylessLevelOf(leaves) : 0);
}

#if defined(__linux__)

TEST(CpuQuota, ReadsQuotas) {
  struct {
    const char* cpuMax;
    int cpus;
  } const version2[] = {
      {"max 100000\n", 0},     {"100000 100000\n", 1}, {"150000 100000\n", 2},
      {"200000 100000", 2},    {"200001 100000\n", 3}, {"1000 100000\n", 1},
      {"1 1000000\n", 1},      {"6400000 100000\n", 64}, {"50000\n", 0},
      {"", 0},                 {"\n", 0},              {"100000 0\n", 0},
      {"0 100000\n", 0},       {"-1 100000\n", 0},     {"100000 -5\n", 0},
      {"99999999999999999999 1\n", INT_MAX},           {"lots of it\n", 0},
  };
  for (const auto& c : version2) EXPECT_EQ(CpusOfCpuMax(c.cpuMax), c.cpus) << c.cpuMax;
  EXPECT_EQ(CpusOfCpuMax(nullptr), 0);

  EXPECT_EQ(CpusOfCfs("-1\n", "100000\n"), 0);
  EXPECT_EQ(CpusOfCfs("350000\n", "100000\n"), 4);
  EXPECT_EQ(CpusOfCfs("50000\n", "50000\n"), 1);
  EXPECT_EQ(CpusOfCfs("50000\n", nullptr), 0);
  EXPECT_EQ(CpusOfCfs(nullptr, "50000\n"), 0);
  EXPECT_EQ(CpusOfCfs("x", "50000\n"), 0);
}

std::map<std::string, std::string> files;

char* ReadMadeUp(const char* path) {
  const auto found = files.find(path);
  if (found == files.end()) return nullptr;
  char* text = new char[found->second.size() + 1];
  memcpy(text, found->second.c_str(), found->second.size() + 1);
  return text;
}

TEST(CpuQuota, FollowsTheControlGroups) {
  const std::string unified =
      "30 23 0:26 / /cg rw,nosuid shared:9 - cgroup2 cgroup2 rw,nsdelegate\n";
  const std::string other = "22 1 8:1 / / rw - ext4 /dev/sda1 rw\n";
  const std::string part = "32 30 0:28 /pods/ab /cg ro - cgroup cgroup rw,cpu\n";
  const struct {
    const char* name;
    int cpus;
    std::string group, mounts;  // none if empty
    std::map<std::string, int> quotas;  // of directories, in microseconds of 100000; none below 0
  } cases[] = {
      {"no /proc", 0, "", "", {{"/cg", 100000}}},
      {"no mounts", 0, "0::/\n", "", {{"/cg", 100000}}},
      {"not mounted", 0, "0::/\n", other, {{"", 100000}}},
      {"no quota", 0, "0::/a\n", other + unified, {}},
      {"container's own root", 2, "0::/\n", other + unified, {{"/cg", 150000}}},
      {"own group", 3, "0::/a/b", unified, {{"/cg/a/b", 300000}, {"/cg/a", 400000}, {"/cg", -1}}},
      {"parent's quota", 3, "0::/a/b/c\n", unified, {{"/cg/a/b/c", 800000}, {"/cg/a", 300000}}},
      {"mount point's quota", 1, "0::/a/b\n", unified, {{"/cg/a/b", 800000}, {"/cg", 10000}}},
      {"nothing above the mount point", 0, "0::/a\n", unified, {{"", 100000}}},
      {"version 1, among others", 4, "12:cpuset:/x\n4:cpuacct,cpu:/a:b\n1:name=init:/y\n",
       "31 30 0:27 / /cg/cpuset rw - cgroup cgroup rw,cpuset\n"
       "32 30 0:28 / /cg/both rw - cgroup cgroup rw,cpuacct,cpu\n",
       {{"/cg/cpuset", 100000}, {"/cg/both/a:b", 350000}, {"/cg/both", -1}}},
      {"part of the hierarchy mounted", 2, "4:cpu:/pods/ab/c\n", part, {{"/cg/c", 200000}}},
      {"name from outside: the mount point stands for it", 2, "4:cpu:/pods/abc\n", part,
       {{"/cgc", 100000}, {"/cg", 200000}}},
      {"mounted twice, name from outside: the first", 5, "0::/a\n",
       "30 23 0:26 /b /b rw - cgroup2 none rw\n31 23 0:26 /c /c rw - cgroup2 none rw\n",
       {{"/b", 500000}, {"/c", 100000}}},
      {"mounted twice: the one that shows the group", 5, "0::/a\n",
       "30 23 0:26 /other /elsewhere rw - cgroup2 none rw\n" + unified,
       {{"/elsewhere", 100000}, {"/cg/a", 500000}}},
      {"both versions: the smaller", 2, "4:cpu:/\n0::/a\n",
       "32 30 0:28 / /v1 rw - cgroup cgroup rw,cpu\n" + unified,
       {{"/v1", 700000}, {"/cg/a", 200000}}},
      {"blank and backslash in the mount point", 6, "0::/a\n",
       "30 23 0:26 / /my\\040cg\\134 rw - cgroup2 none rw\n", {{"/my cg\\/a", 600000}}},
      {"malformed", 0, "\n:\n::\n0:\n0", "\n - \n1 2 3 4 5\n1 2 3 4 5 6 - cgroup2", {}},
      {"longer than a path may be", 0, "0::/" + std::string(9000, 'a'), unified,
       {{"/cg", 100000}}},
  };
  for (const auto& c : cases) {
    files.clear();
    if (!c.group.empty()) files["/proc/self/cgroup"] = c.group;
    if (!c.mounts.empty()) files["/proc/self/mountinfo"] = c.mounts;
    for (const auto& [directory, quota] : c.quotas) {  // as both versions have it
      files[directory + "/cpu.max"] = (quota < 0 ? "max" : std::to_string(quota)) + " 100000\n";
      files[directory + "/cpu.cfs_quota_us"] = std::to_string(quota);
      files[directory + "/cpu.cfs_period_us"] = "100000";
    }
    EXPECT_EQ(QuotaCpus(ReadMadeUp), c.cpus) << c.name;
  }
}

TEST(CpuQuota, ReadsWholeFiles) {
  EXPECT_EQ(ReadFile("/nonexistent/file"), nullptr);
  EXPECT_EQ(ReadFile("/proc"), nullptr);
  char path[] = "/tmp/qv-startup-test-XXXXXX";
  const int file = mkstemp(path);
  ASSERT_GE(file, 0);
  std::string written;
  for (size_t size : {0u, 1u, 16383u, 16384u, 100000u}) {
    while (written.size() < size) written += static_cast<char>('a' + written.size() % 23);
    ASSERT_EQ(pwrite(file, written.data(), size, 0), static_cast<ssize_t>(size));
    const std::unique_ptr<char[]> read(ReadFile(path));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(written, read.get());
  }
  close(file);
  unlink(path);
}

constexpr char kChildMark[] = "QV_TEST_EXIT_WITH_BUDGET";

// Starts this program anew, on one CPU or on as many as it has, to run the test below alone, and
// returns its exit code.
int ExitCodeOfLoadedProcess(bool pinned) {
  const pid_t child = fork();
  if (child == 0) {
    cpu_set_t all;
    if (pinned && sched_getaffinity(0, sizeof all, &all) == 0) {
      int cpu = 0;
      while (!CPU_ISSET(cpu, &all)) ++cpu;
      cpu_set_t one;
      CPU_ZERO(&one);
      CPU_SET(cpu, &one);
      if (sched_setaffinity(0, sizeof one, &one) != 0) _exit(125);
    }
    setenv(kChildMark, "1", 1);
    execl("/bin/sh", "sh", "-c",
          QV_UNITTESTS " --gtest_filter=LoadedProcess.HasABudgetOfItsCpus >/dev/null",
          static_cast<char*>(nullptr));
    _exit(126);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

TEST(LoadedProcess, HasABudgetOfItsCpus) {
  // In the child nothing but loading has set the budget.
  if (getenv(kChildMark)) _exit(40 + ThreadBudget);
  int first = 0;
  int second = 0;
  CPUCount(&first, &second);
  ASSERT_GE(first * second, 1);
  if (first * second < 200) {
    EXPECT_EQ(ExitCodeOfLoadedProcess(false), 40 + first * second);
  }
  EXPECT_EQ(ExitCodeOfLoadedProcess(true), 41);
}

#endif

}  // namespace
}  // namespace qv
