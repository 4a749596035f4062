#include "tools/selftest/Calls.h"

#include "tools/selftest/Images.h"

namespace qv::selftest {

std::vector<Result> MakeCalls() {
  Recorder recorder;
  CallTransfers(recorder);
  CallChecksums(recorder);
  CallConversions(recorder);
  CallResizes(recorder);
  CallGeometry(recorder);
  CallCompositions(recorder);
  return recorder.Finish();
}

// Written by `qvselftest --print`.
const std::vector<Expected> kExpected = {
#include "tools/selftest/Expected.inc"
};

namespace {

// qvMergeAlphaOver on its path for processors without SSE2, which rounds differently by its
// definition.
constexpr char kPlainMerge[] = "c3bc9ddd59e276a0353cb906723e0e0a78355199b3c06d7bf5833d07c70b42f6";

}  // namespace

std::vector<std::string> Differing(const std::vector<Result>& results) {
  std::vector<std::string> names;
  for (const Result& result : results) {
    bool same = result.operation == "all" ||  // says no more than the others
                (result.operation == "qvMergeAlphaOver" && result.digest == kPlainMerge);
    for (const Expected& expected : kExpected)
      if (result.operation == expected.operation && result.digest == expected.digest) same = true;
    if (!same) names.push_back(result.operation);
  }
  return names;
}

}  // namespace qv::selftest
