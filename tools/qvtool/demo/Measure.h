// How long calls take.
#ifndef QV_TOOLS_QVTOOL_DEMO_MEASURE_H
#define QV_TOOLS_QVTOOL_DEMO_MEASURE_H

#include "demo/Panel.h"

namespace qvtool::demo {

struct Timing {
  double milliseconds;  // of the fastest run
  int runs;
};

// Makes the calls once unmeasured and then several times. Throws an Error when one of them fails.
Timing Measure(const Panel& panel);

}  // namespace qvtool::demo

#endif
