// qvtool selftest: whether the library's bytes match the reference digests.
#include "Command.h"
#include "tools/selftest/Report.h"

namespace qvtool {
namespace {

struct Options {
  bool print = false, once = false;
};

void Run(const Options& options) {
  static constexpr const char* kOnce[] = {"selftest", "--once", nullptr};
  if (options.print) return qv::selftest::PrintExpected();
  const bool same =
      options.once ? qv::selftest::ReportOnce("one processor") : qv::selftest::Report(kOnce);
  if (!same) throw Error("selftest: the library does not give the bytes that it gives elsewhere");
}

void Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  app.add_flag("--print", options->print,
               "Print the digests as the source text of the expected ones (Expected.inc)");
  app.add_flag("--once", options->once, "Make the calls on one processor only")->group("");
  app.footer("  qvtool selftest");
  app.callback([options] { Run(*options); });
}

const Command command{
    "selftest", "Check the bytes of all operations against the reference digests", Configure};

}  // namespace
}  // namespace qvtool
