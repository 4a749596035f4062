#include "tools/selftest/Report.h"

#include <cstdio>

#include "tools/selftest/Calls.h"

namespace qv::selftest {

namespace {

bool PrintVerdict(const char* where, const std::vector<Result>& results) {
  const std::vector<std::string> differing = Differing(results);
  std::printf("%s: ", where);
  if (differing.empty()) {
    std::printf("matches the reference digests\n");
  } else {
    std::printf("DIFFERENT bytes than elsewhere from");
    for (const std::string& name : differing) std::printf(" %s", name.c_str());
    std::printf("\n");
  }
  std::fflush(stdout);  // another process may be about to write there
  return differing.empty();
}

}  // namespace

bool Report(const char* const* onceArguments) {
  const std::vector<Result> results = MakeCalls();
  for (const Result& result : results)
    std::printf("%s  %s, %d call%s\n", result.digest.c_str(), result.operation.c_str(),
                result.calls, result.calls == 1 ? "" : "s");
  std::printf("\n");
  const bool all = PrintVerdict("all processors", results);
  const int once = RunOnOneProcessor(onceArguments);
  if (once < 0) std::printf("one processor: could not be run\n");
  return all && once == 0;
}

bool ReportOnce(const char* where) { return PrintVerdict(where, MakeCalls()); }

void PrintExpected() {
  for (const Result& result : MakeCalls())
    std::printf("    {\"%s\",\n     \"%s\"},\n", result.operation.c_str(), result.digest.c_str());
}

}  // namespace qv::selftest
