#include "Command.h"

#include <algorithm>
#include <string_view>

namespace qvtool {
namespace {

// Inside a function, because the commands register themselves before main in no certain order.
std::vector<const Command*>& Registered() {
  static std::vector<const Command*> commands;
  return commands;
}

}  // namespace

Command::Command(const char* name, const char* about, void (*configure)(CLI::App&))
    : name(name), about(about), configure(configure) {
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
