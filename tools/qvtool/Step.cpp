#include "Step.h"

#include <utility>

namespace qvtool {
namespace {

class FunctionStep : public Step {
 public:
  explicit FunctionStep(FrameFunction work) : work_(std::move(work)) {}
  Frame& operator()(Frame& in, Frame& out) override { return work_(in, out); }

 private:
  FrameFunction work_;
};

}  // namespace

MakeStep EachFrame(FrameFunction work) {
  return [work = std::move(work)] { return std::make_unique<FunctionStep>(work); };
}

}  // namespace qvtool
