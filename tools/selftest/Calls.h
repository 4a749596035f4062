// The calls of the self-test: fixed arguments and generated images for all operations.
#ifndef QV_TOOLS_SELFTEST_CALLS_H
#define QV_TOOLS_SELFTEST_CALLS_H

#include <string>
#include <vector>

namespace qv::selftest {

struct Result {
  std::string operation;  // or "all"
  int calls;
  std::string digest;  // SHA-256 of all statuses and of all that may have been written
};

// Makes all calls; one result for each operation in the order of the public header, then one over
// all.
std::vector<Result> MakeCalls();

// What is in the tree: the digests that every platform, level and number of threads gives.
struct Expected {
  const char* operation;
  const char* digest;
};
extern const std::vector<Expected> kExpected;

// The operations whose results are not the expected ones.
std::vector<std::string> Differing(const std::vector<Result>& results);

}  // namespace qv::selftest

#endif
