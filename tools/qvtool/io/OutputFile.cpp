#include "io/OutputFile.h"

#include <poll.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Error.h"

namespace qvtool {

// A signal handler may read nothing but plain memory and atomics, so the names stay where they are:
// one that is free is used again, and none is ever released.
struct TemporaryName {
  std::atomic<bool> isTaken = true;
  std::atomic<bool> isOpen = false;
  char path[PATH_MAX + 16];
  TemporaryName* next = nullptr;
};

namespace {

std::atomic<TemporaryName*> names = nullptr;

void RemoveAndEnd(int signal) {
  for (TemporaryName* name = names; name; name = name->next)
    if (name->isOpen) unlink(name->path);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

TemporaryName* FreeName() {
  for (TemporaryName* name = names; name; name = name->next)
    if (!name->isTaken.exchange(true)) return name;
  auto* const name = new TemporaryName;
  name->next = names;
  while (!names.compare_exchange_weak(name->next, name)) {
  }
  return name;
}

TemporaryName* Remember(const std::string& path) {
  if (path.size() > PATH_MAX) return nullptr;  // the system opens none that is longer
  TemporaryName* const name = FreeName();
  std::memcpy(name->path, path.c_str(), path.size() + 1);
  name->isOpen = true;
  return name;
}

void Forget(TemporaryName* name) {
  if (!name) return;
  name->isOpen = false;
  name->isTaken = false;
}

// Asked for once: to read the mask is to change it, for all threads.
mode_t CreationMask() {
  static const mode_t mask = [] {
    const mode_t current = umask(0);
    umask(current);
    return current;
  }();
  return mask;
}

// For a pipe that another program made one that does not wait.
void WaitForRoom(int descriptor) {
  pollfd wait = {descriptor, POLLOUT, 0};
  poll(&wait, 1, -1);
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : name_(path), target_(path) {
  if (path == "-") {
    name_ = "standard output";
    if (isatty(STDOUT_FILENO))
      throw UsageError("standard output is a terminal; send it to a file or a pipe");
    file_ = Descriptor(STDOUT_FILENO);
    file_.WidenPipe();
    return;
  }
  struct stat about;
  const bool exists = stat(path.c_str(), &about) == 0;
  if (exists && S_ISDIR(about.st_mode))
    throw Error(name_ + ": is a directory; wanted is the name of a file");
  if (exists && !S_ISREG(about.st_mode)) {
    file_ = Descriptor(open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file_) Fail("open");
    file_.WidenPipe();
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
  file_ = Descriptor(mkostemp(temporary_.data(), O_CLOEXEC));
  if (!file_) {
    temporary_.clear();
    Fail("create");
  }
  remembered_ = Remember(temporary_);
  // mkostemp makes private files; this one gets the rights that it would have had under its own
  // name.
  fchmod(file_.Get(), exists ? about.st_mode & 07777 : 0666 & ~CreationMask());
}

OutputFile::~OutputFile() {
  if (temporary_.empty()) return;
  unlink(temporary_.c_str());
  Forget(remembered_);
}

void OutputFile::Fail(const char* what) {
  throw Error(name_ + ": cannot " + what + ": " + std::strerror(errno));
}

void OutputFile::Write(Pieces& pieces) {
  while (pieces.Bytes() > 0) {
    const ssize_t written = writev(file_.Get(), pieces.First(), pieces.Count());
    if (written >= 0)
      pieces.Drop(static_cast<std::size_t>(written));
    else if (errno == EAGAIN)
      WaitForRoom(file_.Get());
    else if (errno != EINTR)
      Fail("write");
  }
}

void OutputFile::Write(const void* bytes, std::size_t count) {
  single_.Clear();
  single_.Add(bytes, count);
  Write(single_);
}

void OutputFile::Commit() {
  if (file_.Close() != 0) Fail("write");
  if (temporary_.empty()) return;
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) Fail("rename to its name");
  temporary_.clear();
  Forget(remembered_);
}

void RemoveTemporaryFilesOnSignals() {
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, RemoveAndEnd);
}

}  // namespace qvtool
