// The loop that most sub-commands are: read a frame, work on it, write it.
#ifndef QV_TOOLS_QVTOOL_PIPELINE_H
#define QV_TOOLS_QVTOOL_PIPELINE_H

#include <functional>

#include "io/FrameStream.h"

namespace qvtool {

// Works on one frame. `in` may be changed; `out` keeps its memory from frame to frame and is given
// its shape by the function; it comes with the coding of `in`. Returns the one of the two that is
// to be written, or a frame of its own.
using FrameFunction = std::function<const Frame&(Frame& in, Frame& out)>;

// Runs `work` on every frame of the input and writes the results, with a progress bar for videos.
// Arguments of the output are checked before the first frame is read.
void ForEachFrame(const InputSpec& input, const OutputSpec& output, const FrameFunction& work);

}  // namespace qvtool

#endif
