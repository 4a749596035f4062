#include "Program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "support/Random.h"

namespace tooltest {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Arguments Words(const std::string& line) {
  std::istringstream stream(line);
  Arguments words;
  for (std::string word; stream >> std::quoted(word, '\'');) words.push_back(word);
  return words;
}

Workplace::Workplace() {
  std::string name = (fs::temp_directory_path() / "qvtool-test-XXXXXX").string();
  if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
  folder_ = name;
}

Workplace::~Workplace() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void Workplace::Write(const std::string& name, const std::string& bytes) const {
  std::ofstream(Path(name), std::ios::binary) << bytes;
}

std::string Workplace::Read(const std::string& name) const { return ReadFile(Path(name)); }

std::vector<std::string> Workplace::Files() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder_))
    names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

Outcome Workplace::Run(const Arguments& arguments, const std::string& input) const {
  // The streams are files outside the folder, so that neither side can block the other.
  fs::path streams = folder_;
  streams += ".streams";
  fs::create_directory(streams);
  std::ofstream(streams / "in", std::ios::binary) << input;
  const int in = open((streams / "in").c_str(), O_RDONLY | O_CLOEXEC);
  const int out = open((streams / "out").c_str(), O_CREAT | O_RDWR | O_TRUNC | O_CLOEXEC, 0600);
  const int err = open((streams / "err").c_str(), O_CREAT | O_RDWR | O_TRUNC | O_CLOEXEC, 0600);
  Outcome outcome;
  outcome.exitCode = WaitFor(Start(folder_, arguments, in, out, err));
  close(in);
  close(out);
  close(err);
  outcome.out = ReadFile(streams / "out");
  outcome.err = ReadFile(streams / "err");
  fs::remove_all(streams);
  return outcome;
}

int Start(const fs::path& folder, const Arguments& arguments, int in, int out, int err) {
  std::vector<char*> words{const_cast<char*>("qvtool")};
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  const int process = fork();
  if (process == 0) {
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    if (chdir(folder.c_str()) == 0) execv(QVTOOL_PROGRAM, words.data());
    _exit(127);
  }
  return process;
}

int WaitFor(int process) {
  int status = 0;
  waitpid(process, &status, 0);
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string Noise(std::size_t count, unsigned seed) {
  std::string bytes(count, '\0');
  qv::test::Random(seed).Fill(reinterpret_cast<unsigned char*>(bytes.data()), count);
  return bytes;
}

}  // namespace tooltest
