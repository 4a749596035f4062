// What a sub-command does to one frame after the other: alone, or as a part of a chain.
#ifndef QV_TOOLS_QVTOOL_STEP_H
#define QV_TOOLS_QVTOOL_STEP_H

#include <functional>
#include <memory>

#include "io/FrameStream.h"

namespace qvtool {

class Step {
 public:
  virtual ~Step() = default;

  // Before the first frame: what the arguments say of the files. The step may take from `input`
  // what is meant for itself, and throws a UsageError when something is missing.
  virtual void Begin(InputSpec& /*input*/, const OutputSpec& /*output*/) {}

  // How many times smaller, both ways, the step makes a frame of this size at the least. As the
  // first step it may get pictures that were reduced by a part of that.
  virtual double Reduction(IppiSize /*size*/) const { return 1; }

  // Works on one frame. `in` may be changed. `out` keeps its memory from frame to frame and is
  // given its shape here; it comes with what `in` has besides its samples. Answers the one of the
  // two that holds the result.
  virtual Frame& operator()(Frame& in, Frame& out) = 0;

  // What a stream's fields become, after the first frame, which had the size `before` and now has
  // the size `after`.
  virtual VideoFields Fields(const VideoFields& fields, IppiSize /*before*/,
                             IppiSize /*after*/) const {
    return fields;
  }
};

// Makes a new step of what was parsed: each file gets its own. Throws what is wrong with the
// arguments.
using MakeStep = std::function<std::unique_ptr<Step>()>;

// A step that is a function and remembers nothing from one frame to the next.
using FrameFunction = std::function<Frame&(Frame& in, Frame& out)>;
MakeStep EachFrame(FrameFunction work);

// A step that is a class, made of a copy of its options.
template <class Work, class Options>
MakeStep EachFrameWith(std::shared_ptr<Options> options) {
  return [options] { return std::make_unique<Work>(*options); };
}

}  // namespace qvtool

#endif
