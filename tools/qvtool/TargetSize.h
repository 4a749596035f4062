// The size that frames are to get, where it depends on that which they have.
#ifndef QV_TOOLS_QVTOOL_TARGETSIZE_H
#define QV_TOOLS_QVTOOL_TARGETSIZE_H

#include "Arguments.h"

namespace qvtool {

class TargetSize {
 public:
  // "640x360", or with one side alone "640x" or "x360": the other one keeps the frame's shape.
  static TargetSize Parse(const std::string& argument, const std::string& text);
  // "640x360": the largest size of the frame's shape within.
  static TargetSize ParseFit(const std::string& argument, const std::string& text);

  // Sides are rounded, and 1 at least.
  IppiSize For(IppiSize frame) const;

 private:
  std::optional<int> width_, height_;
  bool fit_ = false;
};

}  // namespace qvtool

#endif
