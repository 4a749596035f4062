// qvselftest: whether the library's bytes match the reference digests.
//
//   qvselftest          the digests of all operations and the verdict; 0 if all are as expected
//   qvselftest --print  the text of Expected.inc, for a change of bytes that is meant
#include <cstdio>
#include <cstring>

#include "tools/selftest/Report.h"

int main(int argc, char** argv) {
  using namespace qv::selftest;
  if (argc == 2 && std::strcmp(argv[1], "--print") == 0) return PrintExpected(), 0;
  if (argc == 2 && std::strcmp(argv[1], "--once") == 0) return ReportOnce("one processor") ? 0 : 1;
  if (argc > 1) {
    std::fprintf(stderr, "usage: qvselftest [--print]\n");
    return 2;
  }
  static constexpr const char* kOnce[] = {"--once", nullptr};
  return Report(kOnce) ? 0 : 1;
}
