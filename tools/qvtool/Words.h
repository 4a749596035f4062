// A text cut into words as a shell does it.
#ifndef QV_TOOLS_QVTOOL_WORDS_H
#define QV_TOOLS_QVTOOL_WORDS_H

#include <string>
#include <vector>

namespace qvtool {

// The commands of a text, between semicolons, as their words, between blanks. Quotes of both kinds
// and backslashes keep blanks and semicolons as they are; within '...' a backslash is one, within
// "..." it stands before a quote or a backslash. A command without words is left out. Throws a
// UsageError when a quote is not closed.
std::vector<std::vector<std::string>> SplitCommands(const std::string& text);

}  // namespace qvtool

#endif
