// qvtool info: what this processor gets, or what a file holds.
#include <cstdio>

#include "Command.h"
#include "HostInfo.h"
#include "io/Y4mFile.h"

namespace qvtool {
namespace {

void PrintHost() {
  const HostInfo host = DescribeHost();
  std::printf("version          %s\n", QVACCELERATEDLIB_VERSION);
  std::printf("processor        class 0x%x: %s\n", host.cpuCode, host.cpuClass.c_str());
  std::printf("variant          %d (%s)\n", host.variantIndex, host.variant.c_str());
  std::printf("wide level       %d\n", host.wideLevel);
  std::printf("carry-less level %d (%s)\n", host.carrylessLevel, host.carryless.c_str());
  std::printf("built level      %s\n", qv::InfoOf(host.level).name);
  std::printf("thread budget    %d", host.threadBudget);
  if (host.processors > 0)
    std::printf(" (%d in the affinity mask%s)", host.processors,
                host.threadBudget < host.processors ? "; the CPU quota grants no more" : "");
  std::printf("\n");
  std::printf(
      "\nRows of each kernel that are written for a level; '-' uses those of the next lower one,\n"
      "[ ] marks what this processor runs.\n\n%-30s",
      "");
  const qv::LevelSet built = qv::BuiltLevelSet();
  for (const qv::LevelInfo& level : qv::kLevels)
    if (built.Has(level.id)) std::printf(" %-9s", level.name);
  std::printf("\n");
  for (const KernelLevels& kernel : AllKernels()) {
    std::printf("%-30s", kernel.name);
    const qv::LevelId running =
        qv::ServingLevel(kernel.own & built, host.variantIndex, host.wideLevel);
    for (const qv::LevelInfo& level : qv::kLevels)
      if (built.Has(level.id))
        std::printf(" %-9s", level.id == running         ? "[own]"
                             : kernel.own.Has(level.id) ? "own" : "-");
    std::printf("\n");
  }
}

void PrintFile(const InputSpec& input) {
  const auto reader = OpenInput(input);
  const StreamInfo info = reader->Describe();
  std::printf("format  %s\nlayout  %s\nsize    %dx%d\n", NameOf(reader->Format()),
              NameOf(info.layout).c_str(), info.size.width, info.size.height);
  if (!reader->IsVideo()) return;
  if (info.frames) std::printf("frames  %ld\n", *info.frames);
  if (reader->Format() != FileFormat::Y4m) return;
  std::printf("fields ");
  for (const std::string& field : reader->Fields()) std::printf(" %s", field.c_str());
  std::printf("\n");
}

void Configure(CLI::App& app) {
  auto input = std::make_shared<InputSpec>();
  app.add_option("IN", input->path,
                 "A file to describe instead of the library; - for standard input");
  AddRawInputOptions(app, *input);
  app.footer(
      "Headers alone are read; frames are counted in files, not in pipes.\n"
      "  qvtool info\n  qvtool info clip.y4m");
  app.callback([input] {
    if (input->path.empty())
      PrintHost();
    else
      PrintFile(*input);
  });
}

const Command command{"info", "Show what the library runs on this processor, or what a file holds",
                      Configure};

}  // namespace
}  // namespace qvtool
