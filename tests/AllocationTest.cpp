// Every piece of work memory that an operation asks for is refused once: the status says so, nothing
// is written, and what had been obtained is given back.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <set>
#include <string>

#include "tests/support/Levels.h"
#include "tests/support/Operations.h"

namespace {

// Of arrays without exceptions, which the library alone allocates here.
std::atomic<int> requests{0}, refusedFrom{-1}, refusedTo{-1};
std::atomic<long> held{0};

}  // namespace

// All array forms come in one piece, so that sanitizers see them match.
void* operator new[](std::size_t n) {
  void* const p = std::malloc(n ? n : 1);
  if (!p) std::abort();
  ++held;
  return p;
}

void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
  const int request = requests++;
  if (request >= refusedFrom && request < refusedTo) return nullptr;
  void* const p = std::malloc(n ? n : 1);
  if (p) ++held;
  return p;
}

void operator delete[](void* p) noexcept {
  if (p) --held;
  std::free(p);
}

void operator delete[](void* p, std::size_t) noexcept { ::operator delete[](p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { ::operator delete[](p); }

namespace qv::test {
namespace {

class Refuse {
 public:
  Refuse(int from, int to) {
    requests = 0;
    refusedFrom = from;
    refusedTo = to;
  }
  ~Refuse() { refusedTo = refusedFrom = -1; }
};

std::string OperationOf(const OperationCall& call) { return call.name.substr(0, call.name.find(' ')); }

class Allocation : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Budgets, Allocation, testing::Values(1, 4));

TEST_P(Allocation, RefusedGivesTheStatusAndLeavesTheDestination) {
  const UseBudget budget(GetParam());
  Frames frames;
  const std::uint64_t untouched = frames.Digest();
  std::set<std::string> allocating;
  for (const OperationCall& call : AllCalls()) {
    SCOPED_TRACE(call.name);
    int needed;
    {
      const Refuse none(-1, -1);
      const long before = held;
      RunCall(call, frames);
      needed = requests;
      EXPECT_EQ(held, before);
    }
    if (needed == 0) continue;
    allocating.insert(OperationOf(call));
    frames.RestoreDestinations();
    const long before = held;
    const Refuse all(0, needed);
    const IppStatus status = call.call(frames);
    // A band of a resize that has no memory has no buffer to pass on.
    EXPECT_TRUE(status == StatusMemAllocErr || (status == StatusNullPtrErr && GetParam() > 1))
        << status;
    EXPECT_EQ(frames.Digest(), untouched);
    EXPECT_EQ(held, before);
  }
  EXPECT_EQ(allocating, (std::set<std::string>{"qvResize", "qvResizeYUV422"}));
}

// Makes every call again and again, with its first, second, ... request refused, until it makes no
// further one. What was obtained is given back; `check` looks at the rest.
template <class Check>
void RefuseEachRequest(Frames& frames, Check check) {
  for (const OperationCall& call : AllCalls()) {
    SCOPED_TRACE(call.name);
    for (int k = 0;; ++k) {
      SCOPED_TRACE(k);
      frames.RestoreDestinations();
      const long before = held;
      const Refuse one(k, k + 1);
      const IppStatus status = call.call(frames);
      EXPECT_EQ(held, before);
      if (requests <= k) break;
      check(status);
    }
  }
}

// On one band the requests come one after the other.
TEST(Allocation, RefusedInTheMiddleGivesBackTheRest) {
  const UseBudget budget(1);
  Frames frames;
  const std::uint64_t untouched = frames.Digest();
  int refusals = 0;
  RefuseEachRequest(frames, [&](IppStatus status) {
    EXPECT_EQ(status, StatusMemAllocErr);
    EXPECT_EQ(frames.Digest(), untouched);
    ++refusals;
  });
  EXPECT_GT(refusals, 20);
}

// In bands, a band that lacks memory leaves its rows and does not disturb the others.
TEST(Allocation, RefusedInABandLosesNothing) {
  const UseBudget budget(4);
  Frames frames;
  RefuseEachRequest(frames, [](IppStatus status) {
    EXPECT_TRUE(status >= 0 || status == StatusMemAllocErr || status == StatusNullPtrErr) << status;
  });
}

}  // namespace
}  // namespace qv::test
