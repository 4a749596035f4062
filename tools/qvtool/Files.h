// The files that sub-commands work on: one IN and one OUT, or many IN and a folder.
#ifndef QV_TOOLS_QVTOOL_FILES_H
#define QV_TOOLS_QVTOOL_FILES_H

#include <CLI/App.hpp>
#include <memory>
#include <string>
#include <vector>

#include "Chain.h"

namespace qvtool {

struct Files {
  std::vector<std::string> paths;
  std::string folder;  // that every IN has its OUT in; without it, the last path is OUT
  int jobs = 1;        // files at once; 0: as many as there are processors
  InputSpec input;
  OutputSpec output;

  // Sends the frames of every IN through a chain to its OUT. All arguments are checked before
  // anything is written. Of several files one that fails is reported, and the others go on; then
  // Reported is thrown at the end.
  void Run(const MakeChain& make) const;
};

// The positionals with all that says what the files hold.
std::shared_ptr<Files> AddFiles(CLI::App& app, const std::string& name = "IN OUT");

// A chain of one step, which messages do not name.
MakeChain OneStep(MakeStep make);

}  // namespace qvtool

#endif
