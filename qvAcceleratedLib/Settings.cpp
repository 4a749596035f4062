#include "qvAcceleratedLib/Settings.h"

namespace qv {

int ThreadBudget = 1;
unsigned HostProcessorInfo = 0;

}  // namespace qv
