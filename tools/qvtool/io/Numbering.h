// Names of files that are numbered: frame-%04d.png.
#ifndef QV_TOOLS_QVTOOL_IO_NUMBERING_H
#define QV_TOOLS_QVTOOL_IO_NUMBERING_H

#include <optional>
#include <string>

namespace qvtool {

class Numbering {
 public:
  // Nothing for a path without a place for a number. Throws a UsageError where such a place asks
  // for something else, as %s does.
  static std::optional<Numbering> Find(const std::string& path);

  std::string Path(long number) const;

 private:
  std::string before_, after_;
  int digits_ = 0;  // at least
};

}  // namespace qvtool

#endif
