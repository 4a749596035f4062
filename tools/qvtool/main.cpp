// qvtool: the operations of the library on picture files and video streams.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "Command.h"
#include "Report.h"
#include "io/OutputFile.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kUsage = 2;

int Fail(const std::string& text, int code) {
  qvtool::Report(text);
  return code;
}

// What was printed may still lie in a buffer that has no place to go to.
int Done() {
  if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return kSuccess;
  return Fail(std::string("standard output: cannot write: ") + std::strerror(errno), kFailure);
}

class HelpFormatter : public CLI::Formatter {
 public:
  // The positionals as they are named, without repetition marks.
  std::string make_option_usage(const CLI::Option* option) const override {
    const std::string name = make_option_name(option, true);
    return option->get_required() ? name : "[" + name + "]";
  }
};

// Names the word that was taken for a sub-command; the parser would only say that one is missing.
void CheckCommandName(int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return;
  std::string names;
  for (const qvtool::Command* command : qvtool::AllCommands()) {
    if (std::string(command->name) == argv[1]) return;
    names += (names.empty() ? "" : ", ") + std::string(command->name);
  }
  throw qvtool::UsageError("there is no sub-command '" + std::string(argv[1]) +
                           "'; wanted is one of " + names);
}

// The help to look at: that of the sub-command, if one was recognised.
std::string HelpHint(const CLI::App& app) {
  std::string command = "qvtool ";
  for (const CLI::App* chosen : app.get_subcommands()) command += chosen->get_name() + " ";
  return " (see " + command + "--help)";
}

}  // namespace

int main(int argc, char** argv) {
  qvtool::RemoveTemporaryFilesOnSignals();
  CLI::App app{"Fast operations on pictures and video streams", "qvtool"};
  app.set_version_flag("--version", "qvtool " QVACCELERATEDLIB_VERSION);
  app.require_subcommand(1);
  app.formatter(std::make_shared<HelpFormatter>());
  app.get_formatter()->column_width(34);
  app.footer(
      "Files are recognised by their content when read and by their extension when written;\n"
      "- is standard input or output. Exit code 0: done, 1: failed, 2: wrong arguments.");
  for (const qvtool::Command* command : qvtool::AllCommands())
    command->configure(*app.add_subcommand(command->name, command->about));

  try {
    CheckCommandName(argc, argv);
    app.parse(argc, argv);
    return Done();
  } catch (const CLI::Success& done) {  // --help and --version
    return app.exit(done);
  } catch (const CLI::ParseError& error) {
    return Fail(error.what() + HelpHint(app), kUsage);
  } catch (const qvtool::UsageError& error) {
    return Fail(error.what() + HelpHint(app), kUsage);
  } catch (const qvtool::Reported&) {
    return kFailure;
  } catch (const std::bad_alloc&) {
    return Fail("out of memory", kFailure);
  } catch (const std::exception& error) {
    return Fail(error.what(), kFailure);
  }
}
