// qvResize and qvResizeYUV422 at the four size pairs that video meets most.
#include "bench/Bench.h"
#include "bench/ResizePeers.h"

#include <algorithm>

using Lib = CqvAccLib;

namespace {

struct Method {
  int code;
  const char* name;
};

constexpr Method kMethods[] = {
    {1, "nearest"}, {2, "linear"}, {4, "cubic"}, {8, "area"}, {16, "Lanczos"}};

constexpr bench::Scaling kScalings[] = {{{640, 360}, {1280, 720}},
                                        {{1280, 720}, {1920, 1080}},
                                        {{1920, 1080}, {1280, 720}},
                                        {{3840, 2160}, {1920, 1080}}};

}  // namespace

static const bench::Family resize([](bench::Suite& s) {
  for (const bench::Scaling& scaling : kScalings) {
    const IppiSize from = scaling.from, to = scaling.to;
    const std::string label = scaling.Label();
    const unsigned char* const src = s.Frame(from).src;
    unsigned char* const dst = s.Frame(to).dst;
    const IppiRect all = {0, 0, from.width, from.height};
    const double xFactor = double(to.width) / from.width, yFactor = double(to.height) / from.height;
    const double read = double(bench::Pixels(from)) / double(bench::Pixels(to));
    for (const int channels : {1, 3}) {
      const auto type = channels == 1 ? Lib::OneChannel : Lib::ThreeChannels;
      const int srcStep = channels * from.width, dstStep = channels * to.width;
      for (const Method& method : kMethods) {
        if (method.code == 8 && xFactor > 1) continue;
        const std::string job =
            std::string("resize ") + method.name + " " + std::to_string(channels);
        // Nearest neighbour reads no more pixels than it writes.
        const double moved = channels * (1 + (method.code == 1 ? std::min(read, 1.0) : read));
        const int code = method.code;
        s.Ours(job, to, moved, [=] {
          Lib::qvResize(type, src, from, srcStep, all, dst, dstStep, to, xFactor, yFactor, code);
        }, label);
        for (const bench::ResizePeer& peer :
             bench::ResizePeers({code, channels, from, src, to, dst}))
          s.Peer(job, to, peer.name, peer.work, label);
      }
    }
    for (const Method& method : kMethods) {
      if (method.code > 4) continue;
      const std::string job = std::string("resize 4:2:2 ") + method.name;
      const int code = method.code;
      s.Ours(job, to, 2 * (1 + (code == 1 ? std::min(read, 1.0) : read)), [=] {
        Lib::qvResizeYUV422(Lib::OneChannel, src, from, 2 * from.width, all, dst, 2 * to.width, to,
                            xFactor, yFactor, code);
      }, label);
      for (const bench::ResizePeer& peer : bench::ResizePeers({code, 2, from, src, to, dst}))
        s.Peer(job, to, peer.name, peer.work, label);
    }
  }
});
