// qvAlphaCompC, qvMergeAlphaPlus, qvMergeAlphaOver, qvDeinterlace.
#include <memory>

#include "bench/Bench.h"
#include "bench/Peers.h"

using Lib = CqvAccLib;

namespace {

constexpr unsigned char kAlpha1 = 140, kAlpha2 = 230;
constexpr unsigned kCentreWeight = 100;

#if defined(QV_BENCH_PIXMAN)
using PixmanImage = std::shared_ptr<pixman_image_t>;

PixmanImage Pixman(pixman_format_code_t format, unsigned char* data, IppiSize size) {
  const int step = size.width * PIXMAN_FORMAT_BPP(format) / 8;
  return {pixman_image_create_bits(format, size.width, size.height,
                                   reinterpret_cast<std::uint32_t*>(data), step),
          pixman_image_unref};
}

void PixmanOver(const PixmanImage& src, const PixmanImage& mask, const PixmanImage& dst,
                IppiSize size) {
  pixman_image_composite32(PIXMAN_OP_OVER, src.get(), mask.get(), dst.get(), 0, 0, 0, 0, 0, 0,
                           size.width, size.height);
}
#endif

}  // namespace

static const bench::Family composite([](bench::Suite& s) {
  static const char* const kOver[] = {"constant alpha, 1 byte, over",
                                      "constant alpha, 3 bytes, over"};
  static const char* const kPlus[] = {"merge plus 1 byte", "merge plus 3 bytes"};
  static const char* const kDeinterlace[] = {"deinterlace 1 byte", "deinterlace 3 bytes"};
  static const char* const kMergeOver = "merge over, float path";

  for (const IppiSize size : bench::kFrames) {
    const bench::Buffers b = s.Frame(size);
    const int w = size.width;
    [[maybe_unused]] const int h = size.height;

    for (int k = 0; k < 2; ++k) {
      const int channels = k ? 3 : 1, step = channels * w;
      const auto type = k ? Lib::ThreeChannels : Lib::OneChannel;
      s.Ours(kOver[k], size, 3 * channels, [=] {
        Lib::qvAlphaCompC(type, b.src, step, kAlpha1, b.src2, step, kAlpha2, b.dst, step, size,
                          AlphaOver);
      });
      s.Ours(kPlus[k], size, 3 * channels + 1, [=] {
        Lib::qvMergeAlphaPlus(type, b.dst, step, b.src, step, b.src2, w, w, size.height);
      });
      s.Ours(kDeinterlace[k], size, 2 * channels, [=] {
        Lib::qvDeinterlace(type, b.src, step, b.dst, step, size, kCentreWeight, 0);
      });

#if defined(QV_BENCH_OPENCV)
      const int format = k ? CV_8UC3 : CV_8UC1;
      const cv::Mat a(h, w, format, b.src), other(h, w, format, b.src2), dst(h, w, format, b.dst);
      s.Peer(kOver[k], size, "~OpenCV addWeighted, rounds", [=] {
        cv::addWeighted(a, kAlpha1 / 255.0, other, 1 - kAlpha1 / 255.0, 0, cv::Mat(dst));
      });
      const float side = (256 - kCentreWeight) / 512.0f;
      const cv::Mat across = (cv::Mat_<float>(1, 1) << 1),
                    down = (cv::Mat_<float>(3, 1) << side, kCentreWeight / 256.0f, side);
      s.Peer(kDeinterlace[k], size, "~OpenCV sepFilter2D, rounds",
             [=] { cv::sepFilter2D(a, cv::Mat(dst), -1, across, down); });
#endif
#if defined(QV_BENCH_LIBYUV)
      // Weights in 1/256 that add up to 1.
      s.Peer(kOver[k], size, "~libyuv InterpolatePlane, one weight", [=] {
        libyuv::InterpolatePlane(b.src, step, b.src2, step, b.dst, step, step, h, 256 - kAlpha1);
      });
      s.Peer(kDeinterlace[k], size, "~libyuv InterpolatePlane, two taps", [=] {
        libyuv::InterpolatePlane(b.src, step, b.src + 2 * step, step, b.dst, step, step, h - 2,
                                 128);
      });
      // An alpha for every byte; divides by 256.
      s.Peer(kPlus[k], size, k ? "~libyuv BlendPlane, an alpha a byte" : "~libyuv BlendPlane",
             [=] {
               libyuv::BlendPlane(b.src, step, b.dst, step, b.src2, step, b.dst, step, step, h);
             });
#endif
    }

    s.Ours(kMergeOver, size, 14, [=] {
      Lib::qvMergeAlphaOver(Lib::ThreeChannels, b.dst, 3 * w, b.src2, w, b.src, 3 * w, b.src3, w,
                            b.dst2, 3 * w, w, size.height);
    });
#if defined(QV_BENCH_LIBYUV)
    s.Peer(kMergeOver, size, "~libyuv ARGBBlend, premultiplied over opaque",
           [=] { libyuv::ARGBBlend(b.src, 4 * w, b.src2, 4 * w, b.dst, 4 * w, w, h); });
#endif
#if defined(QV_BENCH_PIXMAN)
    const PixmanImage noMask;
    const PixmanImage argb = Pixman(PIXMAN_a8r8g8b8, b.src, size);
    const PixmanImage argbDst = Pixman(PIXMAN_a8r8g8b8, b.dst, size);
    s.Peer(kMergeOver, size, "~pixman OVER, premultiplied",
           [=] { PixmanOver(argb, noMask, argbDst, size); });
    const PixmanImage rgb = Pixman(PIXMAN_r8g8b8, b.src, size);
    const PixmanImage rgbDst = Pixman(PIXMAN_r8g8b8, b.dst, size);
    const PixmanImage plane = Pixman(PIXMAN_a8, b.src2, size);
    s.Peer(kPlus[1], size, "~pixman OVER under a mask, rounds",
           [=] { PixmanOver(rgb, plane, rgbDst, size); });
    const pixman_color_t colour = {0, 0, 0, kAlpha1 * 257};
    const PixmanImage constant = {pixman_image_create_solid_fill(&colour), pixman_image_unref};
    s.Peer(kOver[1], size, "~pixman OVER under a constant, in place",
           [=] { PixmanOver(rgb, constant, rgbDst, size); });
#endif
  }
});
