// qvtool: the operations of the library on picture files and video streams.
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "Command.h"
#include "io/OutputFile.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kUsage = 2;

int Fail(const std::string& text, int code) {
  std::fprintf(stderr, "qvtool: %s\n", text.c_str());
  return code;
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
  app.get_formatter()->column_width(34);
  app.footer(
      "Files are recognised by their content when read and by their extension when written;\n"
      "- is standard input or output. Exit code 0: done, 1: failed, 2: wrong arguments.");
  for (const qvtool::Command* command : qvtool::AllCommands())
    command->configure(*app.add_subcommand(command->name, command->about));

  try {
    app.parse(argc, argv);
    return kSuccess;
  } catch (const CLI::Success& done) {  // --help and --version
    return app.exit(done);
  } catch (const CLI::ParseError& error) {
    return Fail(error.what() + HelpHint(app), kUsage);
  } catch (const qvtool::UsageError& error) {
    return Fail(error.what() + HelpHint(app), kUsage);
  } catch (const std::bad_alloc&) {
    return Fail("out of memory", kFailure);
  } catch (const std::exception& error) {
    return Fail(error.what(), kFailure);
  }
}
