// The loop that most sub-commands are: read a frame, work on it, write it.
#ifndef QV_TOOLS_QVTOOL_PIPELINE_H
#define QV_TOOLS_QVTOOL_PIPELINE_H

#include "Chain.h"

namespace qvtool {

// Sends every frame of the input through the chain and writes the results, with a progress bar for
// videos. Arguments of the output are checked before the first frame is read. Of videos, reading,
// working and writing go on side by side; frames keep their order, and when one cannot be read,
// worked on or written, those before it are written.
void ForEachFrame(const InputSpec& input, const OutputSpec& output, Chain& chain,
                  bool showProgress);

}  // namespace qvtool

#endif
