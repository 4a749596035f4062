// Peers that resize, ready to run on given images.
#ifndef QV_BENCH_RESIZEPEERS_H
#define QV_BENCH_RESIZEPEERS_H

#include <functional>
#include <string>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"

namespace bench {

// A whole image of rows without gaps.
struct ResizeJob {
  int code;      // as of qvResize
  int channels;  // 1, 3, or 2 for packed 4:2:2
  IppiSize from;
  const unsigned char* src;
  IppiSize to;
  unsigned char* dst;
};

struct ResizePeer {
  std::string name;  // as Suite::Peer takes it
  std::function<void()> work;
};

// What zimg does with a plane: widened for reductions.
std::function<void()> ZimgResize(const ResizeJob& job);

// One whose filters are widened for reductions, between pixel centres, of one to four channels;
// code 32 is Mitchell's filter. `weighted` for four of which the last is the alpha that weighs
// colours.
struct ResampleJob {
  ResizeJob job;
  bool weighted;
};

std::vector<ResizePeer> ResamplePeers(const ResampleJob& job);

// The peers found that do this job, or (those with a leading "~") one much like it.
std::vector<ResizePeer> ResizePeers(const ResizeJob& job);

}  // namespace bench

#endif
