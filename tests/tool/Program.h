// Runs qvtool in a folder of its own and looks at what it leaves behind.
#ifndef QV_TESTS_TOOL_PROGRAM_H
#define QV_TESTS_TOOL_PROGRAM_H

#include <filesystem>
#include <string>
#include <vector>

namespace tooltest {

using Arguments = std::vector<std::string>;

// A command line as one would type it; an argument with blanks stands between single quotes.
Arguments Words(const std::string& line);

struct Outcome {
  int exitCode;  // 128 + n when it was ended by signal n
  std::string out;
  std::string err;
};

// A new empty folder, removed at the end; qvtool runs inside it.
class Workplace {
 public:
  Workplace();
  ~Workplace();
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;

  Outcome Run(const Arguments& arguments, const std::string& input = "") const;
  Outcome Run(const std::string& line, const std::string& input = "") const {
    return Run(Words(line), input);
  }

  std::filesystem::path Path(const std::string& name) const { return folder_ / name; }
  void Write(const std::string& name, const std::string& bytes) const;
  std::string Read(const std::string& name) const;
  // Names of everything in the folder, sorted.
  std::vector<std::string> Files() const;

 private:
  std::filesystem::path folder_;
};

// Starts qvtool in `folder` with these descriptors as its standard streams; returns its process.
int Start(const std::filesystem::path& folder, const Arguments& arguments, int in, int out,
          int err);
int WaitFor(int process);  // its exit code

// Bytes that look random and are the same for the same seed.
std::string Noise(std::size_t count, unsigned seed);

inline unsigned char Byte(const std::string& bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

}  // namespace tooltest

#endif
