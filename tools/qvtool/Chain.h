// Steps that frames go through one after the other, in memory.
#ifndef QV_TOOLS_QVTOOL_CHAIN_H
#define QV_TOOLS_QVTOOL_CHAIN_H

#include <string>
#include <vector>

#include "Step.h"

namespace qvtool {

class Chain {
 public:
  // `label` is what messages call the step; none for the only one.
  void Append(std::string label, std::unique_ptr<Step> step);

  // As of Step, for all of them.
  void Begin(InputSpec& input, const OutputSpec& output);

  // The result: `in`, or a frame of this chain. It may be exchanged for one whose memory is to be
  // used again.
  Frame& operator()(Frame& in);

  // What the fields of a stream become. Asked for after the first frame.
  VideoFields Fields(VideoFields fields) const;

 private:
  struct Link {
    std::string label;
    std::unique_ptr<Step> step;
    Frame out;
    IppiSize before = {}, after = {};
  };
  std::vector<Link> links_;
};

// Each file goes through a chain of its own.
using MakeChain = std::function<Chain()>;

}  // namespace qvtool

#endif
