// qvCopy, qvDup, qvSet, qvMirror, qvLUTPalette, qvMulCScale.
#include <cstring>

#include "bench/Bench.h"
#include "bench/Peers.h"

using Lib = CqvAccLib;

static const bench::Family transfer([](bench::Suite& s) {
  for (const IppiSize size : bench::kFrames) {
    const bench::Buffers b = s.Frame(size);
    [[maybe_unused]] const int w = size.width, h = size.height;
    const std::size_t pixels = bench::Pixels(size);

    s.Ours("copy 1 byte", size, 2, [=] { Lib::qvCopy(Lib::OneChannel, b.src, w, b.dst, w, size); });
    s.Peer("copy 1 byte", size, "memcpy", [=] { std::memcpy(b.dst, b.src, pixels); });
    s.Ours("copy 3 bytes", size, 6,
           [=] { Lib::qvCopy(Lib::ThreeChannels, b.src, 3 * w, b.dst, 3 * w, size); });
    s.Peer("copy 3 bytes", size, "memcpy", [=] { std::memcpy(b.dst, b.src, 3 * pixels); });
    s.Ours("plane into byte 0 of 3", size, 7,
           [=] { Lib::qvCopy(Lib::PlaneToThreeChannels, b.src, w, b.dst, 3 * w, size); });
    s.Ours("4 to 3", size, 7,
           [=] { Lib::qvCopy(Lib::FourToThreeChannels, b.src, 4 * w, b.dst, 3 * w, size); });
    s.Ours("3 to 4, fourth kept", size, 11,
           [=] { Lib::qvCopy(Lib::ThreeToFourChannels, b.src, 3 * w, b.dst, 4 * w, size); });
    s.Ours("grey to 3", size, 4,
           [=] { Lib::qvDup(Lib::OneChannel, b.src, w, b.dst, 3 * w, size); });

    s.Ours("fill 1 byte", size, 1, [=] { Lib::qvSet(Lib::OneChannel, b.src, b.dst, w, size); });
    s.Peer("fill 1 byte", size, "memset", [=] { std::memset(b.dst, b.src[0], pixels); });
    s.Ours("fill 3 bytes", size, 3,
           [=] { Lib::qvSet(Lib::ThreeChannels, b.src, b.dst, 3 * w, size); });

    static const char* const axes[] = {"top-bottom", "left-right", "both"};
    for (int axis = 0; axis < 3; ++axis) {
      const auto a = static_cast<IppiAxis>(axis);
      const std::string one = std::string("mirror 1 byte, ") + axes[axis];
      const std::string three = std::string("mirror 3 bytes, ") + axes[axis];
      s.Ours(one, size, 2, [=] { Lib::qvMirror(Lib::OneChannel, b.src, w, b.dst, w, size, a); });
      s.Ours(three, size, 6,
             [=] { Lib::qvMirror(Lib::ThreeChannels, b.src, 3 * w, b.dst, 3 * w, size, a); });
#if defined(QV_BENCH_OPENCV)
      const cv::Mat src1(h, w, CV_8UC1, b.src), src3(h, w, CV_8UC3, b.src);
      const cv::Mat dst1(h, w, CV_8UC1, b.dst), dst3(h, w, CV_8UC3, b.dst);
      const int flip = axis == 0 ? 0 : axis == 1 ? 1 : -1;
      s.Peer(one, size, "OpenCV flip", [=] { cv::flip(src1, cv::Mat(dst1), flip); });
      s.Peer(three, size, "OpenCV flip", [=] { cv::flip(src3, cv::Mat(dst3), flip); });
#endif
    }

    s.Ours("palette to 3 bytes", size, 4,
           [=] { Lib::qvLUTPalette(Lib::OneChannel, b.src, w, b.dst, 3 * w, size, b.src2, 8); });
    s.Ours("scale by c/255 in place", size, 2,
           [=] { Lib::qvMulCScale(Lib::ScalePlane, 200, b.dst3, w, size); });

#if defined(QV_BENCH_OPENCV)
    const cv::Mat grey(h, w, CV_8UC1, b.src), bgr(h, w, CV_8UC3, b.dst);
    const cv::Mat bgrSource(h, w, CV_8UC3, b.src), bgra(h, w, CV_8UC4, b.dst);
    const cv::Mat bgraSource(h, w, CV_8UC4, b.src), lut(256, 1, CV_8UC3, b.src2);
    const cv::Mat plane(h, w, CV_8UC1, b.dst3);
    s.Peer("plane into byte 0 of 3", size, "OpenCV mixChannels", [=] {
      cv::Mat out = bgr;
      const int fromTo[] = {0, 0};
      cv::mixChannels(&grey, 1, &out, 1, fromTo, 1);
    });
    s.Peer("4 to 3", size, "OpenCV cvtColor",
           [=] { cv::cvtColor(bgraSource, cv::Mat(bgr), cv::COLOR_BGRA2BGR); });
    s.Peer("3 to 4, fourth kept", size, "OpenCV mixChannels", [=] {
      cv::Mat out = bgra;
      const int fromTo[] = {0, 0, 1, 1, 2, 2};
      cv::mixChannels(&bgrSource, 1, &out, 1, fromTo, 3);
    });
    s.Peer("3 to 4, fourth kept", size, "~OpenCV cvtColor, writes 255",
           [=] { cv::cvtColor(bgrSource, cv::Mat(bgra), cv::COLOR_BGR2BGRA); });
    s.Peer("grey to 3", size, "OpenCV cvtColor",
           [=] { cv::cvtColor(grey, cv::Mat(bgr), cv::COLOR_GRAY2BGR); });
    s.Peer("fill 3 bytes", size, "OpenCV setTo",
           [=] { cv::Mat(bgr).setTo(cv::Scalar(1, 2, 3)); });
    s.Peer("palette to 3 bytes", size, "OpenCV applyColorMap",
           [=] { cv::applyColorMap(grey, cv::Mat(bgr), lut); });
    s.Peer("scale by c/255 in place", size, "~OpenCV convertTo, rounds",
           [=] { plane.convertTo(cv::Mat(plane), -1, 200 / 255.0); });
#endif
#if defined(QV_BENCH_LIBYUV)
    s.Peer("4 to 3", size, "libyuv ARGBToRGB24",
           [=] { libyuv::ARGBToRGB24(b.src, 4 * w, b.dst, 3 * w, w, h); });
    s.Peer("3 to 4, fourth kept", size, "~libyuv RGB24ToARGB, writes 255",
           [=] { libyuv::RGB24ToARGB(b.src, 3 * w, b.dst, 4 * w, w, h); });
    s.Peer("mirror 1 byte, left-right", size, "libyuv MirrorPlane",
           [=] { libyuv::MirrorPlane(b.src, w, b.dst, w, w, h); });
    s.Peer("mirror 3 bytes, left-right", size, "libyuv RGB24Mirror",
           [=] { libyuv::RGB24Mirror(b.src, 3 * w, b.dst, 3 * w, w, h); });
#endif
  }
});
