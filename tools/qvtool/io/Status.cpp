#include "io/Status.h"

#include <string>

#include "Error.h"
#include "qvAcceleratedLib/qv.h"

namespace qvtool {

void Check(const char* operation, int status) {
  if (status < 0)
    throw Error(std::string(operation) + " answered " + std::to_string(status) + ": " +
                qv_status_text(status));
}

}  // namespace qvtool
