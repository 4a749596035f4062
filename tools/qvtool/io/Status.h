// Turns the status of an operation into an Error.
#ifndef QV_TOOLS_QVTOOL_IO_STATUS_H
#define QV_TOOLS_QVTOOL_IO_STATUS_H

namespace qvtool {

// Throws an Error that names the operation when the status is below 0; warnings pass.
void Check(const char* operation, int status);

}  // namespace qvtool

#endif
