#include "tools/selftest/Calls.h"

#include "tools/selftest/Images.h"

namespace qv::selftest {

void MakeCalls(Results* results) {
  Recorder recorder(results);
  CallTransfers(recorder);
  CallChecksums(recorder);
  CallConversions(recorder);
  CallResizes(recorder);
  CallGeometry(recorder);
  CallCompositions(recorder);
  recorder.End();
}

namespace {

constexpr struct {
  Op operation;
  const char* digest;
} kExpected[] = {
// Written by `qvselftest --print`.
#include "tools/selftest/Expected.inc"
    // On the path for processors without SSE2, which rounds differently by its definition.
    {Op::qvMergeAlphaOver, "c3bc9ddd59e276a0353cb906723e0e0a78355199b3c06d7bf5833d07c70b42f6"},
};

bool AreEqual(const char* a, const char* b) {
  while (*a && *a == *b) ++a, ++b;
  return *a == *b;
}

}  // namespace

bool IsExpected(Op op, const Result& result) {
  for (const auto& expected : kExpected)
    if (expected.operation == op && AreEqual(expected.digest, result.digest)) return true;
  return false;
}

}  // namespace qv::selftest
