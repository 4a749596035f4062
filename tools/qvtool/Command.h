// The sub-commands of qvtool.
//
// To add one, add a file commands/Name.cpp and nothing else; the build finds it:
//
//   #include "Command.h"
//   #include "Pipeline.h"
//
//   namespace qvtool {
//   namespace {
//
//   struct Options {
//     InputSpec input;
//     OutputSpec output;
//     int amount = 0;
//   };
//
//   void Run(const Options& options) {
//     ForEachFrame(options.input, options.output, [&](Frame& in, Frame& out) -> Frame& {
//       out.ResetLike(in);
//       ...                    // one operation for every plane
//       return out;            // or `in`, for an operation that works in place
//     });
//   }
//
//   void Configure(CLI::App& app) {
//     const auto options = AddFrames(app, Run);
//     app.add_option("--amount", options->amount, "How much")->required();
//   }
//
//   const Command command{"name", "What it does, in one line", Configure};
//
//   }  // namespace
//   }  // namespace qvtool
//
// A callback throws UsageError for arguments that contradict each other (exit code 2) and Error for
// everything that goes wrong while running (exit code 1).
#ifndef QV_TOOLS_QVTOOL_COMMAND_H
#define QV_TOOLS_QVTOOL_COMMAND_H

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <memory>
#include <string>
#include <vector>

#include "Arguments.h"
#include "Error.h"

namespace qvtool {

class Command {
 public:
  // Registers the sub-command.
  Command(const char* name, const char* about, void (*configure)(CLI::App&));

  const char* name;
  const char* about;
  void (*configure)(CLI::App&);
};

// The options of a sub-command that reads frames from IN, which is options->input, works on them in
// `run` and writes them to OUT, options->output.
template <class Options>
std::shared_ptr<Options> AddFrames(CLI::App& app, void (*run)(const Options&)) {
  auto options = std::make_shared<Options>();
  AddInput(app, options->input);
  AddOutput(app, options->output);
  app.callback([options, run] { run(*options); });
  return options;
}

// All sub-commands by name.
std::vector<const Command*> AllCommands();

}  // namespace qvtool

#endif
