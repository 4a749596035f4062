// Lines on standard error.
#ifndef QV_TOOLS_QVTOOL_REPORT_H
#define QV_TOOLS_QVTOOL_REPORT_H

#include <string>

namespace qvtool {

// One line, with the name of the tool before it. Control bytes, which names of files may hold, are
// shown as they would be typed.
void Report(const std::string& text);

}  // namespace qvtool

#endif
