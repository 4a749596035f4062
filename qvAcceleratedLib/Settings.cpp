#include "qvAcceleratedLib/Settings.h"

namespace qv {

int ThreadBudget = 1;
unsigned HostProcessorInfo = 0;
Sharing BandSharing = Sharing::Measured;

}  // namespace qv
