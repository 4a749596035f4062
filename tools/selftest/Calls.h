// The calls of the self-test: fixed arguments and generated images for all operations. They and
// their digests ask for no library but the one under test, so that a host without a C library can
// make them too.
#ifndef QV_TOOLS_SELFTEST_CALLS_H
#define QV_TOOLS_SELFTEST_CALLS_H

#include "qvAcceleratedLib/Operations.h"
#include "tools/selftest/Sha256.h"

namespace qv::selftest {

// Of an operation. One that no call was made of has no digest.
struct Result {
  int calls = 0;
  char digest[Sha256::kDigits + 1] = "";  // of all statuses and of all that may have been written
};

struct Results {
  Result of[kOperationCount];
};

void MakeCalls(Results* results);

// Whether the digest is the one that every platform, level and number of threads gives. Never for
// an operation that has no call or no expected digest.
bool IsExpected(Op op, const Result& result);

// Calls visit(op) for the operations whose results are not the expected ones.
template <class Visit>
void ForEachDiffering(const Results& results, const Visit& visit) {
  for (int i = 0; i < kOperationCount; ++i)
    if (!IsExpected(static_cast<Op>(i), results.of[i])) visit(static_cast<Op>(i));
}

}  // namespace qv::selftest

#endif
