#include "tools/selftest/Report.h"

#if defined(_WIN32)

#include <windows.h>

#include <string>

namespace qv::selftest {

int RunOnOneProcessor(const char* const* arguments) {
  char program[MAX_PATH];
  const DWORD length = GetModuleFileNameA(nullptr, program, sizeof program);
  if (length == 0 || length == sizeof program) return -1;
  std::string command = "\"" + std::string(program) + "\"";
  for (; *arguments; ++arguments) command += std::string(" ") + *arguments;
  DWORD_PTR mine, all;
  if (!GetProcessAffinityMask(GetCurrentProcess(), &mine, &all)) return -1;
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION child;
  // Suspended until it is bound: the library counts the processors while it is loaded.
  if (!CreateProcessA(program, command.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr,
                      nullptr, &startup, &child))
    return -1;
  SetProcessAffinityMask(child.hProcess, mine & (~mine + 1));
  ResumeThread(child.hThread);
  WaitForSingleObject(child.hProcess, INFINITE);
  DWORD code = 1;
  GetExitCodeProcess(child.hProcess, &code);
  CloseHandle(child.hThread);
  CloseHandle(child.hProcess);
  return static_cast<int>(code);
}

}  // namespace qv::selftest

#else

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

namespace qv::selftest {

int RunOnOneProcessor(const char* const* arguments) {
  std::vector<char*> list = {const_cast<char*>("/proc/self/exe")};
  for (; *arguments; ++arguments) list.push_back(const_cast<char*>(*arguments));
  list.push_back(nullptr);
  const int here = sched_getcpu();
  const pid_t child = fork();
  if (child < 0) return -1;
  if (child == 0) {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<unsigned>(here < 0 ? 0 : here), &one);
    sched_setaffinity(0, sizeof one, &one);
    execv(list[0], list.data());
    _exit(127);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) == 127)
    return -1;
  return WEXITSTATUS(status);
}

}  // namespace qv::selftest

#endif
