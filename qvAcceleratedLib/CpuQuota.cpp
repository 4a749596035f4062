#include "qvAcceleratedLib/CpuQuota.h"

#if defined(__linux__)

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <new>

namespace qv {
namespace {

// A file's text, released with its owner; the C++ library's own owner would put symbols with
// default visibility into the shared library.
class Text {
 public:
  explicit Text(char* text) : text_(text) {}
  ~Text() { delete[] text_; }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  const char* get() const { return text_; }

 private:
  char* text_;
};

// A piece of a text.
struct Span {
  const char* begin;
  const char* end;

  size_t size() const { return static_cast<size_t>(end - begin); }
  bool is(const char* word) const {
    return strlen(word) == size() && memcmp(begin, word, size()) == 0;
  }
};

// Takes what precedes the next `separator` off the front of `rest`, and the separator with it.
Span TakeUntil(Span* rest, char separator) {
  const void* found = memchr(rest->begin, separator, rest->size());
  const char* end = found ? static_cast<const char*>(found) : rest->end;
  const Span piece = {rest->begin, end};
  rest->begin = found ? end + 1 : end;
  return piece;
}

// Whether a comma-separated list has the word.
bool Lists(Span list, const char* word) {
  while (list.begin != list.end) {
    if (TakeUntil(&list, ',').is(word)) return true;
  }
  return false;
}

// A path with room for the name of a file in it.
struct Path {
  char text[PATH_MAX + 64];
  size_t length;

  bool Append(const char* piece, size_t count) {
    if (count >= sizeof text - length) return false;
    memcpy(text + length, piece, count);
    length += count;
    text[length] = '\0';
    return true;
  }
};

// Appends a path of the mount table, where blanks and backslashes are written as \ooo.
bool AppendUnescaped(Path* path, Span escaped) {
  for (const char* p = escaped.begin; p != escaped.end; ++p) {
    char c = *p;
    if (c == '\\' && escaped.end - p >= 4) {
      c = static_cast<char>((p[1] - '0') * 64 + (p[2] - '0') * 8 + (p[3] - '0'));
      p += 3;
    }
    if (!path->Append(&c, 1)) return false;
  }
  return true;
}

enum class Hierarchy { Version1, Version2 };

// Finds the process's control group in the text of /proc/self/cgroup, whose lines are
// "ID:CONTROLLERS:PATH", with the ID 0 and no controllers for version 2.
bool FindGroup(const char* cgroup, Hierarchy hierarchy, Span* group) {
  Span rest = {cgroup, cgroup + strlen(cgroup)};
  while (rest.begin != rest.end) {
    Span line = TakeUntil(&rest, '\n');
    const Span id = TakeUntil(&line, ':');
    const Span controllers = TakeUntil(&line, ':');
    const bool match = hierarchy == Hierarchy::Version2 ? id.is("0") && controllers.size() == 0
                                                        : Lists(controllers, "cpu");
    if (!match) continue;
    *group = line;
    return true;
  }
  return false;
}

// Whether the group `root` is `group` or one of its parents.
bool IsParent(const Path& root, Span group) {
  if (group.size() < root.length || memcmp(group.begin, root.text, root.length) != 0) return false;
  return group.size() == root.length || group.begin[root.length] == '/';
}

// Finds where the hierarchy is mounted, in the text of /proc/self/mountinfo, whose lines are "ID
// PARENT DEVICE ROOT MOUNTPOINT OPTIONS [TAG...] - TYPE SOURCE SUPEROPTIONS": the group ROOT is
// what is seen at MOUNTPOINT. Writes the directory of `group`, and how much of it is the mount
// point.
//
// Of several mounts the first one that shows the group counts. If none does, as in a container that
// knows the group by a name from outside, the first mount point stands for it.
bool FindDirectory(const char* mountinfo, Hierarchy hierarchy, Span group, Path* directory,
                   size_t* mountLength) {
  bool found = false;
  Span rest = {mountinfo, mountinfo + strlen(mountinfo)};
  while (rest.begin != rest.end) {
    Span line = TakeUntil(&rest, '\n');
    Span fields[6];
    for (Span& field : fields) field = TakeUntil(&line, ' ');
    while (line.begin != line.end && !TakeUntil(&line, ' ').is("-")) {
    }
    const Span type = TakeUntil(&line, ' ');
    TakeUntil(&line, ' ');
    const bool match = hierarchy == Hierarchy::Version2 ? type.is("cgroup2")
                                                        : type.is("cgroup") && Lists(line, "cpu");
    if (!match) continue;
    Path root = {};
    if (!AppendUnescaped(&root, fields[3])) continue;
    if (root.length == 1) root.length = 0;  // "/" is the parent of all
    const bool shows = IsParent(root, group);
    if (found && !shows) continue;
    *directory = {};
    if (!AppendUnescaped(directory, fields[4])) continue;
    *mountLength = directory->length;
    found = true;
    if (shows) {
      return directory->Append(group.begin + root.length, group.size() - root.length);
    }
  }
  return found;
}

// Reads the file `name` of the group that `path` ends with.
char* ReadIn(Path* path, const char* name, FileReader read) {
  const size_t length = path->length;
  char* text = path->Append(name, strlen(name)) ? read(path->text) : nullptr;
  path->length = length;
  path->text[length] = '\0';
  return text;
}

int GroupCpus(Path* path, Hierarchy hierarchy, FileReader read) {
  if (hierarchy == Hierarchy::Version2) {
    const Text cpuMax(ReadIn(path, "/cpu.max", read));
    return CpusOfCpuMax(cpuMax.get());
  }
  const Text quota(ReadIn(path, "/cpu.cfs_quota_us", read));
  const Text period(ReadIn(path, "/cpu.cfs_period_us", read));
  return CpusOfCfs(quota.get(), period.get());
}

int HierarchyCpus(const char* cgroup, const char* mountinfo, Hierarchy hierarchy, FileReader read) {
  Span group;
  Path path;
  size_t mountLength;
  if (!FindGroup(cgroup, hierarchy, &group)) return 0;
  if (!FindDirectory(mountinfo, hierarchy, group, &path, &mountLength)) return 0;

  // A group can use no more than each of its parents, the mount point included.
  int cpus = 0;
  for (;;) {
    while (path.length > mountLength && path.text[path.length - 1] == '/') --path.length;
    path.text[path.length] = '\0';
    cpus = SmallerLimit(cpus, GroupCpus(&path, hierarchy, read));
    if (path.length <= mountLength) return cpus;
    while (path.length > mountLength && path.text[path.length - 1] != '/') --path.length;
  }
}

// Reads a decimal number and moves the text past it.
bool TakeNumber(const char** text, long long* number) {
  char* end;
  *number = strtoll(*text, &end, 10);
  if (end == *text) return false;
  *text = end;
  return true;
}

}  // namespace

int SmallerLimit(int a, int b) {
  if (a == 0 || b == 0) return a + b;
  return a < b ? a : b;
}

int CpusOfQuota(long long quota, long long period) {
  if (quota <= 0 || period <= 0) return 0;
  const long long cpus = (quota - 1) / period + 1;
  return cpus < INT_MAX ? static_cast<int>(cpus) : INT_MAX;
}

int CpusOfCpuMax(const char* cpuMax) {
  long long quota, period;
  if (!cpuMax || !TakeNumber(&cpuMax, &quota) || !TakeNumber(&cpuMax, &period)) return 0;
  return CpusOfQuota(quota, period);
}

int CpusOfCfs(const char* quota, const char* period) {
  long long quotaTime, periodTime;
  if (!quota || !period) return 0;
  if (!TakeNumber(&quota, &quotaTime) || !TakeNumber(&period, &periodTime)) return 0;
  return CpusOfQuota(quotaTime, periodTime);
}

char* ReadFile(const char* path) {
  // These files have no size to ask for. The largest, the table of a host with thousands of mounts,
  // has some hundred kilobytes.
  constexpr size_t largest = 4 << 20;
  for (size_t capacity = 16 << 10; capacity <= largest; capacity *= 4) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return nullptr;
    char* text = new (std::nothrow) char[capacity];
    size_t length = 0;
    ssize_t count = text ? 1 : 0;
    while (count > 0 && length < capacity - 1) {
      count = read(file, text + length, capacity - 1 - length);
      if (count > 0) length += static_cast<size_t>(count);
      if (count < 0 && errno == EINTR) count = 1;
    }
    close(file);
    if (text && count == 0) {
      text[length] = '\0';
      return text;
    }
    delete[] text;
    if (!text || count < 0) return nullptr;
  }
  return nullptr;
}

int QuotaCpus(FileReader read) {
  const Text cgroup(read("/proc/self/cgroup"));
  const Text mountinfo(read("/proc/self/mountinfo"));
  if (!cgroup.get() || !mountinfo.get()) return 0;
  return SmallerLimit(HierarchyCpus(cgroup.get(), mountinfo.get(), Hierarchy::Version1, read),
                      HierarchyCpus(cgroup.get(), mountinfo.get(), Hierarchy::Version2, read));
}

}  // namespace qv

#endif
