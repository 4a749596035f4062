#include "Command.h"

#include <algorithm>
#include <string_view>

#include "Files.h"

namespace qvtool {
namespace {

// Inside a function, because the commands register themselves before main in no certain order.
std::vector<const Command*>& Registered() {
  static std::vector<const Command*> commands;
  return commands;
}

void ConfigureWithFiles(CLI::App& app, ConfigureStep configure) {
  const MakeStep make = configure(app);
  const auto files = AddFiles(app);
  app.callback([files, make] { files->Run(OneStep(make)); });
}

}  // namespace

Command::Command(const char* name, const char* about, void (*configure)(CLI::App&))
    : Command(name, about, configure, nullptr) {}

Command::Command(const char* name, const char* about, ConfigureStep step)
    : name(name),
      about(about),
      configure([step](CLI::App& app) { ConfigureWithFiles(app, step); }),
      step(step) {
  Registered().push_back(this);
}

Command::Command(const char* name, const char* about, void (*configure)(CLI::App&),
                 ConfigureStep step)
    : name(name), about(about), configure(configure), step(step) {
  Registered().push_back(this);
}

std::vector<const Command*> AllCommands() {
  auto commands = Registered();
  std::sort(commands.begin(), commands.end(), [](const Command* a, const Command* b) {
    return std::string_view(a->name) < std::string_view(b->name);
  });
  return commands;
}

}  // namespace qvtool
