// Every piece of work memory that an operation asks for is refused once: the status says so,
// nothing is written, and what had been obtained is given back.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdlib>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "support/Levels.h"
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

// All operations, and an average over more samples than tables of weights hold, of a long row: its
// intervals are more than fit upon the stack.
std::vector<Operation> AllCalls() {
  std::vector<Operation> list = Operations();
  const auto length = [](IppiSize s) { return s.width * s.height; };
  list.push_back({"qvResize 2 8 of a row",
                  [=](IppiSize s) {
                    return std::vector<Shape>{{length(s), 1, false}, {length(s) / 20, 1, true}};
                  },
                  [=](const Plane* p, IppiSize s) {
                    return CqvAccLib::qvResize(CqvAccLib::OneChannel, p[0].data, {length(s), 1},
                                               p[0].step, {0, 0, length(s), 1}, p[1].data,
                                               p[1].step, {length(s) / 20, 1}, 0.05, 1, 8);
                  }});
  return list;
}

// A band of a resize that has no memory has no buffer to pass on.
bool Refused(IppStatus status, int budget) {
  return status == StatusMemAllocErr || (status == StatusNullPtrErr && budget > 1);
}

class Allocation : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Budgets, Allocation, testing::Values(1, 4));

// Every call with all of its requests refused, then again and again with its first, second, ...
// alone. On one band the requests come one after the other; a band that lacks memory leaves its
// rows and does not disturb the others.
TEST_P(Allocation, RefusedGivesTheStatusAndGivesBackTheRest) {
  const UseBudget budget(GetParam());
  Runner runner;
  std::set<std::string> allocating;
  for (const Operation& operation : AllCalls())
    for (int k = -1;; ++k) {
      SCOPED_TRACE(testing::Message() << operation.name << ", request " << k);
      const std::uint64_t untouched = runner.Prepare(operation);
      const long before = held;
      const Refuse some(std::max(k, 0), k < 0 ? INT_MAX : k + 1);
      const Outcome outcome = runner.Call(operation);
      EXPECT_EQ(held, before);
      if (requests <= std::max(k, 0)) {
        // Once a band, and once more where the taps say how much the rows want; or a table at a
        // time, for all bands.
        const bool hasTaps = operation.name.back() != '1' && operation.name.back() != '2';
        EXPECT_LE(requests, operation.name.starts_with("qv_") ? 9 : (hasTaps ? 2 : 1) * GetParam());
        break;
      }
      allocating.insert(operation.name.substr(0, operation.name.find(' ')));
      if (k < 0 || GetParam() == 1 || operation.name.starts_with("qv_")) {
        EXPECT_TRUE(Refused(outcome.status, GetParam())) << outcome.status;
        EXPECT_EQ(outcome.digest, untouched);
      } else {
        EXPECT_TRUE(outcome.status >= 0 || Refused(outcome.status, GetParam())) << outcome.status;
      }
    }
  EXPECT_EQ(allocating, (std::set<std::string>{"qvResize", "qvResizeYUV422", "qv_resample"}));
}

}  // namespace
}  // namespace qv::test
