// Prints the status and a digest of what every call wrote, a line per call, in four bands:
//   operationdigests [LEVEL]    at the best level of the machine unless one is named
// The lines are the same in every environment.
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "support/Levels.h"
#include "tests/support/Operations.h"

int main(int argc, char** argv) {
  using namespace qv::test;
  const Level* level = argc > 1 ? nullptr : &AvailableLevels().back();
  for (const Level& l : AvailableLevels())
    if (argc > 1 && std::strcmp(l.name, argv[1]) == 0) level = &l;
  if (!level) {
    std::fprintf(stderr, "operationdigests: this machine has no level %s\n", argv[1]);
    return 2;
  }
  const UseLevel useLevel(*level);
  const UseBudget useBudget(4);
  const std::vector<Outcome> outcomes = RunAll();
  for (std::size_t i = 0; i < outcomes.size(); ++i)
    std::printf("%s: %d %016" PRIx64 "\n", Operations()[i].name.c_str(), outcomes[i].status,
                outcomes[i].digest);
}
