// How many threads this process has, by the operating system's own list.
#ifndef QV_TESTS_SUPPORT_THREADCOUNT_H
#define QV_TESTS_SUPPORT_THREADCOUNT_H

#if defined(_WIN32)
#include <windows.h>
// Must follow it.
#include <tlhelp32.h>
#else
#include <dirent.h>

#include <cstdio>
#include <cstring>
#endif

namespace qv::test {

#if defined(_WIN32)

inline int ThreadsOfProcess() {
  int count = 0;
  const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 thread;
  thread.dwSize = sizeof thread;
  for (BOOL more = Thread32First(all, &thread); more; more = Thread32Next(all, &thread))
    count += thread.th32OwnerProcessID == GetCurrentProcessId();
  CloseHandle(all);
  return count;
}

#else

// All of them, or those with a name.
inline int ThreadsOfProcess(const char* named = nullptr) {
  int count = 0;
  DIR* const threads = opendir("/proc/self/task");
  while (const dirent* thread = readdir(threads)) {
    if (thread->d_name[0] == '.') continue;
    char path[300], name[32] = {};
    std::snprintf(path, sizeof path, "/proc/self/task/%s/comm", thread->d_name);
    std::FILE* const file = std::fopen(path, "r");  // none of a thread that has just ended
    if (!file) continue;
    const bool read = std::fscanf(file, "%31s", name) == 1;
    std::fclose(file);
    count += read && (!named || std::strcmp(name, named) == 0);
  }
  closedir(threads);
  return count;
}

#endif

}  // namespace qv::test

#endif
