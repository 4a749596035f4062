#include "io/OutputFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "Error.h"

namespace qvtool {
namespace {

// The name that a signal handler removes. It may read nothing but plain memory, and the tool has
// one output open at a time.
char openTemporary[PATH_MAX + 16];
volatile std::sig_atomic_t temporaryIsOpen = 0;

void RemoveAndEnd(int signal) {
  if (temporaryIsOpen) unlink(openTemporary);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void Remember(const std::string& path) {
  temporaryIsOpen = 0;
  if (path.empty() || path.size() >= sizeof openTemporary) return;
  std::memcpy(openTemporary, path.c_str(), path.size() + 1);
  temporaryIsOpen = 1;
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : name_(path), target_(path) {
  if (path == "-") {
    name_ = "standard output";
    if (isatty(STDOUT_FILENO))
      throw UsageError("standard output is a terminal; send it to a file or a pipe");
    file_ = stdout;
    return;
  }
  struct stat about;
  const bool exists = stat(path.c_str(), &about) == 0;
  if (exists && S_ISDIR(about.st_mode))
    throw Error(name_ + ": is a directory; wanted is the name of a file");
  if (exists && !S_ISREG(about.st_mode)) {
    file_ = std::fopen(path.c_str(), "wb");
    if (!file_) Fail("open");
    return;
  }
  // A link stays a link: what it points to is replaced.
  if (exists) {
    if (char* real = realpath(path.c_str(), nullptr)) {
      target_ = real;
      std::free(real);
    }
  }
  temporary_ = target_ + ".XXXXXX";
  const int descriptor = mkstemp(temporary_.data());
  if (descriptor < 0) {
    temporary_.clear();
    Fail("create");
  }
  Remember(temporary_);
  // mkstemp makes private files; this one gets the rights that it would have had under its own
  // name.
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(descriptor, exists ? about.st_mode & 07777 : 0666 & ~mask);
  file_ = fdopen(descriptor, "wb");
  if (!file_) {
    const int reason = errno;
    close(descriptor);
    unlink(temporary_.c_str());
    Remember("");
    errno = reason;
    Fail("create");
  }
}

OutputFile::~OutputFile() {
  if (file_ && file_ != stdout) std::fclose(file_);
  if (!temporary_.empty()) {
    unlink(temporary_.c_str());
    Remember("");
  }
}

void OutputFile::Fail(const char* what) {
  throw Error(name_ + ": cannot " + what + ": " + std::strerror(errno));
}

void OutputFile::Write(const void* bytes, std::size_t count) {
  if (std::fwrite(bytes, 1, count, file_) != count) Fail("write");
}

void OutputFile::Commit() {
  if (std::fflush(file_) != 0) Fail("write");
  if (file_ != stdout) {
    std::FILE* file = file_;
    file_ = nullptr;
    if (std::fclose(file) != 0) Fail("write");
  }
  if (temporary_.empty()) return;
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) Fail("rename to its name");
  temporary_.clear();
  Remember("");
}

void RemoveTemporaryFilesOnSignals() {
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, RemoveAndEnd);
}

}  // namespace qvtool
