// The files that sub-commands work on: one IN and one OUT.
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
  InputSpec input;
  OutputSpec output;

  // Sends the frames of IN through the chain to OUT.
  void Run(const MakeChain& make) const;
};

// The positional IN and OUT with all that says what they hold.
std::shared_ptr<Files> AddFiles(CLI::App& app, const std::string& name = "IN OUT");

// A chain of one step, which messages do not name.
MakeChain OneStep(MakeStep make);

}  // namespace qvtool

#endif
