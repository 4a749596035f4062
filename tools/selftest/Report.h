// What the self-test says.
#ifndef QV_TOOLS_SELFTEST_REPORT_H
#define QV_TOOLS_SELFTEST_REPORT_H

namespace qv::selftest {

// Makes all calls twice, on the processors that the process may use and on one of them alone, for
// which this program is run once more with the given arguments, a null after them. Prints the
// digests and whether they are the expected ones. True if they are.
bool Report(const char* const* onceArguments);

// Makes all calls and prints no more than whether the digests are the expected ones.
bool ReportOnce(const char* where);

// Prints the digests as the source text of Expected.inc.
void PrintExpected();

// Runs this program with these arguments and lets it use one processor only; its exit code, or -1
// if it could not be run.
int RunOnOneProcessor(const char* const* arguments);

}  // namespace qv::selftest

#endif
