// The sub-commands of qvtool.
//
// To add one that makes a frame of every frame, add a file commands/Name.cpp and nothing else; the
// build finds it, and it is also a step that `qvtool run` knows:
//
//   #include "Command.h"
//
//   namespace qvtool {
//   namespace {
//
//   struct Options {
//     int amount = 0;
//   };
//
//   Frame& Work(const Options& options, const Frame& in, Frame& out) {
//     out.ResetLike(in);
//     ...                      // one operation for every plane
//     return out;              // or `in`, for an operation that works in place
//   }
//
//   MakeStep Configure(CLI::App& app) {
//     auto options = std::make_shared<Options>();
//     app.add_option("--amount", options->amount, "How much")->required();
//     return EachFrame(
//         [options](Frame& in, Frame& out) -> Frame& { return Work(*options, in, out); });
//   }
//
//   const Command command{"name", "What it does, in one line", Configure};
//
//   }  // namespace
//   }  // namespace qvtool
//
// One that keeps something from frame to frame, reads a file of its own, or changes what a stream
// says of itself, is a class, derived from Step and made of its options: EachFrameWith<Work>. One
// that does something else has `void Configure(CLI::App& app)`, which sets a callback.
//
// UsageError is thrown for arguments that contradict each other (exit code 2) and Error for
// everything that goes wrong while running (exit code 1).
#ifndef QV_TOOLS_QVTOOL_COMMAND_H
#define QV_TOOLS_QVTOOL_COMMAND_H

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Arguments.h"
#include "Error.h"
#include "Step.h"

namespace qvtool {

// Adds the arguments of a step, without those of its files.
using ConfigureStep = MakeStep (*)(CLI::App&);

class Command {
 public:
  // Each registers the sub-command. The first is for those that are no steps, the second for those
  // that take IN and OUT as well, the third for a step that names its files in another way.
  Command(const char* name, const char* about, void (*configure)(CLI::App&));
  Command(const char* name, const char* about, ConfigureStep step);
  Command(const char* name, const char* about, void (*configure)(CLI::App&), ConfigureStep step);

  const char* name;
  const char* about;
  std::function<void(CLI::App&)> configure;
  ConfigureStep step = nullptr;
};

// All sub-commands by name.
std::vector<const Command*> AllCommands();

}  // namespace qvtool

#endif
