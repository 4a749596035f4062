// qvtool run: several sub-commands in one go, with their frames in memory.
#include <utility>

#include "Command.h"
#include "Files.h"
#include "Words.h"

namespace qvtool {
namespace {

struct NamedStep {
  std::string label;  // "step 2 (resize)"
  MakeStep make;
};

std::string StepNames() {
  std::string names;
  for (const Command* command : AllCommands())
    if (command->step) names += (names.empty() ? "" : ", ") + std::string(command->name);
  return names;
}

const Command& FindStep(const std::string& label, const std::string& name) {
  for (const Command* command : AllCommands())
    if (command->step && name == command->name) return *command;
  throw UsageError(label + ": there is no such step; wanted is one of " + StepNames());
}

NamedStep ParseStep(std::size_t number, std::vector<std::string> words) {
  const std::string name = words.front();
  const std::string label = "step " + std::to_string(number) + " (" + name + ")";
  const Command& command = FindStep(label, name);
  CLI::App app{command.about, name};
  app.set_help_flag();
  try {
    const MakeStep make = command.step(app);
    std::vector<std::string> arguments(words.rbegin(), words.rend() - 1);  // the last one first
    app.parse(std::move(arguments));
    return {label, make};
  } catch (const std::runtime_error& error) {
    throw UsageError(label + ": " + error.what());
  }
}

// A logo that cannot be read is a wrong argument.
std::unique_ptr<Step> MakeFrom(const NamedStep& step) {
  try {
    return step.make();
  } catch (const Error& error) {
    throw UsageError(step.label + ": " + error.what());
  }
}

MakeChain ParseChain(const std::string& text) {
  std::vector<NamedStep> steps;
  for (const auto& words : SplitCommands(text)) steps.push_back(ParseStep(steps.size() + 1, words));
  if (steps.empty()) throw UsageError("STEPS: none given; wanted is such as 'resize --factor 0.5'");
  return [steps] {
    Chain chain;
    for (const NamedStep& step : steps) chain.Append(step.label, MakeFrom(step));
    return chain;
  };
}

void Configure(CLI::App& app) {
  auto text = std::make_shared<std::string>();
  app.add_option("STEPS", *text,
                 "Sub-commands with semicolons between, each with its arguments but no files; "
                 "names with blanks in quotes")
      ->type_name("")
      ->required();
  const auto files = AddFiles(app);
  app.footer(
      "Frames go from step to step in memory. All arguments are checked before the first frame is\n"
      "read. Steps: " +
      StepNames() +
      ".\n"
      "  qvtool run 'crop 0,0,1280,720; deinterlace; resize --to 640x360' in.y4m out.y4m\n"
      "  qvtool run 'rotate --angle 90 --fit; overlay --with \"my logo.png\"' *.jpg --out turned\n"
      "    --jobs 0");
  app.callback([text, files] { files->Run(ParseChain(*text)); });
}

const Command command{"run", "Several sub-commands in one go: 'crop 0,0,64,48; mirror'", Configure};

}  // namespace
}  // namespace qvtool
