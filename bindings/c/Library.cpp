// What a host asks of the library itself.
#include "qvAcceleratedLib/CqvAccLib.h"
#include "qvAcceleratedLib/qv.h"

const char* qv_version() { return QVACCELERATEDLIB_VERSION; }
