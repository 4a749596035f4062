// qvYCbCr422ToBGR, qvYCbCr420ToBGR, qvYCbCr420, qvYCbCr422ToYCrCb420.
#include "bench/Bench.h"
#include "bench/Peers.h"

#if defined(QV_BENCH_SWSCALE)
extern "C" {
#include <libswscale/swscale.h>
}
#include <memory>
#endif

using Lib = CqvAccLib;

namespace {

// Three planes of a 4:2:0 frame, one after another in one buffer.
struct Planes {
  Planes(unsigned char* buffer, IppiSize size)
      : data{buffer, buffer + bench::Pixels(size), buffer + bench::Pixels(size) * 5 / 4},
        step{size.width, size.width / 2, size.width / 2} {}
  unsigned char* data[3];
  int step[3];
};

#if defined(QV_BENCH_SWSCALE)
struct FreeContext {
  void operator()(SwsContext* context) const { sws_freeContext(context); }
};

// A conversion at the same size, in swscale's most exact arithmetic.
std::shared_ptr<SwsContext> Conversion(IppiSize size, AVPixelFormat from, AVPixelFormat to) {
  return {sws_getContext(size.width, size.height, from, size.width, size.height, to,
                         SWS_POINT | SWS_ACCURATE_RND, nullptr, nullptr, nullptr),
          FreeContext()};
}
#endif

}  // namespace

static const bench::Family color([](bench::Suite& s) {
  static const char* const kPackedToBgr = "packed 4:2:2 to BGR";
  static const char* const kPlanarToBgr = "planar 4:2:0 to BGR";
  static const char* const kSplit = "two-plane to planar 4:2:0";
  static const char* const kPackedToPlanar = "packed 4:2:2 to planar 4:2:0";
  for (const IppiSize size : bench::kFrames) {
    const bench::Buffers b = s.Frame(size);
    const int w = size.width, h = size.height;
    Planes in(b.src, size), out(b.dst, size);
    [[maybe_unused]] const unsigned char* const pairs = in.data[1];  // of a two-plane frame

    s.Ours(kPackedToBgr, size, 5,
           [=] { Lib::qvYCbCr422ToBGR(Lib::OneChannel, b.src, 2 * w, b.dst, 3 * w, size); });
    s.Ours(kPlanarToBgr, size, 4.5, [=]() mutable {
      Lib::qvYCbCr420ToBGR(Lib::OneChannel, in.data, in.step, b.dst, 3 * w, size);
    });
    s.Ours(kSplit, size, 3, [=]() mutable {
      Lib::qvYCbCr420(Lib::OneChannel, b.src, w, pairs, w, out.data, out.step, size);
    });
    s.Ours(kPackedToPlanar, size, 3.5, [=]() mutable {
      Lib::qvYCbCr422ToYCrCb420(Lib::OneChannel, b.src, 2 * w, out.data, out.step, size);
    });

#if defined(QV_BENCH_OPENCV)
    const cv::Mat packed(h, w, CV_8UC2, b.src), planar(h * 3 / 2, w, CV_8UC1, b.src);
    const cv::Mat bgr(h, w, CV_8UC3, b.dst);
    s.Peer(kPackedToBgr, size, "OpenCV cvtColor",
           [=] { cv::cvtColor(packed, cv::Mat(bgr), cv::COLOR_YUV2BGR_YUY2); });
    s.Peer(kPlanarToBgr, size, "OpenCV cvtColor",
           [=] { cv::cvtColor(planar, cv::Mat(bgr), cv::COLOR_YUV2BGR_I420); });
#endif
#if defined(QV_BENCH_LIBYUV)
    // The packed form goes to three bytes a pixel by way of four, a row at a time.
    s.Peer(kPackedToBgr, size, "libyuv YUY2ToARGB and ARGBToRGB24", [=] {
      for (int y = 0; y < h; ++y) {
        libyuv::YUY2ToARGB(b.src + 2 * w * y, 2 * w, b.dst3, 4 * w, w, 1);
        libyuv::ARGBToRGB24(b.dst3, 4 * w, b.dst + 3 * w * y, 3 * w, w, 1);
      }
    });
    s.Peer(kPackedToBgr, size, "~libyuv YUY2ToARGB, four bytes",
           [=] { libyuv::YUY2ToARGB(b.src, 2 * w, b.dst, 4 * w, w, h); });
    s.Peer(kPlanarToBgr, size, "libyuv I420ToRGB24", [=] {
      libyuv::I420ToRGB24(in.data[0], w, in.data[1], w / 2, in.data[2], w / 2, b.dst, 3 * w, w, h);
    });
    s.Peer(kSplit, size, "libyuv NV12ToI420", [=] {
      libyuv::NV12ToI420(b.src, w, pairs, w, out.data[0], w, out.data[1], w / 2, out.data[2],
                         w / 2, w, h);
    });
    s.Peer(kPackedToPlanar, size, "~libyuv YUY2ToI420, averages chroma", [=] {
      libyuv::YUY2ToI420(b.src, 2 * w, out.data[0], w, out.data[2], w / 2, out.data[1], w / 2, w,
                         h);
    });
#endif
#if defined(QV_BENCH_SWSCALE)
    const auto scale = [&](const char* job, const char* name, AVPixelFormat from,
                           AVPixelFormat to) {
      const auto context = Conversion(size, from, to);
      const bool fromPacked = from == AV_PIX_FMT_YUYV422, toPacked = to == AV_PIX_FMT_BGR24;
      s.Peer(job, size, name, [=] {
        const unsigned char* const src[4] = {b.src, in.data[1], in.data[2], nullptr};
        const int srcStep[4] = {fromPacked ? 2 * w : w, from == AV_PIX_FMT_NV12 ? w : w / 2, w / 2,
                                0};
        unsigned char* const dst[4] = {b.dst, out.data[1], out.data[2], nullptr};
        const int dstStep[4] = {toPacked ? 3 * w : w, w / 2, w / 2, 0};
        sws_scale(context.get(), src, srcStep, 0, h, dst, dstStep);
      });
    };
    scale(kPackedToBgr, "~swscale", AV_PIX_FMT_YUYV422, AV_PIX_FMT_BGR24);
    scale(kPlanarToBgr, "~swscale", AV_PIX_FMT_YUV420P, AV_PIX_FMT_BGR24);
    scale(kSplit, "swscale", AV_PIX_FMT_NV12, AV_PIX_FMT_YUV420P);
    scale(kPackedToPlanar, "~swscale, averages chroma", AV_PIX_FMT_YUYV422, AV_PIX_FMT_YUV420P);
#endif
  }
});
