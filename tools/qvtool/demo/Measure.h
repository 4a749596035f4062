// How long calls take.
#ifndef QV_TOOLS_QVTOOL_DEMO_MEASURE_H
#define QV_TOOLS_QVTOOL_DEMO_MEASURE_H

#include "demo/Panel.h"

namespace qvtool::demo {

// Makes the calls once unmeasured and then several times: the milliseconds of the fastest run.
// Throws an Error when one of them fails.
double Measure(const Panel& panel);

}  // namespace qvtool::demo

#endif
