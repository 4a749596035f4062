// A file that appears under its name only once it is complete.
#ifndef QV_TOOLS_QVTOOL_IO_OUTPUTFILE_H
#define QV_TOOLS_QVTOOL_IO_OUTPUTFILE_H

#include <string>

#include "io/Descriptor.h"
#include "io/Pieces.h"

namespace qvtool {

struct TemporaryName;  // one that a signal removes

// Writes to a temporary file beside `path` and renames it on Commit; what is not committed is
// removed, also when the program is interrupted. Standard output ("-"), devices and named pipes are
// written to directly. Every failure throws an Error that names the file.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  const std::string& Name() const { return name_; }
  // What is written is on its way: nothing waits in this object.
  void Write(Pieces& pieces);  // which are used up
  void Write(const void* bytes, std::size_t count);
  void Write(const std::string& text) { Write(text.data(), text.size()); }
  void Commit();

 private:
  [[noreturn]] void Fail(const char* what);

  std::string name_;
  std::string target_;
  std::string temporary_;
  TemporaryName* remembered_ = nullptr;
  Descriptor file_;
  Pieces single_;
};

// Has interruption signals remove the temporary files that are open. Called once, by main.
void RemoveTemporaryFilesOnSignals();

}  // namespace qvtool

#endif
