// What ends the tool: one line of text and the exit code that goes with it.
#ifndef QV_TOOLS_QVTOOL_ERROR_H
#define QV_TOOLS_QVTOOL_ERROR_H

#include <stdexcept>
#include <string>

namespace qvtool {

// A failure while running: a file that cannot be read, a frame that does not fit. Exit code 1.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A command line that cannot be meant. Exit code 2.
class UsageError : public Error {
 public:
  using Error::Error;
};

// What went wrong has been reported already: exit code 1, and no more to say.
class Reported {};

}  // namespace qvtool

#endif
