// qv_resample where it does what qvResize does not: two and four channels, filters widened for
// reductions, colours weighted by alpha.
#include "bench/Bench.h"
#include "bench/ResizePeers.h"
#include "qvAcceleratedLib/Resample.h"

namespace {

struct Kind {
  int pixels, channels;
  const char* name;
  int filters[5];
};

constexpr int kMitchell = 32;

constexpr Kind kKinds[] = {{0, 1, "1", {2, 4, 8, 16, kMitchell}},
                           {1, 2, "2", {2}},
                           {2, 3, "3", {4, 16}},
                           {3, 4, "4", {2, 16}},
                           {5, 4, "4, alpha", {2, 16}}};

const char* NameOf(int filter) {
  switch (filter) {
    case 2: return "linear";
    case 4: return "cubic";
    case 8: return "area";
    case 16: return "Lanczos";
    default: return "Mitchell";
  }
}

constexpr bench::Scaling kScalings[] = {{{1280, 720}, {1920, 1080}},
                                        {{1920, 1080}, {1280, 720}},
                                        {{3840, 2160}, {640, 360}}};

}  // namespace

static const bench::Family resample([](bench::Suite& s) {
  for (const bench::Scaling& scaling : kScalings)
    for (const Kind& kind : kKinds)
      for (const int filter : kind.filters) {
        const IppiSize from = scaling.from, to = scaling.to;
        if (filter == 0 || (filter == 8 && to.width > from.width)) continue;
        const unsigned char* const src = s.Frame(from).src;
        unsigned char* const dst = s.Frame(to).dst;
        const std::string job = std::string("resample ") + NameOf(filter) + " " + kind.name;
        const std::string label = scaling.Label();
        const double read = double(bench::Pixels(from)) / double(bench::Pixels(to));
        qv::ResampleOptions options = {};
        options.pixels = kind.pixels;
        options.filter = filter;
        const int channels = kind.channels;
        s.Ours(job, to, channels * (1 + read), [=] {
          qv::Resample({src, from, channels * from.width, dst, to, channels * to.width}, &options);
        }, label);
        for (const bench::ResizePeer& peer : bench::ResamplePeers(
                 {{filter, channels, from, src, to, dst}, kind.pixels == 5}))
          s.Peer(job, to, peer.name, peer.work, label);
      }
});
