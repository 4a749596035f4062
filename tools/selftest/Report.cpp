#include "tools/selftest/Report.h"

#include <cstdio>

#include "tools/selftest/Calls.h"

namespace qv::selftest {

namespace {

bool PrintVerdict(const char* where, const Results& results) {
  bool same = true;
  std::printf("%s: ", where);
  ForEachDiffering(results, [&](Op op) {
    std::printf("%s %s", same ? "DIFFERENT bytes than elsewhere from" : "", NameOf(op));
    same = false;
  });
  std::printf("%s\n", same ? "matches the reference digests" : "");
  std::fflush(stdout);  // another process may be about to write there
  return same;
}

}  // namespace

bool Report(const char* const* onceArguments) {
  Results results;
  MakeCalls(&results);
  for (int i = 0; i < kOperationCount; ++i)
    std::printf("%s  %s, %d call%s\n", results.of[i].digest, kOperations[i].name,
                results.of[i].calls, results.of[i].calls == 1 ? "" : "s");
  std::printf("\n");
  const bool all = PrintVerdict("all processors", results);
  const int once = RunOnOneProcessor(onceArguments);
  if (once < 0) std::printf("one processor: could not be run\n");
  return all && once == 0;
}

bool ReportOnce(const char* where) {
  Results results;
  MakeCalls(&results);
  return PrintVerdict(where, results);
}

void PrintExpected() {
  Results results;
  MakeCalls(&results);
  for (int i = 0; i < kOperationCount; ++i)
    std::printf("    {Op::%s,\n     \"%s\"},\n", kOperations[i].name, results.of[i].digest);
}

}  // namespace qv::selftest
